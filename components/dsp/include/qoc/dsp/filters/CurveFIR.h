#pragma once

#include "qoc/dsp/filters/FIRWindow.h"
#include "qoc/dsp/spectrum/RealFFT.h"

#include <complex>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace qoc::dsp {

// Makes the impulse responses of drawn filters: from the response wished for at every bin, by the window method
// (Oppenheim and Schafer, "Discrete-Time Signal Processing", section 7.5). The window smooths the response over a few
// bins, which would round off the curve's corners; so the bins around each node are corrected until the response meets
// the node, as long as no other node is so near that the window can't tell them apart. Owned by its effect; keeps the
// transform and the window of the last size. User-interface thread.
class CurveFIR {
public:
    // A frequency, in bins, at which the response is to be met.
    struct Node {
        double bin;
        std::complex<double> response;
    };
    enum class Kind : std::uint8_t {
        kMagnitude, // real and not negative: an impulse response that is its own mirror image
        kPhase,     // complex
    };
    using Spectrum = std::vector<std::complex<float>>;

    // `spectrum` has size / 2 + 1 bins, `window` the size; `nodes` ascend. The impulse response has `size` samples, its
    // middle, to which phases refer, at size / 2.
    std::vector<float> Design(Spectrum spectrum, std::span<const Node> nodes, const FIRWindow& window, Kind kind);

private:
    void MeetNodes(Spectrum& spectrum, std::span<const Node> nodes, const FIRWindow& window, Kind kind) const;
    std::vector<float> Transformed(Spectrum spectrum, const FIRWindow& window);

    std::unique_ptr<RealFFT> fTransform;
};

// The response of an impulse response at any frequency, from one zero-padded transform. Keeps the transform of the last
// size. One thread at a time.
class FIRResponse {
public:
    // The middle, to which phases refer, is at half the length.
    void Update(std::span<const float> fir);

    // `place`: 0 at 0 Hz, 1 at half the sample rate; what lies outside is that at the nearer end.
    std::complex<double> At(double place) const noexcept;

private:
    std::unique_ptr<RealFFT> fTransform;
    std::vector<float> fPadded;
    std::vector<std::complex<float>> fSpectrum; // with a margin of mirror images
};

} // namespace qoc::dsp
