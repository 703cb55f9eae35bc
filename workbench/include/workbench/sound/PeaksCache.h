#pragma once

#include "workbench/sound/WaveformPeaks.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace workbench {

// The peaks of sounds that were open before, in a folder of their own, so that a long one is drawn at once. What can't
// be read or is damaged counts as not there, and what can't be written is not kept: nobody is told, since nothing is
// lost. One thread at a time; several processes may use a folder.
class PeaksCache {
public:
    static constexpr std::uint64_t kUsualBytes = 64 * 1024 * 1024;

    // "qoaudio/peaks" where the system has what can be made again: under $XDG_CACHE_HOME, or else ~/.cache.
    static std::filesystem::path UsualFolder();

    // The folder holds `bytes` at most; what has not been used for longest goes first.
    explicit PeaksCache(std::filesystem::path folder, std::uint64_t bytes = kUsualBytes);

    // `identity`: qohost::SoundSource::Identity; nothing is kept of a sound without one.
    std::optional<std::vector<WaveformPeaks::Range>> Find(const std::string& identity) const;
    void Keep(const std::string& identity, std::span<const WaveformPeaks::Range> peaks) const;

private:
    std::filesystem::path FileOf(const std::string& identity) const;
    void RemoveOldest() const;

    std::filesystem::path fFolder;
    std::uint64_t fBytes;
};

} // namespace workbench
