#include "qoc/dsp/pitch/SpliceJudge.h"

#include <algorithm>
#include <cmath>

namespace qoc::dsp {

namespace {

constexpr double kShortestCycle = 0.0022; // seconds
constexpr double kLongestCycle = 0.0125;
constexpr double kCompared = 0.012;

// From where on a sound has a pitch, repeats itself whatever its pitch is, and up to where it is noise.
constexpr double kClear = 0.85;
constexpr double kRepeated = 0.9985;
constexpr double kNoise = 0.4;

// Pieces of one voice are less alike than its cycles, but not by much; vibrato is all that a clear one loses. Those of
// a chord may be much less alike, or more: then what has been taken for a cycle is none.
constexpr double kVeryClear = 0.99;
constexpr double kMostByCycle = 2;
constexpr double kMostByVibrato = 0.015;
constexpr double kLessByCycle = 1; // to go back
constexpr double kLessByVibrato = 0.007;

// A voice may be unlike itself for once, where it changes, and a chord alike by chance.
constexpr double kMostAtOnce = 2;
constexpr double kUsualStrain = 0.5;
constexpr double kLatest = 0.3; // the share of the last splice
constexpr int kTimesToGoBack = 3;

} // namespace

void SpliceJudge::Reset() noexcept {
    fClarity = 0;
    fStrain = kUsualStrain;
    fTimes = 0;
}

void SpliceJudge::Listen(SpliceSearch& search, const HistoryBuffer& history, std::int64_t time) noexcept {
    const auto before = [&](double seconds) { return time - std::llround(seconds * fSampleRate); };
    const SpliceSearch::Room cycles = {before((kShortestCycle + kLongestCycle) / 2), before(kLongestCycle),
                                       before(kShortestCycle)};
    fClarity =
        search.Find({history, time, static_cast<std::size_t>(kCompared * fSampleRate)}, history, cycles).likeness;
}

bool SpliceJudge::HasPitch() const noexcept {
    return fClarity >= kClear;
}

bool SpliceJudge::SuitsStill(double likeness) noexcept {
    fTimes = 0;
    if (!HasPitch() || likeness >= kRepeated) return IsRepeatedOrNoise(likeness);
    const double most = LossOfVoice(kMostByCycle, kMostByVibrato);
    const double loss = IsVoice(likeness, most) ? (1 - likeness) / most : kMostAtOnce;
    fStrain += kLatest * (loss - fStrain);
    return fStrain < 1;
}

bool SpliceJudge::SuitsAgain(double likeness) noexcept {
    const bool suits =
        IsRepeatedOrNoise(likeness) || (HasPitch() && IsVoice(likeness, LossOfVoice(kLessByCycle, kLessByVibrato)));
    fTimes = suits ? fTimes + 1 : 0;
    if (fTimes < kTimesToGoBack) return false;
    fStrain = kUsualStrain;
    return true;
}

double SpliceJudge::LossOfVoice(double byCycle, double byVibrato) const noexcept {
    return std::max(byCycle * (1 - fClarity), fClarity < kVeryClear ? 0 : byVibrato);
}

bool SpliceJudge::IsVoice(double likeness, double mostLoss) const noexcept {
    return fClarity >= std::min(likeness, kVeryClear) && 1 - likeness <= mostLoss;
}

bool SpliceJudge::IsRepeatedOrNoise(double likeness) const noexcept {
    return likeness >= kRepeated || (likeness < kNoise && fClarity < kNoise);
}

} // namespace qoc::dsp
