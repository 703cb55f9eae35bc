#pragma once

#include "qoc/components/CurveFilter.h"

namespace qoc::components {

// A filter whose gain over frequency is drawn: a curve of up to 128 points, straight in the axes of its graph
// (frequency by the scale parameter, level as the travel of a fader), so that what is drawn is what is heard. It shifts
// no phase: all frequencies come out later by the same latency. The window decides how the response runs between the
// bins of the chosen size: from a sharp one that ripples beside steep edges (triangular) to a broad one that does not
// (Kaiser 180 dB). A level of 0 is silence, as far as the window's side lobes let it.
class FFTFilter : public CurveFilter {
public:
    FFTFilter();

protected:
    ~FFTFilter() override;

    FrequencyCurve ReadCurve() const override;
    std::complex<double> ResponseOf(double level) const noexcept override;
    const FIRWindow& Window(std::size_t size) const override;
    std::size_t ChosenSize() const noexcept override;
    bool Shapes(int index) const noexcept override;
    std::size_t PointCount() const noexcept override;

private:
    mutable std::unique_ptr<FIRWindow> fWindow; // the last one used
    mutable int fWindowItem = 0;
};

} // namespace qoc::components
