#include "qoc/dsp/restoration/PhaseAligner.h"

#include <algorithm>
#include <cmath>

namespace qoc::dsp {

void PhaseAligner::Prepare(std::size_t bins) {
    fCross.resize(bins);
    fReferencePower.resize(bins);
    fOtherPower.resize(bins);
    fSums.resize(bins + 1);
    fFrames = 1;
    Reset();
}

void PhaseAligner::Reset() noexcept {
    if (fFrames == 0) return;
    std::ranges::fill(fCross, std::complex<float>());
    std::ranges::fill(fReferencePower, 0.0F);
    std::ranges::fill(fOtherPower, 0.0F);
    fFrames = 0;
}

void PhaseAligner::Align(std::span<const std::complex<float>> reference, std::span<std::complex<float>> other,
                         const Settings& settings, std::size_t pass, StepRange bins) noexcept {
    if (pass == 0) return Add(reference, other, settings.kept, bins);
    const float reach = std::exp2(settings.octaves / 2) - 1; // of a bin's number, to either side
    for (std::size_t bin = bins.begin; bin < bins.end; ++bin)
        other[bin] *= TurnFor(bin, settings, reach);
}

void PhaseAligner::Add(std::span<const std::complex<float>> reference, std::span<const std::complex<float>> other,
                       float kept, StepRange bins) noexcept {
    if (bins.begin == 0) fFrames = fFrames * kept + 1;
    for (std::size_t bin = bins.begin; bin < bins.end; ++bin) {
        fCross[bin] = fCross[bin] * kept + reference[bin] * std::conj(other[bin]);
        fReferencePower[bin] = fReferencePower[bin] * kept + std::norm(reference[bin]);
        fOtherPower[bin] = fOtherPower[bin] * kept + std::norm(other[bin]);
        const Sums& before = fSums[bin];
        fSums[bin + 1] = {before.cross + std::complex<double>(fCross[bin]), before.reference + fReferencePower[bin],
                          before.other + fOtherPower[bin]};
    }
}

// Differences that come and go, as of sounds that only one of the channels has, are left alone.
std::complex<float> PhaseAligner::TurnFor(std::size_t bin, const Settings& settings, float reach) const noexcept {
    constexpr double kSmallestCoherence = 0.3;
    constexpr double kFullCoherence = 0.7;
    const auto half = static_cast<std::size_t>(static_cast<float>(bin) * reach);
    const Sums& below = fSums[bin - std::min(bin, half)];
    const Sums& above = fSums[std::min(bin + half + 1, fCross.size())];
    const std::complex<double> cross = above.cross - below.cross;
    const double power = (above.reference - below.reference) * (above.other - below.other);
    if (!(power > 0)) return 1;
    // Few values look coherent by chance: of n unrelated ones the mean of the squared coherence is 1 / n. Overlapping
    // frames count half.
    const double values = static_cast<double>(fFrames) * static_cast<double>(2 * half + 1) / 2;
    if (values <= 1) return 1;
    const double squared = (std::norm(cross) / power - 1 / values) / (1 - 1 / values);
    const double coherence = std::sqrt(std::max(squared, 0.0));
    const double trust = std::clamp((coherence - kSmallestCoherence) / (kFullCoherence - kSmallestCoherence), 0.0, 1.0);
    return std::polar(1.0F, static_cast<float>(std::arg(cross) * trust) * settings.strength);
}

} // namespace qoc::dsp
