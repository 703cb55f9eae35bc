#include "qoc/dsp/filters/FilterPartitions.h"

#include <algorithm>
#include <array>

namespace qoc::dsp {

FilterPartitions::FilterPartitions(std::span<const float> fir, std::size_t delay, const RealFFT& transform)
    : fSplitSize(SplitSize(transform.Bins())) {
    const std::size_t length = transform.Size() / 2;
    const std::size_t count = (delay + fir.size() + length - 1) / length;
    std::vector<float> delayed(count * length);
    std::ranges::copy(fir, delayed.begin() + static_cast<std::ptrdiff_t>(delay));
    fParts.resize(count * fSplitSize);
    std::vector<float> part(transform.Size());
    std::vector<std::complex<float>> spectrum(transform.Bins());
    for (std::size_t i = 0; i < count; ++i) {
        std::copy_n(delayed.begin() + static_cast<std::ptrdiff_t>(i * length), length, part.begin());
        fIsSilent.push_back(std::ranges::all_of(part, [](float sample) { return sample == 0; }));
        transform.Forward(part, spectrum);
        Split(spectrum, {0, spectrum.size()}, std::span(fParts).subspan(i * fSplitSize, fSplitSize));
    }
}

StepRange FilterPartitions::BinsOf(std::size_t step, std::size_t steps, std::size_t bins) noexcept {
    const auto [begin, end] = StepRange::Of(step, steps, Padded(bins) / kLanes);
    return {begin * kLanes, end * kLanes};
}

void FilterPartitions::Split(std::span<const std::complex<float>> spectrum, StepRange bins,
                             std::span<float> split) noexcept {
    const std::size_t padded = split.size() / 2;
    for (std::size_t i = bins.begin; i < std::min(bins.end, spectrum.size()); ++i) {
        split[i] = spectrum[i].real();
        split[padded + i] = spectrum[i].imag();
    }
}

void FilterPartitions::Join(std::span<const float> split, StepRange bins,
                            std::span<std::complex<float>> spectrum) noexcept {
    const std::size_t padded = split.size() / 2;
    for (std::size_t i = bins.begin; i < std::min(bins.end, spectrum.size()); ++i)
        spectrum[i] = {split[i], split[padded + i]};
}

// All of a group's results before the first is stored, so that the compiler need not fear that they overlap the
// factors.
void FilterPartitions::MultiplyAdd(std::size_t part, StepRange bins, std::span<const float> spectrum,
                                   std::span<float> sum) const noexcept {
    if (fIsSilent[part]) return;
    const std::size_t padded = fSplitSize / 2;
    const float* const a = fParts.data() + part * fSplitSize;
    const float* const b = spectrum.data();
    float* const out = sum.data();
    for (std::size_t i = bins.begin; i < bins.end; i += kLanes) {
        std::array<float, kLanes> real;
        std::array<float, kLanes> imaginary;
        for (std::size_t k = 0; k < kLanes; ++k)
            real[k] = out[i + k] + (a[i + k] * b[i + k] - a[padded + i + k] * b[padded + i + k]);
        for (std::size_t k = 0; k < kLanes; ++k)
            imaginary[k] = out[padded + i + k] + (a[i + k] * b[padded + i + k] + a[padded + i + k] * b[i + k]);
        std::copy_n(real.begin(), kLanes, out + i);
        std::copy_n(imaginary.begin(), kLanes, out + padded + i);
    }
}

} // namespace qoc::dsp
