#include "host/SoundPart.h"

#include <algorithm>
#include <vector>

namespace qohost {

SoundPartReader::Bounds SoundPartReader::BoundsWithin(const SoundReader& whole, std::uint64_t begin,
                                                      std::uint64_t end) {
    begin = std::min(begin, whole.Frames());
    return {begin, std::clamp(end, begin, whole.Frames())};
}

SoundPartReader::SoundPartReader(SoundReader& whole, const Bounds& bounds)
    : fWhole(whole), fFrames(bounds.end - bounds.begin), fLeft(fFrames) {
}

SoundPartReader::SoundPartReader(SoundReader& whole, std::uint64_t begin, std::uint64_t end)
    : SoundPartReader(whole, BoundsWithin(whole, begin, end)) {
    Skip(BoundsWithin(whole, begin, end).begin);
}

SoundPartReader::SoundPartReader(SeekableSoundReader& whole, std::uint64_t begin, std::uint64_t end)
    : SoundPartReader(whole, BoundsWithin(whole, begin, end)) {
    whole.Seek(begin);
}

void SoundPartReader::Skip(std::uint64_t frames) {
    constexpr std::size_t kBlockFrames = 16384;
    std::vector<std::vector<float>> buffers(Layout().size(), std::vector<float>(kBlockFrames));
    std::vector<float*> pointers;
    pointers.reserve(buffers.size());
    for (std::vector<float>& buffer : buffers)
        pointers.push_back(buffer.data());
    while (frames > 0) {
        const std::size_t got = fWhole.Read(pointers, std::min<std::uint64_t>(frames, kBlockFrames));
        if (got == 0) return;
        frames -= got;
    }
}

std::size_t SoundPartReader::Read(std::span<float* const> channels, std::size_t frames) {
    const std::size_t got = fWhole.Read(channels, std::min<std::uint64_t>(frames, fLeft));
    fLeft -= got;
    return got;
}

} // namespace qohost
