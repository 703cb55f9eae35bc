#pragma once

#include "qoc/components/ComponentBase.h"
#include "qoc/components/HandOver.h"
#include "qoc/components/PitchClock.h"
#include "qoc/components/SampleInterpolator.h"
#include "qoc/components/SmoothedValue.h"
#include "qoc/components/SoundHistory.h"
#include "qoc/components/SpliceStretcher.h"

namespace qoc::components {

// Shifts the pitch and keeps the length: the sound is stretched by the ratio and read back that much faster. The delay
// is the same whatever the settings, so that every sound comes out when it is due, and a change of the ratio is heard
// at the frame at which it was made. At ratio 1 the sound comes out bit by bit as it went in, delayed.
//
// New splicing settings need a new stretcher. The setters make it, on the user-interface thread; the sound thread
// takes it over, feeds it what it has missed and fades over to it.
class PitchShift : public ComponentBase {
public:
    PitchShift();

    std::size_t Latency() const noexcept override { return fLatency; }

protected:
    ~PitchShift() override;

    void ParameterHasChanged(int index) override;
    void PrepareProcessing(std::size_t maximumBlock) override;
    void ResetProcessing() noexcept override;
    void ReadParameters(bool settle) noexcept override;
    void ProcessBlock(const kroaudiofilterhost::AudioFilterBlock& block) noexcept override;

private:
    std::unique_ptr<SpliceStretcher> MakeStretcher() const;
    void TakeStretcher() noexcept;
    // Frames up to the end of a chunk.
    void ProcessPart(const kroaudiofilterhost::AudioFilterBlock& block, std::size_t begin, std::size_t frames) noexcept;
    void Write(const kroaudiofilterhost::AudioFilterBlock& block, std::size_t frame, std::int64_t source) noexcept;
    float ReadStretched(const SpliceStretcher& stretcher, std::size_t channel, std::int64_t position) const noexcept;

    SampleInterpolator fInterpolator;
    SampleInterpolator::Kind fKind = SampleInterpolator::Kind::kSinc32;
    SampleInterpolator::Weights fWeights;
    bool fQuickSeek = false;
    PitchClock fClock;
    SoundHistory fHistory;
    SmoothedValue fRatio;
    SmoothedValue fWet;  // 0: the ratio is 1 and the sound passes as it is
    SmoothedValue fFade; // from the former stretcher to the present one
    std::unique_ptr<SpliceStretcher> fStretcher;
    std::unique_ptr<SpliceStretcher> fFormer; // being faded out
    HandOver<SpliceStretcher> fHandOver;
    std::size_t fLatency = 0;
};

} // namespace qoc::components
