#include "SoundFileProblem.h"

#include "kroaudiofilterhost/AudioFilter.h"
#include "krocore/Localizer.h"
#include "krocore/config/Error.h"

namespace qohost {

void RefuseSound(const char* key, const std::string& name, std::string_view detail) {
    throw krocore::config::Error(krocore::ToStdString(
        krocore::ReplacePlaceholders(krocore::Localize(key), {krocore::ToUTF16(name), krocore::ToUTF16(detail)})));
}

std::string ReasonOf(const char* text) {
    constexpr std::string_view kPrefix = "System error : ";
    std::string_view reason = text;
    if (reason.starts_with(kPrefix)) reason.remove_prefix(kPrefix.size());
    if (reason.ends_with('.')) reason.remove_suffix(1);
    return std::string(reason);
}

void CheckChannels(const std::string& name, int channels) {
    if (channels >= 1 && channels <= static_cast<int>(kroaudiofilterhost::AudioFilter::kMaximumChannels)) return;
    RefuseSound("$$$/qohost/AudioFile/Channels=@0: the file has @1 channels; 1 to 32 are possible.", name,
                std::to_string(channels));
}

} // namespace qohost
