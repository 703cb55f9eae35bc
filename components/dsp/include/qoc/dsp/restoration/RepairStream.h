#pragma once

#include "kromediatypes/AudioBlock.h"
#include "qoc/dsp/stream/HopGrid.h"

#include <cstddef>
#include <span>
#include <vector>

namespace qoc::dsp {

// What a restoring effect does to one frame of one channel.
class FrameRepairer {
public:
    // `original` is the frame as it came in, `repaired` the same with what earlier frames have repaired; both are
    // before + hop + after samples. What counts is what stands in `repaired` afterwards: the samples of the hop are
    // heard next, those behind it are seen again. Sound thread.
    virtual void Repair(std::size_t channel, std::span<const float> original, std::span<float> repaired) noexcept = 0;

protected:
    ~FrameRepairer() = default;
};

// Sound as a stream of overlapping frames for effects that repair single samples in the time domain and leave the
// others bit by bit as they are. Frames lie on a grid that starts at Reset, so that blocks of any size give the same
// output. Owned by its effect. Samples that are no number, or absurdly large, count as zero.
class RepairStream {
public:
    // Parts of a frame, in samples: the hop is what a frame is about, with the sound before and after it to go by.
    struct Layout {
        std::size_t before = 0;
        std::size_t hop = 0;
        std::size_t after = 0;

        std::size_t Frame() const noexcept { return before + hop + after; }
    };

    // Allocates, and resets.
    void Prepare(std::size_t channels, const Layout& layout);
    // Forgets all sound.
    void Reset() noexcept;

    std::size_t Latency() const noexcept { return fLayout.hop + fLayout.after; }
    // Sound thread. As many channels as prepared; outputs may be the inputs.
    void Process(const kromediatypes::AudioBlock& block, FrameRepairer& repairer) noexcept;

private:
    struct Channel {
        std::vector<float> original; // the last frame's worth, and room for the next hop
        std::vector<float> repaired;
    };

    void Exchange(const kromediatypes::AudioBlock& block, std::size_t begin, std::size_t frames,
                  std::size_t position) noexcept;
    void RunFrame(FrameRepairer& repairer) noexcept;

    Layout fLayout;
    std::vector<Channel> fChannels;
    HopGrid fGrid;
};

} // namespace qoc::dsp
