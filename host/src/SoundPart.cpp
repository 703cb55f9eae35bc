#include "host/SoundPart.h"

#include <algorithm>

namespace qohost {

SoundPartReader::SoundPartReader(SoundReader& whole, std::uint64_t begin, std::uint64_t end)
    : fWhole(whole), fBegin(std::min(begin, whole.Frames())), fEnd(std::clamp(end, fBegin, whole.Frames())) {
    Seek(0);
}

std::size_t SoundPartReader::Read(std::span<float* const> channels, std::size_t frames) {
    const std::size_t got = fWhole.Read(channels, std::min<std::uint64_t>(frames, fEnd - fPosition));
    fPosition += got;
    return got;
}

void SoundPartReader::Seek(std::uint64_t frame) {
    fPosition = fBegin + std::min(frame, Frames());
    fWhole.Seek(fPosition);
}

} // namespace qohost
