#pragma once

#include "qoc/components/ComponentBase.h"
#include "qoc/components/ParameterIndices.h"
#include "qoc/dsp/restoration/ClipDetector.h"
#include "qoc/dsp/restoration/ClipRestorer.h"
#include "qoc/dsp/restoration/RepairStream.h"
#include "qoc/dsp/stream/SmoothedValue.h"

#include <vector>

namespace qoc::components {

// Gives clipped peaks back what was cut off. A curve through the samples on both sides does it (cubic), or a model of
// the spectrum around, with what is known of a clipped sample: that it was no lower than it is. What was not clipped
// comes out as it went in, but for the gain, which makes room for the peaks; later by one and a quarter of the FFT
// size. A render goes over the model more often than playing does, and finds the clipping level in the whole sound
// beforehand.
//
// The FFT size is taken when the effect is prepared. It is that at 44.1 and 48 kHz; at 96 kHz it is twice as long, and
// so on.
class IntraClip : public ComponentBase, private FrameRepairer {
public:
    IntraClip();

    std::size_t Latency() const noexcept override { return fStream.Latency(); }
    bool WantsToListen() const noexcept override { return IsOn(kIntraClipFindLevel); }

protected:
    ~IntraClip() override;

    void PrepareProcessing(std::size_t maximumBlock) override;
    void ResetProcessing() noexcept override;
    void ReadParameters(bool settle) noexcept override;
    void ProcessBlock(const kroaudiofilterhost::AudioFilterBlock& block) noexcept override;

    void OnListen(std::span<const float* const> inputs, std::size_t frames) override;

private:
    struct Settings {
        ClipDetector::Settings detection;
        ClipRestorer::Settings restoration;
    };

    void Begin(std::span<const Frame> frames) noexcept override;
    void Step(std::size_t step) noexcept override;
    bool BeginChannel(std::size_t channel) noexcept;
    void HearFrame() noexcept;

    RepairStream fStream;
    RepairStream::Layout fLayout;
    ClipDetector fDetector;
    std::vector<ClipDetector::Levels> fLevels; // by channel
    ClipRestorer fRestorer;
    Settings fSettings; // as they are
    Settings fTaken;    // for the frame that is worked on
    std::span<const Frame> fFrames;
    bool fIsBusy = false; // there is something to do to the channel's frame
    SmoothedValue fGain;
    std::vector<std::vector<float>> fHeard; // by channel, a frame that Listen fills
    std::size_t fHeardFrames = 0;
};

} // namespace qoc::components
