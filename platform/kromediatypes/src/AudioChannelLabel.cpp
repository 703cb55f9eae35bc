#include "kromediatypes/AudioChannelLabel.h"

#include "krocore/Localizer.h"

#include <array>

namespace kromediatypes {

namespace {

struct LabelText {
    const char* description;
    const char* abbreviation;
};

// In the order of the enumeration.
constexpr std::array<LabelText, 11> kLabelTexts = {{
    {"", ""},
    {"$$$/kromediatypes/ChannelLabel/Left=Left", "$$$/kromediatypes/ChannelAbbreviation/Left=L"},
    {"$$$/kromediatypes/ChannelLabel/Right=Right", "$$$/kromediatypes/ChannelAbbreviation/Right=R"},
    {"$$$/kromediatypes/ChannelLabel/Center=Center", "$$$/kromediatypes/ChannelAbbreviation/Center=C"},
    {"$$$/kromediatypes/ChannelLabel/LFE=LFE", "$$$/kromediatypes/ChannelAbbreviation/LFE=LFE"},
    {"$$$/kromediatypes/ChannelLabel/LeftSurround=Left Surround",
     "$$$/kromediatypes/ChannelAbbreviation/LeftSurround=Ls"},
    {"$$$/kromediatypes/ChannelLabel/RightSurround=Right Surround",
     "$$$/kromediatypes/ChannelAbbreviation/RightSurround=Rs"},
    {"$$$/kromediatypes/ChannelLabel/LeftRearSurround=Left Rear Surround",
     "$$$/kromediatypes/ChannelAbbreviation/LeftRearSurround=Lrs"},
    {"$$$/kromediatypes/ChannelLabel/RightRearSurround=Right Rear Surround",
     "$$$/kromediatypes/ChannelAbbreviation/RightRearSurround=Rrs"},
    {"$$$/kromediatypes/ChannelLabel/CenterSurround=Center Surround",
     "$$$/kromediatypes/ChannelAbbreviation/CenterSurround=Cs"},
    {"$$$/kromediatypes/ChannelLabel/Mono=Mono", "$$$/kromediatypes/ChannelAbbreviation/Mono=M"},
}};

const LabelText& TextOf(AudioChannelLabel label) {
    return kLabelTexts[label < kLabelTexts.size() ? label : kAudioChannelLabelUnknown];
}

} // namespace

krocore::string16 AudioChannelLabelDescription(AudioChannelLabel label, bool withAbbreviation) {
    krocore::string16 text = krocore::Localize(TextOf(label).description);
    if (withAbbreviation && !text.empty()) text += u" (" + AudioChannelLabelAbbreviations(label) + u")";
    return text;
}

krocore::string16 AudioChannelLabelAbbreviations(AudioChannelLabel label) {
    return krocore::Localize(TextOf(label).abbreviation);
}

} // namespace kromediatypes
