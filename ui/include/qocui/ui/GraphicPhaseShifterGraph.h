#pragma once

#include "qocui/ui/FreeCurveGraph.h"

namespace qocui::ui {

// The graphic phase shifter's graph: a free curve of degrees over frequency, which the effect applies as it is drawn.
// Points are stored as parts of the axes, so they mean other frequencies and angles when the axes become others.
class QOCUI_API GraphicPhaseShifterGraph : public FreeCurveGraph {
public:
    explicit GraphicPhaseShifterGraph(boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> filter);

protected:
    ~GraphicPhaseShifterGraph() override;

    // The line and, faintly, what lies between it and no shift. Straight or, with splines, a monotone cubic in pixels.
    void DrawCurvePoints(kroui::limner::Limner& limner) override;
    void UpdateRulers() override;
    void CurvePointsToComponent(const CurvePoints& points) override;
    // There is no response: the curve itself is drawn again.
    void UpdateResponseData() override;
    CoordinatePair ToCoordinates(const StoredPoint& stored) const override;
    StoredPoint FromCoordinates(const CoordinatePair& coordinates) const override;
    double GetFlatLevel() const override;
    bool FollowAxes() override;

private:
    // Degrees at the top of the axis.
    double GetReach() const;
    double ToHertz(double position) const;
    double ToPosition(double hertz) const;
    RulerPtr MakePhaseRuler() const;

    bool fIsWide; // 360 degrees up and down, not 180; as last seen
};

} // namespace qocui::ui
