#include "qoc/dsp/pitch/SpliceSearch.h"

#include "math/ComplexProduct.h"
#include "qoc/dsp/math/DotProduct.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <numeric>
#include <utility>

namespace qoc::dsp {

namespace {

// What is looked at first has about this rate: where tones above half of it agree is found from there.
constexpr double kCoarseRate = 22050;
constexpr std::size_t kLargestStep = 4;
constexpr std::size_t kShortestTransform = 256;
// How much a place at the end of the room must be better than the wanted one.
constexpr double kPull = 0.4;
// Of the energy of what is compared: below it nothing resembles anything.
constexpr double kSilence = 1e-6;
constexpr double kLeast = 1e-20;
constexpr double kInaudible = 1e-10; // a sample

double Normalised(double product, double energy, double presentEnergy) noexcept {
    return product / std::sqrt(energy + kSilence * presentEnergy + kLeast);
}

// Where between its neighbours the peak of a cosine through three values lies, the largest in the middle: exact for
// tones.
double PeakBetween(double before, double peak, double behind) noexcept {
    const double cosine = (before + behind) / (2 * peak);
    const double sine = std::sqrt(std::max(0.0, 1 - cosine * cosine));
    if (!(peak > 0) || sine < 1e-7) return 0;
    return std::clamp(std::atan((behind - before) / (2 * peak * sine)) / std::atan2(sine, cosine), -1.0, 1.0);
}

} // namespace

void SpliceSearch::Prepare(std::size_t channels, double sampleRate, std::size_t longest) {
    fChannels = channels;
    fStep = std::clamp<std::size_t>(static_cast<std::size_t>(sampleRate / kCoarseRate), 1, kLargestStep);
    fRoom = static_cast<std::size_t>(std::ceil(kRoomSeconds * sampleRate / static_cast<double>(fStep)));
    const std::size_t most = std::bit_ceil(std::max(kShortestTransform, longest / fStep + fRoom + 1));
    fTransforms.clear();
    for (std::size_t size = kShortestTransform; size <= most; size *= 2)
        fTransforms.emplace_back(size);
    fSound.assign(most, 0.0F);
    for (auto* spectrum : {&fPresent, &fNear, &fCross})
        spectrum->assign(most / 2 + 1, {});
    fEnergy.assign(most + 1, 0.0);
}

SpliceSearch::Place SpliceSearch::Find(const Present& present, const HistoryBuffer& history,
                                       const Room& room) noexcept {
    const auto step = static_cast<std::int64_t>(fStep);
    const std::int64_t first = room.wanted - static_cast<std::int64_t>(fRoom) / 2 * step;
    Correlate(present, history, first);
    const std::size_t best = BestCoarse(room, first);
    Place place = Refine(present, history, first + static_cast<std::int64_t>(best) * step);
    place.time = std::clamp(place.time, static_cast<double>(room.first), static_cast<double>(room.last));
    return place;
}

void SpliceSearch::Gather(const float* sound, std::size_t count, std::span<std::complex<float>> spectrum) noexcept {
    for (std::size_t i = 0; i < count; ++i)
        fSound[i] = std::accumulate(sound + i * fStep, sound + (i + 1) * fStep, 0.0F);
    const std::span<float> all(fSound.data(), fTransform->Size());
    std::ranges::fill(all.subspan(count), 0.0F);
    fTransform->Forward(all, spectrum);
}

// Leaves the likeness of each coarse place in fSound.
void SpliceSearch::Correlate(const Present& present, const HistoryBuffer& history, std::int64_t first) noexcept {
    const std::size_t length = present.length / fStep;
    const std::size_t nearby = length + fRoom;
    fTransform = &*std::ranges::find_if(fTransforms, [nearby](const RealFFT& each) { return each.Size() >= nearby; });
    const std::size_t bins = fTransform->Bins();
    std::fill_n(fCross.begin(), bins, std::complex<float>());
    std::fill_n(fEnergy.begin(), nearby + 1, 0.0);
    fPresentEnergy = 0;
    for (std::size_t channel = 0; channel < fChannels; ++channel) {
        Gather(present.sound.At(channel, present.time), length, {fPresent.data(), bins});
        fPresentEnergy += DotProduct(fSound.data(), fSound.data(), length);
        Gather(history.At(channel, first), nearby, {fNear.data(), bins});
        for (std::size_t i = 0; i < nearby; ++i)
            fEnergy[i + 1] += double{fSound[i]} * fSound[i];
        for (std::size_t bin = 0; bin < bins; ++bin)
            fCross[bin] += ConjugateProduct(fPresent[bin], fNear[bin]);
    }
    std::partial_sum(fEnergy.begin(), fEnergy.begin() + static_cast<std::ptrdiff_t>(nearby) + 1, fEnergy.begin());
    fTransform->Inverse({fCross.data(), bins}, {fSound.data(), fTransform->Size()});
    for (std::size_t place = 0; place <= fRoom; ++place)
        fSound[place] =
            static_cast<float>(Normalised(fSound[place], fEnergy[place + length] - fEnergy[place], fPresentEnergy));
}

// Of the places that are more alike than those beside them; the middle when there is none.
std::size_t SpliceSearch::BestCoarse(const Room& room, std::int64_t first) const noexcept {
    const std::size_t middle = fRoom / 2;
    std::size_t best = middle;
    double bestScore = 0;
    for (std::size_t place = 1; place < fRoom; ++place) {
        if (fSound[place] < fSound[place - 1] || fSound[place] < fSound[place + 1]) continue;
        const std::int64_t time = first + static_cast<std::int64_t>(place * fStep);
        if (time < room.first || time > room.last) continue;
        const double off = static_cast<double>(place) / static_cast<double>(middle) - 1;
        const double score = fSound[place] * (1 - kPull * off * off);
        if (score <= bestScore) continue;
        best = place;
        bestScore = score;
    }
    return best;
}

// From each time to the next the energy changes by what comes and what goes.
SpliceSearch::Place SpliceSearch::Refine(const Present& present, const HistoryBuffer& history,
                                         std::int64_t time) const noexcept {
    const std::int64_t reach = fStep == 1 ? 0 : static_cast<std::int64_t>(fStep);
    double nearEnergy = EnergyAt(history, time - reach - 1, present.length);
    const auto likenessAt = [&](std::int64_t at) {
        const double likeness = Normalised(ProductAt(present, history, at), nearEnergy, fPresentEnergy);
        nearEnergy = std::max(0.0, nearEnergy + EnergyAt(history, at + static_cast<std::int64_t>(present.length), 1) -
                                       EnergyAt(history, at, 1));
        return likeness;
    };
    double before = 0;
    double peak = likenessAt(time - reach - 1);
    double behind = likenessAt(time - reach);
    double best = -1;
    auto found = static_cast<double>(time);
    for (std::int64_t at = time - reach; at <= time + reach; ++at) {
        before = std::exchange(peak, std::exchange(behind, likenessAt(at + 1)));
        if (peak <= best) continue;
        best = peak;
        found = static_cast<double>(at) + PeakBetween(before, peak, behind);
    }
    const double energy = EnergyAt(present.sound, present.time, present.length) + kLeast;
    const double rise = RiseTo(present, history, std::llround(found));
    const bool isSilent = std::max(1.0, rise) * energy < kInaudible * static_cast<double>(present.length);
    return {found, isSilent ? 1 : std::clamp(best / std::sqrt(energy), 0.0, 1.0), rise};
}

double SpliceSearch::RiseTo(const Present& present, const HistoryBuffer& history, std::int64_t time) const noexcept {
    return (EnergyAt(history, time, present.length) + kLeast) /
           (EnergyAt(present.sound, present.time, present.length) + kLeast);
}

double SpliceSearch::EnergyAt(const HistoryBuffer& history, std::int64_t time, std::size_t length) const noexcept {
    double energy = 0;
    for (std::size_t channel = 0; channel < fChannels; ++channel)
        energy += DotProduct(history.At(channel, time), history.At(channel, time), length);
    return energy;
}

double SpliceSearch::ProductAt(const Present& present, const HistoryBuffer& history, std::int64_t time) const noexcept {
    double product = 0;
    for (std::size_t channel = 0; channel < fChannels; ++channel)
        product += DotProduct(present.sound.At(channel, present.time), history.At(channel, time), present.length);
    return product;
}

} // namespace qoc::dsp
