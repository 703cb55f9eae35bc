#pragma once

#include "qocui/module/Export.h"
#include "qocui/ui/FrequencyGraph.h"

#include <vector>

namespace qocui::ui {

// A curve over frequency whose points are the user's: 2 to 128 of them, the first and the last held at the ends of the
// axis. The effect keeps their number and, for each, two normalised values; it is told while they are being rewritten.
// What others change there, and the axes' settings, are followed at the editor's polls.
class QOCUI_API FreeCurveGraph : public FrequencyGraph {
public:
    // Lays out anew what has changed in the effect since the last layout; nothing during a drag.
    void SyncParameters();
    // Writes the flat curve from end to end to the effect.
    void ResetPoints();

protected:
    // Where the effect keeps what.
    struct Indices {
        int splineCurves;
        int updating; // 1 while the curve is being rewritten
        int scale;    // logarithmic below one half
        int pointCount;
        int firstPoint;
    };
    // A point as the effect stores it.
    struct StoredPoint {
        float position = 0;
        float level = 0;
        friend bool operator==(const StoredPoint&, const StoredPoint&) = default;
    };

    FreeCurveGraph(boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> filter, const ViewRange& viewRange,
                   const Indices& indices, RulerPtr vertical);
    ~FreeCurveGraph() override;

    // As last seen.
    bool IsLogarithmic() const { return fIsLogarithmic; }
    RulerPtr MakeHorizontalRuler() const;

    virtual CoordinatePair ToCoordinates(const StoredPoint& stored) const = 0;
    virtual StoredPoint FromCoordinates(const CoordinatePair& coordinates) const = 0;
    // The vertical value of the flat curve.
    virtual double GetFlatLevel() const = 0;
    // Looks again at the settings that the axes depend on; true if they are others now.
    virtual bool FollowAxes();

    void UpdateCurvePointsFromComponent() override;
    void CurvePointsToComponent(const CurvePoints& points) override;

private:
    std::size_t StoredCount() const;
    StoredPoint Stored(std::size_t point) const;
    int PositionIndex(std::size_t point) const;
    bool HaveStoredPointsChanged() const;
    bool FollowSplines();
    void SetPointFlags(std::size_t count);

    Indices fIndices;
    bool fIsLogarithmic;
    std::vector<StoredPoint> fLaidOut; // what the points were made from
};

} // namespace qocui::ui
