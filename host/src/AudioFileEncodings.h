#pragma once

#include "kromediatypes/AudioChannelLayout.h"

#include <sndfile.h>

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string_view>
#include <vector>

namespace qohost {

// The container that a file's extension names, in libsndfile's number; 0 for an extension that is none.
int ContainerFor(const std::filesystem::path& path);
// The same for the extension alone, without its dot.
int ContainerOfType(std::string_view type);

// How to write `frames` frames of sound in that container, as near to the encoding `like` as it can. Nothing when it
// can't hold that many channels at that rate.
std::optional<int> EncodingFor(int container, int like, int channels, int sampleRate, std::uint64_t frames);

// Whether a file of that encoding can say how long so much sound is.
bool HasRoomFor(int encoding, std::size_t channels, std::uint64_t frames);

// Bits of a sample that is stored as a whole number; 0 for encodings that are fed with floats.
int WholeNumberBits(int encoding);

// The places that a file names for its channels; those that are usual for their number when it names none.
kromediatypes::AudioChannelLayout ReadLayout(SNDFILE* file, int channels);

// Notes the places down in a file that can keep them.
void WriteLayout(SNDFILE* file, const kromediatypes::AudioChannelLayout& layout);

} // namespace qohost
