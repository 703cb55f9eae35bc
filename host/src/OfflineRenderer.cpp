#include "host/OfflineRenderer.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace qohost {

namespace {

using kroaudiofilterhost::AudioFilter;

// The filter runs, but not in real time, as long as this lives.
class RunningScope {
public:
    explicit RunningScope(AudioFilter& filter)
        : fFilter(filter), fWasSuspended(filter.IsSuspended()),
          fCouldChange(filter.CanChangeNonAutomatableParameters()) {
        fFilter.SetSuspended(false);
        fFilter.SetCanChangeNonAutomatableParameters(true);
    }
    RunningScope(const RunningScope&) = delete;
    RunningScope& operator=(const RunningScope&) = delete;
    ~RunningScope() {
        fFilter.SetSuspended(fWasSuspended);
        fFilter.SetCanChangeNonAutomatableParameters(fCouldChange);
    }

private:
    AudioFilter& fFilter;
    bool fWasSuspended;
    bool fCouldChange;
};

// The blocks of one rendering. Positions count from the first sample of the input; the filter's output for one is
// `latency` samples behind.
class Rendering {
public:
    Rendering(AudioFilter& filter, const Sound& input, const RenderOptions& options, std::size_t blockFrames)
        : fFilter(filter), fInput(input), fLatency(filter.Latency()),
          fResult(Sound::Silent(input.sampleRate, filter.GetOutputBuses().front().GetLayout(),
                                input.Frames() + KeptTail(filter, input, options))),
          fInputBlock(input.channels.size(), std::vector<float>(blockFrames)),
          fOutputBlock(fResult.channels.size(), std::vector<float>(blockFrames)) {
        for (const auto& channel : fInputBlock)
            fInputPointers.push_back(channel.data());
        for (auto& channel : fOutputBlock)
            fOutputPointers.push_back(channel.data());
    }

    std::size_t FramesToFeed() const { return fResult.Frames() + fLatency; }

    void Block(std::size_t position, std::size_t frames) {
        Fetch(position, frames);
        fFilter.Process({fInputPointers, fOutputPointers, frames});
        Store(position, frames);
    }

    Sound TakeResult() { return std::move(fResult); }

private:
    static std::size_t KeptTail(const AudioFilter& filter, const Sound& input, const RenderOptions& options) {
        if (!options.keepTail) return 0;
        return std::min(filter.Tail(), static_cast<std::size_t>(options.maximumTailSeconds * input.sampleRate));
    }

    void Fetch(std::size_t position, std::size_t frames) {
        const std::size_t left = position < fInput.Frames() ? fInput.Frames() - position : 0;
        const std::size_t count = std::min(frames, left);
        for (std::size_t channel = 0; channel < fInputBlock.size(); ++channel) {
            if (count > 0) std::copy_n(fInput.channels[channel].data() + position, count, fInputBlock[channel].data());
            std::fill_n(fInputBlock[channel].data() + count, frames - count, 0.0F);
        }
    }

    void Store(std::size_t position, std::size_t frames) {
        const std::size_t skipped = position < fLatency ? std::min(frames, fLatency - position) : 0;
        const std::size_t target = position + skipped - fLatency;
        for (std::size_t channel = 0; skipped < frames && channel < fOutputBlock.size(); ++channel)
            std::copy_n(fOutputBlock[channel].data() + skipped, frames - skipped,
                        fResult.channels[channel].data() + target);
    }

    AudioFilter& fFilter;
    const Sound& fInput;
    std::size_t fLatency;
    Sound fResult;
    std::vector<std::vector<float>> fInputBlock;
    std::vector<std::vector<float>> fOutputBlock;
    std::vector<const float*> fInputPointers;
    std::vector<float*> fOutputPointers;
};

} // namespace

std::optional<Sound> RenderOffline(AudioFilter& filter, const Sound& input, const RenderOptions& options) {
    const std::size_t blockFrames = std::max<std::size_t>(options.blockFrames, 1);
    filter.SetDuration(static_cast<double>(input.Frames()));
    filter.Prepare(input.sampleRate, blockFrames, input.layout);
    const RunningScope running(filter);
    Rendering rendering(filter, input, options, blockFrames);
    const std::size_t total = rendering.FramesToFeed();
    for (std::size_t position = 0; position < total; position += blockFrames) {
        const std::size_t frames = std::min(blockFrames, total - position);
        rendering.Block(position, frames);
        const double done = static_cast<double>(position + frames) / static_cast<double>(total);
        if (options.progress && !options.progress(done)) return std::nullopt;
    }
    return rendering.TakeResult();
}

} // namespace qohost
