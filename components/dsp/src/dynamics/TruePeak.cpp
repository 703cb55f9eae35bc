#include "qoc/dsp/dynamics/TruePeak.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace qoc::dsp {

namespace {

constexpr std::size_t kPhases = 4; // values at once
constexpr double kLongBeta = 0.5;  // of the Kaiser windows: hardly one, so that little is lost just below half the rate
constexpr double kFineBeta = 6;    // 60 dB down
// 0.06 dB: what eight places a sample miss of a peak near half the sample rate, and what a gain on its way adds there.
constexpr float kMissed = 1.007F;
// Of white noise the interpolator's two ends beyond the first filter's reach hold this share: the sum of 1 / (pi d)^2
// over all distances d from there on, twice. Three standard deviations are hardly ever passed.
constexpr float kBeyond = 3 * 2 / (std::numbers::pi_v<float> * 27.713F); // sqrt(768)
static_assert(TruePeak::kTaps == 768);

template <std::size_t kTaps>
using PhaseWeights = std::array<std::array<float, kPhases>, kTaps>; // oldest tap first

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
                fine[tap][phase] = Sinc(tap, TruePeak::kFineTaps, static_cast<double>(phase) / kPhases, kFineBeta);
        }
        for (std::size_t tap = 0; tap < TruePeak::kMeterTaps; ++tap) {
            for (std::size_t phase = 0; phase < kPhases / 2; ++phase) {
                const auto weight = static_cast<float>(kMeter[phase][tap]);
                meter[tap][phase] = meter[TruePeak::kMeterTaps - 1 - tap][kPhases - 1 - phase] = weight;
            }
        }
    }
    // `offset` samples after the one at taps / 2 - 1.
    static float Sinc(std::size_t tap, std::size_t taps, double offset, double beta) {
        const std::size_t reach = taps / 2;
        const double distance = static_cast<double>(tap) - static_cast<double>(reach - 1) - offset;
        return static_cast<float>(WindowedSinc(distance, static_cast<double>(reach), beta));
    }

    std::array<float, TruePeak::kTaps> half{};
    PhaseWeights<TruePeak::kFineTaps> fine{}; // the first phase is the value itself
    PhaseWeights<TruePeak::kMeterTaps> meter{};
};

const Weights& TheWeights() noexcept {
    static const Weights sWeights;
    return sWeights;
}

// In eight sums, which need not wait for each other.
float Product(const std::array<float, TruePeak::kTaps>& weights, const float* sound) noexcept {
    constexpr std::size_t kLanes = 8;
    std::array<float, kLanes> sums{};
    for (std::size_t i = 0; i < weights.size(); i += kLanes) {
        for (std::size_t lane = 0; lane < kLanes; ++lane)
            sums[lane] += weights[i + lane] * sound[i + lane];
    }
    return ((sums[0] + sums[4]) + (sums[1] + sums[5])) + ((sums[2] + sums[6]) + (sums[3] + sums[7]));
}

template <std::size_t kTaps>
float LargestPhase(const PhaseWeights<kTaps>& weights, const float* sound) noexcept {
    std::array<float, kPhases> sums{};
    for (std::size_t tap = 0; tap < kTaps; ++tap) {
        for (std::size_t phase = 0; phase < kPhases; ++phase)
            sums[phase] += weights[tap][phase] * sound[tap];
    }
    return std::max({std::abs(sums[0]), std::abs(sums[1]), std::abs(sums[2]), std::abs(sums[3])});
}

} // namespace

void TruePeak::Reset() noexcept {
    fSound.Reset();
    fDoubled.Reset();
    fEdge.Reset();
    TheWeights();
}

float TruePeak::Next(float sample) noexcept {
    fSound.Push(sample);
    // The newest of the window's samples that the first filter and the meter read; with those of the second filter's
    // delay beyond it, both tell the same peak.
    const float* const now = fSound.Oldest() + kFineTaps;
    const float atSample = NextDoubled(now[kTaps / 2 - 1]);
    const float betweenSamples = NextDoubled(Product(TheWeights().half, now));
    constexpr std::size_t kMeterMiddle = kMeterTaps / 2 - 1;
    const float* const meterStart = now + kTaps / 2 - 1 - kFineTaps / 4 - kMeterMiddle;
    return kMissed * std::max({atSample, betweenSamples, LargestPhase(TheWeights().meter, meterStart)}) +
           kBeyond * std::sqrt(fEdge.Next(sample));
}

// A low-pass as narrow as the filter's ends are wide, 150 Hz at 44.1 kHz, so that tones farther off hardly count; and
// the mean over about the filter's length.
float TruePeak::Edge::Next(float sample) noexcept {
    constexpr float kNarrow = 1.0F / 48;
    constexpr float kNoiseGain = kNarrow / 4; // what two such low-passes leave of white noise
    constexpr float kMean = 1.0F / 512;
    fSign = -fSign;
    fFirst += kNarrow * (fSign * sample - fFirst);
    fSecond += kNarrow * (fFirst - fSecond);
    fMeanSquare += kMean * (fSecond * fSecond / kNoiseGain - fMeanSquare);
    return fMeanSquare;
}

float TruePeak::NextDoubled(float value) noexcept {
    fDoubled.Push(value);
    return LargestPhase(TheWeights().fine, fDoubled.Oldest());
}

} // namespace qoc::dsp
