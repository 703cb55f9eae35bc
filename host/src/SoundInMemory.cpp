#include "host/SoundInMemory.h"

#include <algorithm>

namespace qohost {

SoundInMemoryReader::SoundInMemoryReader(const Sound& sound, std::size_t begin, std::size_t end)
    : fSound(sound), fBegin(std::min(begin, sound.Frames())), fEnd(std::clamp(end, fBegin, sound.Frames())),
      fNext(fBegin) {
}

std::size_t SoundInMemoryReader::Read(std::span<float* const> channels, std::size_t frames) {
    const std::size_t count = std::min(frames, fEnd - fNext);
    for (std::size_t channel = 0; channel < channels.size(); ++channel)
        std::copy_n(fSound.channels[channel].data() + fNext, count, channels[channel]);
    fNext += count;
    return count;
}

void SoundInMemoryReader::Seek(std::uint64_t frame) {
    fNext = fBegin + static_cast<std::size_t>(std::min(frame, Frames()));
}

void SoundInMemoryWriter::Write(std::span<const float* const> channels, std::size_t frames) {
    for (std::size_t channel = 0; channel < channels.size(); ++channel)
        fSound.channels[channel].insert(fSound.channels[channel].end(), channels[channel], channels[channel] + frames);
}

} // namespace qohost
