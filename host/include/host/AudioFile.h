#pragma once

#include "host/Sound.h"
#include "host/SoundFile.h"

#include <filesystem>

namespace qohost {

// Whole sound files in memory. On any thread, which waits for the disk or the other end of a stream.

// What a file holds.
struct AudioFile {
    Sound sound;
    AudioFileEncoding encoding = 0;
};

// Reads a whole file or stream into memory. Throws as SoundFileReader does, and when it has no room there.
AudioFile ReadAudioFile(const std::filesystem::path& path, const SoundKind& kind = {});

// Writes a whole file or stream, as SoundFileWriter does.
void WriteAudioFile(const std::filesystem::path& path, const Sound& sound, AudioFileEncoding like,
                    const SoundKind& kind = {});

} // namespace qohost
