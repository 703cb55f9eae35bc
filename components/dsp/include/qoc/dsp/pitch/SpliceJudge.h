#pragma once

#include "qoc/dsp/pitch/SpliceSearch.h"

#include <cstdint>

namespace qoc::dsp {

// Says whether splices suit the sound: one with a single pitch, one that repeats itself anyway, or noise. What has more
// than one pitch goes on unlike itself wherever it is spliced. Owned by the stretcher. Real time safe.
class SpliceJudge {
public:
    void Prepare(double sampleRate) noexcept { fSampleRate = sampleRate; }
    void Reset() noexcept;

    // How alike two cycles of the sound at `time` are, if it has a pitch from 80 to 450 Hz (McLeod and Wyvill, "A
    // smarter way to find pitch", 2005, call that clarity). The history has all from 25 ms before to as much behind.
    void Listen(SpliceSearch& search, const HistoryBuffer& history, std::int64_t time) noexcept;
    bool HasPitch() const noexcept;

    // Whether to go on with splices, or to go back to them when something else has been made instead. `likeness`: of
    // the pieces of the next one.
    bool SuitsStill(double likeness) noexcept;
    bool SuitsAgain(double likeness) noexcept;

private:
    double LossOfVoice(double byCycle, double byVibrato) const noexcept;
    bool IsVoice(double likeness, double mostLoss) const noexcept;
    bool IsRepeatedOrNoise(double likeness) const noexcept;

    double fSampleRate = 44100;
    double fClarity = 0;
    double fStrain = 0; // what splices lost lately of what they may
    int fTimes = 0;     // in a row that they would suit again
};

} // namespace qoc::dsp
