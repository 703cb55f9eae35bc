#include "host/AudioFile.h"

#include "SoundFileProblem.h"
#include "host/ByteStream.h"

#include <algorithm>
#include <new>
#include <string>

namespace qohost {

namespace {

constexpr std::size_t kBlockFrames = 16384;

// Block by block: what a file promises costs no memory until it is there.
void Read(SoundFileReader& file, Sound& sound) {
    sound.channels.resize(file.Layout().size());
    std::vector<float*> pointers(sound.channels.size());
    std::size_t frames = 0;
    for (std::size_t count = kBlockFrames; count > 0; frames += count) {
        for (std::size_t channel = 0; channel < pointers.size(); ++channel) {
            sound.channels[channel].resize(frames + kBlockFrames);
            pointers[channel] = sound.channels[channel].data() + frames;
        }
        count = file.Read(pointers, kBlockFrames);
    }
    for (std::vector<float>& channel : sound.channels)
        channel.resize(frames);
}

[[noreturn]] void RefuseForMemory(const std::filesystem::path& path, const SoundFileReader& file) {
    constexpr std::uint64_t kMegabyte = 1000000;
    const std::uint64_t bytes = file.Frames() * file.Layout().size() * sizeof(float);
    RefuseSound("$$$/qohost/AudioFile/Memory=@0: there is not enough memory for this sound; it takes @1 MB.",
                InputName(path), std::to_string(bytes / kMegabyte + 1));
}

} // namespace

AudioFile ReadAudioFile(const std::filesystem::path& path, const SoundKind& kind) {
    SoundFileReader file(path, kind);
    AudioFile result;
    result.encoding = file.Encoding();
    result.sound.sampleRate = file.SampleRate();
    result.sound.layout = file.Layout();
    try {
        Read(file, result.sound);
    } catch (const std::bad_alloc&) {
        RefuseForMemory(path, file);
    }
    return result;
}

void WriteAudioFile(const std::filesystem::path& path, const Sound& sound, AudioFileEncoding like,
                    const SoundKind& kind) {
    SoundFileWriter file(
        path, {.sampleRate = sound.sampleRate, .layout = sound.layout, .frames = sound.Frames(), .like = like}, kind);
    std::vector<const float*> pointers(sound.channels.size());
    for (std::size_t start = 0; start < sound.Frames(); start += kBlockFrames) {
        for (std::size_t channel = 0; channel < pointers.size(); ++channel)
            pointers[channel] = sound.channels[channel].data() + start;
        file.Write(pointers, std::min(kBlockFrames, sound.Frames() - start));
    }
    file.Commit();
}

} // namespace qohost
