#include "SoundFileHandle.h"

namespace qohost {

SoundFileHandle OpenSoundFile(const std::filesystem::path& path, int mode, SF_INFO& info) {
    return SoundFileHandle(sf_open(path.c_str(), mode, &info));
}

} // namespace qohost
