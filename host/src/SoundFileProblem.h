#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace qohost {

// Throws krocore::config::Error with the text of a localisation key: "@0" is the name, "@1" the detail.
[[noreturn]] void RefuseSound(const char* key, const std::string& name, std::string_view detail = {});

// libsndfile writes "System error : No space left on device."; nothing of it but the reason is for a user.
std::string ReasonOf(const char* text);

// Throws unless there are 1 to 32.
void CheckChannels(const std::string& name, int channels);

} // namespace qohost
