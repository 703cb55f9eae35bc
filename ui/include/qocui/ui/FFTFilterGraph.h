#pragma once

#include "krocore/FaderTranslator.h"
#include "qocui/ui/FreeCurveGraph.h"

namespace qocui::ui {

// The FFT filter's graph: a free curve of levels over frequency, drawn over the response that the effect has with it.
// The vertical axis is the travel of a fader, 0...1, labelled in decibels, and that is what the effect stores.
class QOCUI_API FFTFilterGraph : public FreeCurveGraph {
public:
    explicit FFTFilterGraph(boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> filter);

protected:
    ~FFTFilterGraph() override;

    void UpdateRulers() override;
    void UpdateResponseData() override;
    CoordinatePair ToCoordinates(const StoredPoint& stored) const override;
    StoredPoint FromCoordinates(const CoordinatePair& coordinates) const override;
    double GetFlatLevel() const override;

private:
    krocore::FaderTranslator<double> fFader;
};

} // namespace qocui::ui
