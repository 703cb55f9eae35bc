#pragma once

#include <sndfile.h>

#include <filesystem>
#include <memory>

namespace qohost {

struct SoundFileCloser {
    void operator()(SNDFILE* file) const noexcept { sf_close(file); }
};

// An open file of libsndfile.
using SoundFileHandle = std::unique_ptr<SNDFILE, SoundFileCloser>;

// Opens by the system's kind of path; `mode` is SFM_READ or SFM_WRITE. Null on failure, with the reason in
// sf_error(nullptr) and sf_strerror(nullptr).
SoundFileHandle OpenSoundFile(const std::filesystem::path& path, int mode, SF_INFO& info);

} // namespace qohost
