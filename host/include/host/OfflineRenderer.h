#pragma once

#include "host/Automation.h"
#include "host/Sound.h"
#include "host/SoundStream.h"
#include "kroaudiofilterhost/AudioFilter.h"

#include <boost/function.hpp>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace qohost {

struct RenderOptions {
    std::size_t blockFrames = 4096;
    // How much longer than the input the output is; nothing: by what the effect goes on sounding.
    std::optional<double> tailSeconds = std::nullopt;
    double maximumTailSeconds = 60; // for effects that never end
    // kLive: as playing sounds, with nothing heard first.
    kroaudiofilterhost::AudioFilterQuality quality = kroaudiofilterhost::AudioFilterQuality::kRender;
    // Made for the filter: its values hold from their frames of the sound on, to the sample, for blocks end there.
    Automation automation = {};
    // Called after each block with the part done, 0...1; false cancels. Empty: nobody asks.
    boost::function<bool(double)> progress;
};

// Runs sound through a filter block by block, and takes the filter's latency out again. A filter that wants to listen
// first hears the sound twice. Memory does not follow the length. One thread, which may be any: the filter must not be
// run, nor set, by anybody else meanwhile; it is left prepared, and suspended as it was.
class OfflineRenderer {
public:
    // Prepares the filter. Both have to outlive this. Throws krocore::config::Error when the filter can't work on the
    // sound.
    OfflineRenderer(kroaudiofilterhost::AudioFilter& filter, SoundReader& input, RenderOptions options = {});

    // What comes out, at the input's sample rate.
    float SampleRate() const { return fInput.SampleRate(); }
    const kromediatypes::AudioChannelLayout& Layout() const;
    std::uint64_t Frames() const noexcept { return fFrames; }

    // Once. False when it was cancelled. Throws what reading and writing throw.
    bool Run(SoundWriter& output);

private:
    using Buffers = std::vector<std::vector<float>>;

    bool Listen();
    void Fetch(std::size_t frames);
    void Store(std::uint64_t position, std::size_t frames, SoundWriter& output);

    kroaudiofilterhost::AudioFilter& fFilter;
    SoundReader& fInput;
    RenderOptions fOptions;
    std::uint64_t fLatency = 0;
    std::uint64_t fFrames = 0;
    Buffers fInputBlock;
    Buffers fOutputBlock;
    std::vector<float*> fInputPointers;
    std::vector<float*> fOutputPointers;
};

// Runs the renderer with the largest sample of what comes out at `decibels` from full scale, for which all of it is
// kept in a temporary file meanwhile; silence stays silent. False when it was cancelled. Throws
// krocore::config::Error, too, when there is no room for the file.
bool RunWithPeakAt(double decibels, OfflineRenderer& renderer, SoundWriter& output);

// The same for a whole sound in memory. Nothing when it was cancelled.
std::optional<Sound> RenderOffline(kroaudiofilterhost::AudioFilter& filter, const Sound& input,
                                   const RenderOptions& options = {});

} // namespace qohost
