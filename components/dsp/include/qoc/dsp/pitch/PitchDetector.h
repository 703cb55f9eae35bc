#pragma once

#include "qoc/dsp/spectrum/RealFFT.h"

#include <complex>
#include <cstddef>
#include <optional>
#include <span>
#include <vector>

namespace qoc::dsp {

// What PitchDetector has found, in samples.
struct DetectedPitch {
    double period = 0;
    double time = 0; // behind the frame's first sample: the middle of what was compared
};

// Finds the period of one voice in a frame of sound: YIN (A. de Cheveigne and H. Kawahara, "YIN, a fundamental
// frequency estimator for speech and music", J. Acoust. Soc. Am. 111(4), 2002), its difference function computed by way
// of the Fourier transform. The period found is then measured again over as many periods as the frame has room for,
// which divides the error of the interpolation between lags by their number.
//
// A frame of n samples finds periods up to n / 2 samples. It is compared from its end backwards, so that what is found
// is about its later half as far as possible. Detecting does not allocate.
class PitchDetector {
public:
    // Above this a voice counts as unpitched, or is taken for a lower octave of itself.
    static constexpr double kHighestPitch = 2500.0; // hertz

    // `frameSize` is a power of two.
    explicit PitchDetector(std::size_t frameSize);

    std::size_t FrameSize() const noexcept { return fFrame.size(); }

    // Nothing when the frame is silent or has no clear pitch. `frame` has FrameSize() samples,
    // `sampleRate` is in hertz.
    std::optional<DetectedPitch> Detect(std::span<const float> frame, double sampleRate) noexcept;

private:
    bool TakeFrame(std::span<const float> frame) noexcept;
    void Correlate() noexcept;
    void ComputeDifference() noexcept;
    void Normalise() noexcept;
    std::optional<std::size_t> FindDip(std::size_t shortestLag) const noexcept;
    DetectedPitch RefineOverPeriods(double period) const noexcept;
    std::optional<std::size_t> DipWithin(std::size_t begin, std::size_t end) const noexcept;
    double Interpolate(std::size_t dip, std::size_t reach) const noexcept;

    std::size_t fWindow; // samples compared at each lag, and the number of lags
    RealFFT fFFT;
    std::vector<float> fFrame;       // backwards, without its mean
    std::vector<float> fHead;        // the window, and zeros behind it
    std::vector<float> fCorrelation; // of the window with the frame, by lag
    std::vector<std::complex<float>> fFrameSpectrum;
    std::vector<std::complex<float>> fHeadSpectrum;
    std::vector<double> fDifference; // by lag
    std::vector<double> fNormalised; // the same over its mean at the lags before
};

} // namespace qoc::dsp
