#include "host/OfflineRenderer.h"

#include "host/SampleFormat.h"
#include "host/SoundFile.h"
#include "host/SoundInMemory.h"
#include "krocore/Localizer.h"
#include "krocore/TemporaryFile.h"
#include "krocore/config/Error.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <memory>
#include <utility>
#include <vector>

namespace qohost {

namespace {

using kroaudiofilterhost::AudioFilter;
using kroaudiofilterhost::AudioFilterQuality;
using kroaudiofilterhost::AudioFilterTempo;

constexpr double kListeningShare = 0.2; // of the progress

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

// As long as this lives, the filter is prepared for another quality.
class QualityScope {
public:
    QualityScope(AudioFilter& filter, AudioFilterQuality quality) : fFilter(filter), fBefore(filter.GetQuality()) {
        fFilter.SetQuality(quality);
    }
    QualityScope(const QualityScope&) = delete;
    QualityScope& operator=(const QualityScope&) = delete;
    ~QualityScope() { fFilter.SetQuality(fBefore); }

private:
    AudioFilter& fFilter;
    AudioFilterQuality fBefore;
};

std::vector<float*> PointersTo(std::vector<std::vector<float>>& buffers) {
    std::vector<float*> pointers;
    for (std::vector<float>& buffer : buffers)
        pointers.push_back(buffer.data());
    return pointers;
}

constexpr const char* kKeptType = "w64";

// For a whole sound.
std::unique_ptr<krocore::TemporaryFile> MakeRoom() {
    try {
        return std::make_unique<krocore::TemporaryFile>(std::filesystem::temp_directory_path());
    } catch (const std::filesystem::filesystem_error& error) {
        throw krocore::config::Error(krocore::ToStdString(krocore::ReplacePlaceholders(
            krocore::Localize("$$$/qohost/Render/NoRoom=There is no room for the sound meanwhile: @0."),
            {krocore::ToUTF16(error.code().message())})));
    }
}

// Keeps a sound in a file and its largest sample in mind.
class PeakWriter final : public SoundWriter {
public:
    PeakWriter(const std::filesystem::path& file, const SoundFileWriter::Format& format)
        : fFile(file, format, {.type = kKeptType}) {}

    void Write(std::span<const float* const> channels, std::size_t frames) override {
        for (const float* const channel : channels)
            for (std::size_t i = 0; i < frames; ++i)
                fPeak = std::isfinite(channel[i]) ? std::max(fPeak, std::abs(channel[i])) : INFINITY;
        fFile.Write(channels, frames);
    }
    void Commit() { fFile.Commit(); }
    float Peak() const { return fPeak; }

private:
    SoundFileWriter fFile;
    float fPeak = 0;
};

} // namespace

OfflineRenderer::OfflineRenderer(AudioFilter& filter, SoundReader& input, RenderOptions options)
    : fFilter(filter), fInput(input), fOptions(std::move(options)) {
    fOptions.blockFrames = std::max<std::size_t>(fOptions.blockFrames, 1);
    filter.SetDuration(static_cast<double>(input.Frames()));
    const QualityScope quality(filter, fOptions.quality);
    filter.Prepare(input.SampleRate(), fOptions.blockFrames, input.Layout());
    fLatency = filter.Latency();
    const auto framesOf = [&input](double seconds) {
        return static_cast<std::uint64_t>(std::llround(seconds * input.SampleRate()));
    };
    const auto natural = std::min<std::uint64_t>(filter.Tail(), framesOf(fOptions.maximumTailSeconds));
    fFrames = input.Frames() + (fOptions.tailSeconds ? framesOf(*fOptions.tailSeconds) : natural);
    fInputBlock.assign(input.Layout().size(), std::vector<float>(fOptions.blockFrames));
    fOutputBlock.assign(Layout().size(), std::vector<float>(fOptions.blockFrames));
    fInputPointers = PointersTo(fInputBlock);
    fOutputPointers = PointersTo(fOutputBlock);
}

const kromediatypes::AudioChannelLayout& OfflineRenderer::Layout() const {
    return fFilter.GetOutputBuses().front().GetLayout();
}

bool OfflineRenderer::Run(SoundWriter& output) {
    const RunningScope running(fFilter);
    const std::vector<const float*> inputs(fInputPointers.begin(), fInputPointers.end());
    const std::uint64_t total = fFrames + fLatency;
    const bool listens = fOptions.quality == AudioFilterQuality::kRender && fFilter.WantsToListen();
    if (listens && !Listen()) return false;
    const double listened = listens ? kListeningShare : 0;
    const AudioFilterTempo tempo =
        fFilter.GetAudioFilterHost() != nullptr ? fFilter.GetAudioFilterHost()->GetTempo() : AudioFilterTempo();
    std::size_t frames = 0;
    for (std::uint64_t position = 0; position < total; position += frames) {
        fOptions.automation.Apply(fFilter, position);
        const std::uint64_t most = std::min<std::uint64_t>(fOptions.blockFrames, total - position);
        frames = static_cast<std::size_t>(std::min(most, fOptions.automation.NextChange(position + 1) - position));
        Fetch(frames);
        fFilter.ServeAutomation();
        fFilter.SetTransport({.position = static_cast<double>(position), .isPlaying = true, .tempo = tempo});
        fFilter.Process({inputs, fOutputPointers, frames});
        Store(position, frames, output);
        const double done = static_cast<double>(position + frames) / static_cast<double>(total);
        if (fOptions.progress && !fOptions.progress(listened + (1 - listened) * done)) return false;
    }
    return true;
}

bool OfflineRenderer::Listen() {
    const std::vector<const float*> inputs(fInputPointers.begin(), fInputPointers.end());
    std::uint64_t heard = 0;
    while (const std::size_t frames = fInput.Read(fInputPointers, fOptions.blockFrames)) {
        fFilter.Listen(inputs, frames);
        heard += frames;
        const double done = static_cast<double>(heard) / static_cast<double>(fInput.Frames());
        if (fOptions.progress && !fOptions.progress(kListeningShare * done)) return false;
    }
    fInput.Seek(0);
    return true;
}

// Behind the end of the sound follows silence.
void OfflineRenderer::Fetch(std::size_t frames) {
    const std::size_t count = fInput.Read(fInputPointers, frames);
    for (std::vector<float>& channel : fInputBlock)
        std::fill_n(channel.data() + count, frames - count, 0.0F);
}

// The filter's output for a sample of the input is `latency` samples behind.
void OfflineRenderer::Store(std::uint64_t position, std::size_t frames, SoundWriter& output) {
    const std::uint64_t early = position < fLatency ? fLatency - position : 0;
    if (early >= frames) return;
    std::vector<const float*> wanted;
    for (const std::vector<float>& channel : fOutputBlock)
        wanted.push_back(channel.data() + early);
    output.Write(wanted, frames - static_cast<std::size_t>(early));
}

bool RunWithPeakAt(double decibels, OfflineRenderer& renderer, SoundWriter& output) {
    constexpr std::size_t kBlockFrames = 16384;
    const auto room = MakeRoom();
    PeakWriter loud(room->Path(), {.sampleRate = renderer.SampleRate(),
                                   .layout = renderer.Layout(),
                                   .frames = renderer.Frames(),
                                   .samples = SampleFormat::kFloat});
    if (!renderer.Run(loud)) return false;
    loud.Commit();
    const double factor = FactorForPeak(loud.Peak(), decibels);
    SoundFileReader reader(room->Path(), {.type = kKeptType});
    std::vector<std::vector<float>> block(reader.Layout().size(), std::vector<float>(kBlockFrames));
    const std::vector<float*> pointers = PointersTo(block);
    const std::vector<const float*> channels(pointers.begin(), pointers.end());
    while (const std::size_t frames = reader.Read(pointers, kBlockFrames)) {
        for (std::vector<float>& channel : block)
            for (float& sample : channel)
                sample = static_cast<float>(sample * factor);
        output.Write(channels, frames);
    }
    return true;
}

std::optional<Sound> RenderOffline(AudioFilter& filter, const Sound& input, const RenderOptions& options) {
    SoundInMemoryReader reader(input);
    OfflineRenderer renderer(filter, reader, options);
    Sound result = Sound::Silent(input.sampleRate, renderer.Layout(), 0);
    SoundInMemoryWriter writer(result);
    if (!renderer.Run(writer)) return std::nullopt;
    return result;
}

} // namespace qohost
