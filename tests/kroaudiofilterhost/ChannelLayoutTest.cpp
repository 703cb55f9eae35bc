#include "kromediatypes/AudioChannelLayout.h"

#include <gtest/gtest.h>

using namespace kromediatypes;

namespace {

TEST(ChannelLayout, NamesChannelsByLabelOrByNumber) {
    struct Case {
        AudioChannelLayout layout;
        std::size_t channel;
        const char16_t* name;
        const char16_t* abbreviation;
    };
    const Case cases[] = {
        {AudioChannelLayout::Mono(), 0, u"Mono", u"M"},
        {AudioChannelLayout::Stereo(), 1, u"Right", u"R"},
        {AudioChannelLayout::Surround51(), 2, u"Center", u"C"},
        {AudioChannelLayout::Surround51(), 3, u"LFE", u"LFE"},
        {AudioChannelLayout::Surround51(), 4, u"Left Surround", u"Ls"},
        {AudioChannelLayout::Surround71(), 5, u"Right Rear Surround", u"Rrs"},
        {AudioChannelLayout::Discrete(3), 2, u"3", u"3"},
        {AudioChannelLayout::ForChannelCount(5), 4, u"5", u"5"},
        {AudioChannelLayout::Stereo(), 2, u"", u""},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(c.layout.ChannelName(c.channel, false), c.name);
        EXPECT_EQ(c.layout.ChannelName(c.channel, true), c.abbreviation);
    }
    EXPECT_EQ(AudioChannelLabelDescription(kAudioChannelLabelLeftSurround, true), u"Left Surround (Ls)");
    EXPECT_EQ(AudioChannelLabelDescription(static_cast<AudioChannelLabel>(999), true), u"");
}

TEST(ChannelLayout, EveryChannelCountHasAsManyChannels) {
    for (std::size_t channels = 0; channels <= 32; ++channels)
        EXPECT_EQ(AudioChannelLayout::ForChannelCount(channels).size(), channels);
}

} // namespace
