#pragma once

#include "qoc/components/ComponentBase.h"
#include "qoc/dsp/delay/BandLimitedInterpolator.h"
#include "qoc/dsp/delay/HistoryBuffer.h"
#include "qoc/dsp/pitch/SoundStretcher.h"
#include "qoc/dsp/pitch/TimeMap.h"
#include "qoc/dsp/stream/SmoothedValue.h"

#include <array>

namespace qoc::components {

// Shifts the pitch and keeps the length: the sound is stretched by the ratio and read back that much faster, in one go.
// The delay is the same whatever the settings, so that every sound comes out when it is due, and a change of the ratio
// is heard at the frame at which it was made. At ratio 1 the sound comes out bit by bit as it went in, delayed. New
// splicing settings count from the next splice on.
class PitchShift : public ComponentBase {
public:
    PitchShift();

    std::size_t Latency() const noexcept override { return fLatency; }
    // As long as a piece may be late.
    std::size_t Tail() const noexcept override;

protected:
    ~PitchShift() override;

    void PrepareProcessing(std::size_t maximumBlock) override;
    void ResetProcessing() noexcept override;
    void ReadParameters(bool settle) noexcept override;
    void ProcessBlock(const kroaudiofilterhost::AudioFilterBlock& block) noexcept override;

private:
    // Where a sound is read, between its samples.
    struct Reading {
        std::int64_t whole = 0;
        BandLimitedInterpolator::Weights weights;
    };

    SoundStretcher::Lengths ReadLengths() const noexcept;
    void Write(const kroaudiofilterhost::AudioFilterBlock& block, std::size_t frame, std::int64_t source) noexcept;
    void WriteShifted(const kroaudiofilterhost::AudioFilterBlock& block, std::size_t frame, std::int64_t source,
                      float wet) noexcept;
    void PlaceReading(double place, Reading& reading) noexcept;
    static float Read(const HistoryBuffer& sound, const Reading& reading, std::size_t channel) noexcept;

    BandLimitedInterpolator fInterpolator;
    BandLimitedInterpolator::Precision fPrecision = BandLimitedInterpolator::Precision::kHigh;
    std::array<Reading, 2> fReadings; // of the stretcher's voices
    TimeMap fTimeMap;
    HistoryBuffer fHistory;
    OnsetDetector fOnsets;
    SoundStretcher fStretcher;
    SmoothedValue fRatio;
    SmoothedValue fWet; // 0: the ratio is 1 and the sound passes as it is
    std::size_t fLatency = 0;
};

} // namespace qoc::components
