#include "host/SoundPart.h"

#include <algorithm>
#include <vector>

namespace qohost {

SoundPartReader::SoundPartReader(SoundReader& whole, std::uint64_t begin, std::uint64_t end)
    : fWhole(whole), fFrames(std::max(std::min(end, whole.Frames()), std::min(begin, whole.Frames())) -
                             std::min(begin, whole.Frames())),
      fLeft(fFrames) {
    Skip(std::min(begin, whole.Frames()));
}

void SoundPartReader::Skip(std::uint64_t frames) {
    constexpr std::size_t kBlockFrames = 16384;
    std::vector<std::vector<float>> buffers(Layout().size(), std::vector<float>(kBlockFrames));
    std::vector<float*> pointers;
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
