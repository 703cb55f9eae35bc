#pragma once

#include "kromediatypes/AudioBlock.h"
#include "qoc/dsp/stream/HopGrid.h"
#include "qoc/dsp/stream/PacedSteps.h"

#include <cstddef>
#include <span>
#include <vector>

namespace qoc::dsp {

// What a restoring effect does to the frames of all channels, in steps.
class FrameRepairer {
public:
    // Of one channel: `original` as it came in, `repaired` the same with what earlier frames have repaired; both are
    // before + hop + after samples.
    struct Frame {
        std::span<const float> original;
        std::span<float> repaired;
    };

    // The next frames. They stay valid and unchanged until the last step, and what counts is what stands in `repaired`
    // then: the samples of the hop are heard next, those behind it are seen again. Sound thread.
    virtual void Begin(std::span<const Frame> frames) noexcept = 0;
    // Sound thread; 0 to one below the number of steps prepared for, in order.
    virtual void Step(std::size_t step) noexcept = 0;

protected:
    ~FrameRepairer() = default;
};

// Sound as a stream of overlapping frames for effects that repair single samples in the time domain and leave the
// others bit by bit as they are. Frames lie on a grid that starts at Reset, so that blocks of any size give the same
// output. The work on a frame is spread evenly over the time of the hop after it, so that no block carries all of it;
// the sound is later by that hop. How the steps fall does not change what comes out. Owned by its effect. Samples that
// are no number, or absurdly large, count as zero.
class RepairStream {
public:
    // Parts of a frame, in samples: the hop is what a frame is about, with the sound before and after it to go by.
    struct Layout {
        std::size_t before = 0;
        std::size_t hop = 0;
        std::size_t after = 0;

        std::size_t Frame() const noexcept { return before + hop + after; }
    };

    // `costs` of the steps of the work on the frames of all channels together, in any unit. Allocates, and resets.
    void Prepare(std::size_t channels, const Layout& layout, std::span<const double> costs);
    // Forgets all sound, and the work that is under way.
    void Reset() noexcept;

    std::size_t Latency() const noexcept { return 2 * fLayout.hop + fLayout.after; }
    // Sound thread. As many channels as prepared; outputs may be the inputs.
    void Process(const kromediatypes::AudioBlock& block, FrameRepairer& repairer) noexcept;

private:
    // The hop that is heard, the frame that is worked on from there on, and room for the next hop.
    struct Channel {
        std::vector<float> original;
        std::vector<float> repaired;
    };

    void Exchange(const kromediatypes::AudioBlock& block, std::size_t begin, std::size_t frames,
                  std::size_t position) noexcept;
    void Advance() noexcept;

    Layout fLayout;
    std::vector<Channel> fChannels;
    std::vector<FrameRepairer::Frame> fFrames;
    HopGrid fGrid;
    PacedSteps fPace;
};

} // namespace qoc::dsp
