#pragma once

#include "host/Sound.h"

#include <filesystem>

namespace qohost {

// How a file stores its samples: a container and a sample encoding, in libsndfile's numbers. 0 when nothing is known.
using AudioFileEncoding = int;

// What a file holds.
struct AudioFile {
    Sound sound;
    AudioFileEncoding encoding = 0;
};

// Reads a whole file. Channels get the places that the file names, or those that are usual for their number. Throws
// krocore::config::Error that names the file and the reason: it does not exist, is empty, is no sound file, is cut off,
// has no channel or more than 32, or can't be read.
AudioFile ReadAudioFile(const std::filesystem::path& path);

// Writes a whole file, in the container that the extension of `path` names (wav, aif, flac, ogg, caf, w64, au) and,
// where that container can, the sample encoding of `like`; otherwise the nearest one that loses nothing it need not.
// Whole numbers are rounded and limited, so that sound that comes from a file of the same width comes out unchanged.
//
// The file is written beside its place under another name and moved there when it is complete and on the disk: whatever
// goes wrong, a file that was there before stays and no half-written one is left. Throws krocore::config::Error that
// names the file and the reason.
void WriteAudioFile(const std::filesystem::path& path, const Sound& sound, AudioFileEncoding like);

} // namespace qohost
