#pragma once

#include "qoc/dsp/spectrum/RealFFT.h"
#include "qoc/dsp/stream/PacedSteps.h"

#include <complex>
#include <cstddef>
#include <span>
#include <vector>

namespace qoc::dsp {

// An impulse response cut into equal parts, each transformed, to be applied to spectra one part a delay (uniformly
// partitioned convolution; Gardner, "Efficient convolution without input-output delay", 1995, tells its relatives).
// Immutable; made on the user-interface thread, used on the sound thread.
//
// Spectra are split here: all real parts, then all imaginary parts, each filled up with zeros to whole lanes, which is
// how processors multiply them several at a time.
class FilterPartitions {
public:
    // The parts are half a transform long. `delay` zeros go before the response.
    FilterPartitions(std::span<const float> fir, std::size_t delay, const RealFFT& transform);

    // How many floats a split spectrum of so many bins has.
    static std::size_t SplitSize(std::size_t bins) noexcept { return 2 * Padded(bins); }
    // The bins, whole lanes of them, that one of so many steps is about.
    static StepRange BinsOf(std::size_t step, std::size_t steps, std::size_t bins) noexcept;
    static void Split(std::span<const std::complex<float>> spectrum, StepRange bins, std::span<float> split) noexcept;
    static void Join(std::span<const float> split, StepRange bins, std::span<std::complex<float>> spectrum) noexcept;

    std::size_t Count() const noexcept { return fIsSilent.size(); }
    // sum += part * spectrum, both split; nothing to do for a part of zeros. Real time safe.
    void MultiplyAdd(std::size_t part, StepRange bins, std::span<const float> spectrum,
                     std::span<float> sum) const noexcept;

private:
    static constexpr std::size_t kLanes = 8;

    static std::size_t Padded(std::size_t bins) noexcept { return (bins + kLanes - 1) / kLanes * kLanes; }

    std::size_t fSplitSize;
    std::vector<float> fParts; // split spectra
    std::vector<bool> fIsSilent;
};

} // namespace qoc::dsp
