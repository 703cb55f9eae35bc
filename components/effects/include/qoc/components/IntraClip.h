#pragma once

#include "qoc/components/ComponentBase.h"
#include "qoc/components/ParameterIndices.h"
#include "qoc/dsp/restoration/ClipDetector.h"
#include "qoc/dsp/restoration/ClipRestorer.h"
#include "qoc/dsp/restoration/RepairStream.h"
#include "qoc/dsp/stream/SmoothedValue.h"

#include <cstddef>
#include <span>
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

    struct Channel {
        ClipDetector detector;
        ClipDetector::Levels levels;
        std::span<const ClipDetector::Run> runs; // of its frame; none when there is nothing to do to it
        std::vector<float> heard;                // a frame that Listen fills
    };

    void Begin(std::span<const Frame> frames) noexcept override;
    void Step(std::size_t step) noexcept override;
    bool IsDone() const noexcept;
    double CostLeft() const noexcept;
    double Work() noexcept;
    double Detect() noexcept;
    bool IsHeard(const ClipDetector::Run& run) const noexcept;
    void HearFrame() noexcept;

    RepairStream fStream;
    RepairStream::Layout fLayout;
    std::size_t fSteps = 0;
    std::vector<Channel> fChannels;
    ClipRestorer fRestorer;
    Settings fSettings; // as they are
    Settings fTaken;    // for the frame that is worked on
    std::span<const Frame> fFrames;
    std::size_t fDetected = 0; // channels whose clipped runs are known
    std::size_t fBegun = 0;    // and which are restored, or being it
    SmoothedValue fGain;
    std::size_t fHeardFrames = 0;
};

} // namespace qoc::components
