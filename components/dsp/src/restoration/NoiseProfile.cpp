#include "qoc/dsp/restoration/NoiseProfile.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace qoc::dsp {

namespace {

constexpr std::size_t kReach = 14; // looks before and after
constexpr std::size_t kWindow = 2 * kReach + 1;
constexpr std::size_t kMemory = 15;   // looks, of a sound that goes on
constexpr std::size_t kRankShare = 5; // the quietest fifth
constexpr float kSilence = 1e-20F;

// A band is trusted while all that sounds in it is not more than so many times the noise.
constexpr float kTrusted = 5;
constexpr float kAboveSurroundings = 2; // their quietest quarter, within an octave
constexpr float kAboveTrend = 1.5F;
constexpr std::size_t kFewestTrusted = 5; // bands
// Power to frequency: noise that falls by 4.5 or rises by 1.5 dB an octave.
constexpr double kSteepestFall = -1.5;
constexpr double kSteepestRise = 0.5;

// How much the looks at steady noise differ, by the bins that they are taken from; measured on white noise.
float DeviationOf(double bins) {
    return static_cast<float>(2 / std::sqrt(bins) + 12 / bins);
}

// How many deviations a part of what is distributed normally lies below the mean: by the logistic curve that comes
// closest.
double DeviationsBelow(double part) {
    return std::log((1 - part) / part) / 1.702;
}

// A straight line through points, by least squares.
class Trend {
public:
    void Add(double x, double y) {
        fCount += 1;
        fX += x;
        fY += y;
        fXX += x * x;
        fXY += x * y;
    }
    bool IsCertain() const { return fCount >= kFewestTrusted; }
    double Slope() const { return (fCount * fXY - fX * fY) / (fCount * fXX - fX * fX); }
    double HeightAtZero(double slope) const { return (fY - slope * fX) / fCount; }

private:
    double fCount = 0;
    double fX = 0;
    double fY = 0;
    double fXX = 0;
    double fXY = 0;
};

} // namespace

void NoiseProfile::Prepare(const NoiseBands& bands, std::size_t bins, double sampleRate) {
    const auto all = bands.All();
    fBands.clear();
    for (const NoiseBands::Band& band : all)
        fBands.push_back({.deviation = DeviationOf(static_cast<double>(band.LongCount())),
                          .logFrequency = static_cast<float>(std::log(band.hertz))});
    fPlaces.assign(bins, {});
    for (std::size_t bin = 0; bin < bins; ++bin) {
        const double hertz = static_cast<double>(bin) / static_cast<double>(bins - 1) * sampleRate / 2;
        const auto above = std::ranges::upper_bound(all, hertz, {}, &NoiseBands::Band::hertz);
        const auto next = std::clamp<std::size_t>(static_cast<std::size_t>(above - all.begin()), 1, all.size() - 1);
        const double span = all[next].hertz - all[next - 1].hertz;
        fPlaces[bin] = {next - 1, static_cast<float>(std::clamp((hertz - all[next - 1].hertz) / span, 0.0, 1.0))};
    }
    fLookSize = 2 * fBands.size();
    fLooks.clear();
    fLooks.reserve(kWindow * fLookSize);
    fSorted.assign(std::max(kWindow, fBands.size()), 0.0F);
    fFound.assign(fBands.size(), 0.0F);
    fLevels.assign(fBands.size(), 0.0F);
    fMeans.assign(fBands.size(), 0.0F);
    fNoise.assign(bins, 0.0F);
}

void NoiseProfile::Reset() noexcept {
    fLooks.clear();
    std::ranges::fill(fNoise, 0.0F);
}

void NoiseProfile::Add(const NoiseTracker::Look& look) noexcept {
    if (std::ranges::all_of(look.sound, [](float power) { return power < kSilence; })) return;
    if (Looks() == kMemory) fLooks.erase(fLooks.begin(), fLooks.begin() + static_cast<std::ptrdiff_t>(fLookSize));
    Append(look);
}

void NoiseProfile::Record(const NoiseTracker::Look& look) {
    Append(look);
}

void NoiseProfile::Append(const NoiseTracker::Look& look) {
    fLooks.insert(fLooks.end(), look.noise.begin(), look.noise.end());
    fLooks.insert(fLooks.end(), look.sound.begin(), look.sound.end());
}

void NoiseProfile::Find(std::size_t look) noexcept {
    for (std::size_t step = 0; step < kSteps; ++step)
        Find(look, step);
}

void NoiseProfile::Find(std::size_t look, std::size_t step) noexcept {
    if (fLooks.empty()) return;
    constexpr std::size_t kParts = (kSteps - 2) / 2;
    const auto bands = StepRange::Of(step % kParts, kParts, fBands.size());
    if (step < kParts)
        FindLevels(look, bands);
    else if (step < 2 * kParts)
        LimitToSurroundings(bands);
    else if (step == 2 * kParts)
        LimitToTrend();
    else
        Tell();
}

void NoiseProfile::FindLevels(std::size_t look, StepRange bands) noexcept {
    // As many at the ends of the sound as in its midst.
    const std::size_t count = std::min(Looks(), kWindow);
    const std::size_t first = std::min(look > kReach ? look - kReach : 0, Looks() - count);
    for (std::size_t band = bands.begin; band < bands.end; ++band) {
        std::size_t heard = 0;
        float sum = 0;
        for (std::size_t each = first; each < first + count; ++each) {
            const float* const noise = fLooks.data() + each * fLookSize + band;
            const float sound = noise[fBands.size()];
            if (sound < kSilence) continue;
            fSorted[heard++] = *noise;
            sum += sound;
        }
        fFound[band] = heard > 0 ? LevelAmong(heard, fBands[band].deviation) : 0.0F;
        fMeans[band] = heard > 0 ? sum / static_cast<float>(heard) : 0.0F;
    }
}

float NoiseProfile::LevelAmong(std::size_t count, float deviation) noexcept {
    const std::size_t rank = (count - 1) / kRankShare;
    const auto begin = fSorted.begin();
    std::nth_element(begin, begin + static_cast<std::ptrdiff_t>(rank), begin + static_cast<std::ptrdiff_t>(count));
    const double below = DeviationsBelow(static_cast<double>(rank + 1) / static_cast<double>(count + 1));
    return fSorted[rank] * static_cast<float>(1 + below * deviation);
}

// What is breathed into a voice is as steady as noise, but has the voice's resonances: a band with much sound is not
// taken for much noisier than the quieter ones around it.
void NoiseProfile::LimitToSurroundings(StepRange bands) noexcept {
    for (std::size_t band = bands.begin; band < bands.end; ++band) {
        fLevels[band] = fFound[band];
        if (IsTrusted(band, fFound[band])) continue;
        const float frequency = fBands[band].logFrequency;
        const auto reach = static_cast<float>(std::numbers::ln2);
        const auto begin = std::ranges::lower_bound(fBands, frequency - reach, {}, &BandFigures::logFrequency);
        const auto end = std::ranges::upper_bound(fBands, frequency + reach, {}, &BandFigures::logFrequency);
        const auto values = std::copy(fFound.begin() + (begin - fBands.begin()),
                                      fFound.begin() + (end - fBands.begin()), fSorted.begin());
        const auto quarter = fSorted.begin() + (values - fSorted.begin()) / 4;
        std::nth_element(fSorted.begin(), quarter, values);
        fLevels[band] = std::min(fLevels[band], kAboveSurroundings * *quarter);
    }
}

// Loud sound fills the gaps with its skirts, so that a band with much of it is found too noisy: it is not taken for
// noisier than the straight line through the bands that are trusted tells.
void NoiseProfile::LimitToTrend() noexcept {
    Trend trend;
    for (std::size_t band = 0; band < fBands.size(); ++band)
        if (IsTrusted(band, fLevels[band])) trend.Add(fBands[band].logFrequency, std::log(fLevels[band]));
    if (!trend.IsCertain()) return;
    const double slope = std::clamp(trend.Slope(), kSteepestFall, kSteepestRise);
    const double height = trend.HeightAtZero(slope);
    for (std::size_t band = 0; band < fBands.size(); ++band) {
        if (IsTrusted(band, fLevels[band])) continue;
        const auto level = static_cast<float>(std::exp(height + slope * fBands[band].logFrequency));
        fLevels[band] = std::min(fLevels[band], kAboveTrend * level);
    }
}

void NoiseProfile::Tell() noexcept {
    std::ranges::transform(fPlaces, fNoise.begin(), [this](const Place& place) {
        return (1 - place.above) * fLevels[place.band] + place.above * fLevels[place.band + 1];
    });
}

bool NoiseProfile::IsTrusted(std::size_t band, float level) const noexcept {
    return level > kSilence && fMeans[band] <= kTrusted * level;
}

} // namespace qoc::dsp
