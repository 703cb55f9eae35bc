#include "host/Sound.h"

namespace qohost {

Sound Sound::Silent(float sampleRate, const kromediatypes::AudioChannelLayout& layout, std::size_t frames) {
    return {sampleRate, layout, std::vector(layout.size(), std::vector<float>(frames))};
}

} // namespace qohost
