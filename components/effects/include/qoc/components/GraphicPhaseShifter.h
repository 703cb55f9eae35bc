#pragma once

#include "qoc/components/CurveFilter.h"

namespace qoc::components {

// An all-pass filter whose phase over frequency is drawn: a curve of up to 128 points in degrees, straight or as a
// spline in the axes of its graph. Positive phases lead. The gain is 0 dB throughout, as far as the FFT size resolves
// the curve: a phase that turns by d full turns a hertz delays by d seconds, and what moves the sound by more than a
// tenth of the size is damped. Near 0 Hz and half the sample rate, where a real filter can only turn by whole half
// turns, the phase goes over to that within a few bins. One channel alone, or all, are shifted; the others come out as
// late.
class GraphicPhaseShifter : public CurveFilter {
public:
    GraphicPhaseShifter();

protected:
    ~GraphicPhaseShifter() override;

    FrequencyCurve ReadCurve() const override;
    std::complex<double> ResponseOf(double degrees) const noexcept override;
    const FIRWindow& Window(std::size_t size) const override;
    std::size_t ChosenSize() const noexcept override;
    bool Shapes(int index) const noexcept override;
    std::size_t PointCount() const noexcept override;
    std::optional<std::size_t> OnlyChannel() const noexcept override;

private:
    mutable std::unique_ptr<FIRWindow> fWindow; // of the last size used
};

} // namespace qoc::components
