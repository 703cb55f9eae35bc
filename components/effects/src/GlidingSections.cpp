#include "qoc/components/GlidingSections.h"

#include <algorithm>

namespace qoc::components {

namespace {

double Between(double from, double to, double share) noexcept {
    return from + share * (to - from);
}

// Both stable, so what lies between is: the stable coefficients form a triangle in the plane of a1 and a2.
BiquadCoefficients Between(const BiquadCoefficients& from, const BiquadCoefficients& to, double share) noexcept {
    return {Between(from.b0, to.b0, share), Between(from.b1, to.b1, share), Between(from.b2, to.b2, share),
            Between(from.a1, to.a1, share), Between(from.a2, to.a2, share)};
}

bool AreSame(const BiquadCoefficients& one, const BiquadCoefficients& other) noexcept {
    return one.b0 == other.b0 && one.b1 == other.b1 && one.b2 == other.b2 && one.a1 == other.a1 && one.a2 == other.a2;
}

} // namespace

void GlidingSections::Prepare(double sampleRate, std::size_t channels, std::size_t sections) {
    fSections = sections;
    fBiquads.assign(channels * sections, {});
    fFrom.assign(sections, {});
    fTo = fNow = fFrom;
    fGlide.Prepare(sampleRate);
}

void GlidingSections::Reset() noexcept {
    for (Biquad& biquad : fBiquads)
        biquad.Reset();
}

void GlidingSections::Set(std::span<const BiquadCoefficients> sections, bool settle) noexcept {
    if (!settle && std::ranges::equal(sections, fTo, AreSame)) return;
    std::ranges::copy(sections, fTo.begin());
    if (settle) {
        fGlide.Settle(1);
        fNow = fTo;
        Apply();
        return;
    }
    std::ranges::copy(fNow, fFrom.begin());
    fGlide.Settle(0);
    fGlide.SetTarget(1);
}

void GlidingSections::Advance() noexcept {
    if (fGlide.IsSettled()) return;
    const double share = fGlide.Next();
    for (std::size_t i = 0; i < fSections; ++i)
        fNow[i] = fGlide.IsSettled() ? fTo[i] : Between(fFrom[i], fTo[i], share);
    Apply();
}

double GlidingSections::Process(std::size_t channel, double sample) noexcept {
    for (Biquad& section : std::span(fBiquads).subspan(channel * fSections, fSections))
        sample = section.Process(sample);
    return sample;
}

void GlidingSections::Apply() noexcept {
    for (std::size_t i = 0; i < fBiquads.size(); ++i)
        fBiquads[i].SetCoefficients(fNow[i % fSections]);
}

} // namespace qoc::components
