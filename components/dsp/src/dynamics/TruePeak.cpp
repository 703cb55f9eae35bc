#include "qoc/dsp/dynamics/TruePeak.h"

#include "dynamics/TruePeakFilters.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace qoc::dsp {

namespace {

constexpr std::size_t kPhases = 4;
constexpr double kLongBeta = 0.5; // of the Kaiser windows: hardly one, so that little is lost just below half the rate
constexpr double kFineBeta = 6;   // 60 dB down
// 0.06 dB: what eight places a sample miss of a peak near half the sample rate, and what a gain on its way adds there.
constexpr float kMissed = 1.007F;
// Of white noise the interpolator's two ends beyond the first filter's reach hold this share: the sum of 1 / (pi d)^2
// over all distances d from there on, twice. Three standard deviations are hardly ever passed.
constexpr float kBeyond = 3 * 2 / (std::numbers::pi_v<float> * 27.713F); // sqrt(768)
static_assert(TruePeak::kTaps == 768);

using PhaseWeights = std::array<std::array<float, 2 * PlaceBetween::kTaps>, kPhases>;
static_assert(TruePeak::kFineTaps == 2 * PlaceBetween::kTaps && TruePeak::kMeterTaps == 2 * PlaceBetween::kTaps);

// ITU-R BS.1770-4, annex 2, table of the order 48 interpolating filter; the last two phases are the first two
// backwards.
constexpr std::array<std::array<double, TruePeak::kMeterTaps>, kPhases / 2> kMeter = {{
    {0.0017089843750, 0.0109863281250, -0.0196533203125, 0.0332031250000, -0.0594482421875, 0.1373291015625,
     0.9721679687500, -0.1022949218750, 0.0476074218750, -0.0266113281250, 0.0148925781250, -0.0083007812500},
    {-0.0291748046875, 0.0292968750000, -0.0517578125000, 0.0891113281250, -0.1665039062500, 0.4650878906250,
     0.7797851562500, -0.2003173828125, 0.1015625000000, -0.0582275390625, 0.0330810546875, -0.0189208984375},
}};

// The ideal interpolator under a window (Kaiser) of `reach` samples to either side.
double WindowedSinc(double distance, double reach, double beta) {
    if (std::abs(distance) >= reach) return 0;
    const double place = distance / reach;
    const double window = std::cyl_bessel_i(0, beta * std::sqrt(1 - place * place)) / std::cyl_bessel_i(0, beta);
    const double angle = std::numbers::pi * distance;
    return distance == 0 ? 1 : window * std::sin(angle) / angle;
}

struct Weights {
    Weights() {
        for (std::size_t tap = 0; tap < TruePeak::kTaps; ++tap)
            half[tap] = Sinc(tap, TruePeak::kTaps, 0.5, kLongBeta);
        for (std::size_t tap = 0; tap < TruePeak::kFineTaps; ++tap) {
            for (std::size_t phase = 0; phase < kPhases; ++phase)
                fine[phase][OfTurns(tap)] =
                    Sinc(tap, TruePeak::kFineTaps, static_cast<double>(phase) / kPhases, kFineBeta);
        }
        for (std::size_t tap = 0; tap < TruePeak::kMeterTaps; ++tap) {
            for (std::size_t phase = 0; phase < kPhases / 2; ++phase) {
                const auto weight = static_cast<float>(kMeter[phase][tap]);
                meter[phase][tap] = meter[kPhases - 1 - phase][TruePeak::kMeterTaps - 1 - tap] = weight;
            }
        }
    }
    // The sounds that lie at the samples and between them take turns; the newest tap is of the first.
    static std::size_t OfTurns(std::size_t tap) { return tap % 2 == 1 ? tap / 2 : PlaceBetween::kTaps + tap / 2; }
    // `offset` samples after the one at taps / 2 - 1.
    static float Sinc(std::size_t tap, std::size_t taps, double offset, double beta) {
        const std::size_t reach = taps / 2;
        const double distance = static_cast<double>(tap) - static_cast<double>(reach - 1) - offset;
        return static_cast<float>(WindowedSinc(distance, static_cast<double>(reach), beta));
    }

    std::array<float, TruePeak::kTaps> half{};
    PhaseWeights fine{};  // the first phase is the value itself
    PhaseWeights meter{}; // oldest tap first
};

const Weights& TheWeights() noexcept {
    static const Weights sWeights;
    return sWeights;
}

} // namespace

void TruePeak::Reset() noexcept {
    fSound.fill(0);
    fBetween.fill(0);
    fEdge.Reset();
    TheWeights();
}

void TruePeak::Next(std::span<const float> samples, Row& peaks) noexcept {
    static_assert(kSlack >= kFilterSlack);
    const std::size_t count = samples.size();
    std::ranges::copy(samples, fSound.begin() + kSoundBefore);
    FilterRow(TheWeights().half, fSound.data(), fBetween.data() + kBetweenBefore, count);

    FindPlaces(peaks, count);
    Row beyond;
    fEdge.Next(samples, beyond);
    for (std::size_t k = 0; k < count; ++k)
        peaks[k] = kMissed * peaks[k] + kBeyond * std::sqrt(beyond[k]);

    std::copy_n(fSound.begin() + static_cast<std::ptrdiff_t>(count), kSoundBefore, fSound.begin());
    std::copy_n(fBetween.begin() + static_cast<std::ptrdiff_t>(count), kBetweenBefore, fBetween.begin());
}

// The largest magnitudes of the present row.
void TruePeak::FindPlaces(Row& peaks, std::size_t count) const noexcept {
    const Weights& weights = TheWeights();
    // The samples in front of those places; with the second filter's delay beyond them, the meter tells the same peak.
    const float* const at = fSound.data() + kTaps / 2 - 1;
    const float* const between = fBetween.data() + kBetweenBefore;
    const float* const metered = at + kMeterTaps / 2 - kFineTaps / 4;
    // The first phase of the second filter is the sound itself.
    const float* const atFirst = at - kFineTaps / 4;
    const float* const betweenFirst = between - kFineTaps / 4;
    for (std::size_t k = 0; k < count; ++k)
        peaks[k] = std::max(std::abs(atFirst[k]), std::abs(betweenFirst[k]));
    constexpr std::size_t kReach = PlaceBetween::kTaps - 1;
    std::array<PlaceBetween, 3 * kPhases - 2> places{};
    auto place = places.begin();
    for (std::size_t phase = 1; phase < kPhases; ++phase) {
        *place++ = {&weights.fine[phase], at - kReach, between - kReach - 1};
        *place++ = {&weights.fine[phase], between - kReach, at - kReach};
    }
    for (const auto& phase : weights.meter)
        *place++ = {&phase, metered - 2 * kReach - 1, metered - kReach};
    RaisePeaks(places, peaks.data(), count);
}

// A low-pass as narrow as the filter's ends are wide, 150 Hz at 44.1 kHz, so that tones farther off hardly count; and
// the mean over about the filter's length.
void TruePeak::Edge::Next(std::span<const float> samples, Row& meanSquares) noexcept {
    constexpr float kNarrow = 1.0F / 48;
    constexpr float kNoiseGain = kNarrow / 4; // what two such low-passes leave of white noise
    constexpr float kMean = 1.0F / 512;
    for (std::size_t k = 0; k < samples.size(); ++k) {
        fSign = -fSign;
        fFirst = (1 - kNarrow) * fFirst + kNarrow * (fSign * samples[k]);
        fSecond = (1 - kNarrow) * fSecond + kNarrow * fFirst;
        fMeanSquare = (1 - kMean) * fMeanSquare + kMean / kNoiseGain * (fSecond * fSecond);
        meanSquares[k] = fMeanSquare;
    }
}

} // namespace qoc::dsp
