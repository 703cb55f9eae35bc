#pragma once

#include "kromediatypes/AudioBlock.h"
#include "qoc/dsp/restoration/RepairStream.h"
#include "qoc/dsp/stream/HopGrid.h"

#include <cstddef>
#include <span>
#include <vector>

namespace qoc::dsp {

// What a restoring effect does to one frame of one channel, in steps of about equal work.
class PacedFrameRepairer {
public:
    // The next frame is that of `channel`, as RepairStream's: `original` as it came in, `repaired` the same with what
    // earlier frames have repaired. Both stay valid and unchanged until the last step, and what counts is what stands
    // in `repaired` then. True when there is something to do to it. Sound thread.
    virtual bool Begin(std::size_t channel, std::span<const float> original, std::span<float> repaired) noexcept = 0;
    // Sound thread; 0 to one below the number of steps prepared for, in order.
    virtual void Step(std::size_t step) noexcept = 0;

protected:
    ~PacedFrameRepairer() = default;
};

// A stream of overlapping frames like RepairStream's, for effects that work long on a frame: the work is spread evenly
// over the time of the hop after it, so that no block carries a whole frame's load. The sound is later by that hop. How
// the steps fall does not change what comes out. Owned by its effect. Samples that are no number, or absurdly large,
// count as zero.
class PacedRepairStream {
public:
    using Layout = RepairStream::Layout;

    // `steps` of work on a frame. Allocates, and resets.
    void Prepare(std::size_t channels, const Layout& layout, std::size_t steps);
    // Forgets all sound, and the work that is under way.
    void Reset() noexcept;

    std::size_t Latency() const noexcept { return 2 * fLayout.hop + fLayout.after; }
    // Sound thread. As many channels as prepared; outputs may be the inputs.
    void Process(const kromediatypes::AudioBlock& block, PacedFrameRepairer& repairer) noexcept;

private:
    // The hop that is heard, the frame that is worked on from there on, and room for the next hop.
    struct Channel {
        std::vector<float> original;
        std::vector<float> repaired;
    };

    void Exchange(const kromediatypes::AudioBlock& block, std::size_t begin, std::size_t frames,
                  std::size_t position) noexcept;
    void WorkUntil(std::size_t position, PacedFrameRepairer& repairer) noexcept;
    void Advance() noexcept;

    Layout fLayout;
    std::size_t fSteps = 1;
    std::vector<Channel> fChannels;
    HopGrid fGrid;
    std::size_t fDone = 0; // steps in this hop, all channels' together
    bool fIsBusy = false;  // there is something to do to the channel's frame
};

} // namespace qoc::dsp
