#include "krocore/String.h"

#include <gtest/gtest.h>

#include <array>
#include <string>

namespace krocore {
namespace {

using namespace std::string_view_literals;

struct Utf8Case {
    std::string_view utf8;
    std::u16string_view utf16;
};

TEST(String, ToUTF16ReplacesEachMaximalIllFormedPart) {
    const std::array cases{
        Utf8Case{"", u""},
        Utf8Case{"plain ASCII, longer than a short string", u"plain ASCII, longer than a short string"},
        Utf8Case{"a\0b"sv, u"a\0b"sv}, Utf8Case{"180\xC2\xB0", u"180\u00B0"},
        Utf8Case{"\xDF\xBF\xE0\xA0\x80", u"\u07FF\u0800"},
        Utf8Case{"\xED\x9F\xBF\xEE\x80\x80\xEF\xBF\xBF", u"\uD7FF\uE000\uFFFF"},
        Utf8Case{"\xF0\x90\x80\x80\xF4\x8F\xBF\xBF", u"\xD800\xDC00\xDBFF\xDFFF"},
        // Cut off: at the end, and by something else.
        Utf8Case{"x\xE2\x82", u"x\uFFFD"}, Utf8Case{"\xE2\x82x", u"\uFFFDx"},
        Utf8Case{"\xF0\x9F\x98\xC2\xB0", u"\uFFFD\u00B0"},
        // Never lead bytes, lone continuation bytes.
        Utf8Case{"\xFF\xC0\xC1\xF5\x80", u"\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD"},
        // Overlong forms.
        Utf8Case{"\xC0\xAF", u"\uFFFD\uFFFD"}, Utf8Case{"\xE0\x9F\xBF", u"\uFFFD\uFFFD\uFFFD"},
        Utf8Case{"\xF0\x8F\xBF\xBF", u"\uFFFD\uFFFD\uFFFD\uFFFD"},
        // A surrogate, a value above U+10FFFF.
        Utf8Case{"\xED\xA0\x80", u"\uFFFD\uFFFD\uFFFD"}, Utf8Case{"\xF4\x90\x80\x80", u"\uFFFD\uFFFD\uFFFD\uFFFD"},
        // The Unicode Standard's own example of replacing maximal subparts (section 3.9).
        Utf8Case{"\x61\xF1\x80\x80\xE1\x80\xC2\x62\x80\x63\x80\xBF\x64", u"a\uFFFD\uFFFD\uFFFDb\uFFFDc\uFFFD\uFFFDd"}};
    for (const Utf8Case& c : cases)
        EXPECT_TRUE(ToUTF16(c.utf8) == c.utf16) << testing::PrintToString(c.utf8);
}

TEST(String, ToUTF8ReplacesLoneSurrogates) {
    const std::array cases{Utf8Case{"", u""},
                           Utf8Case{"Hz\x7F", u"Hz\x7F"},
                           Utf8Case{"\xC2\x80\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBF", u"\u0080\u07FF\u0800\uFFFF"},
                           Utf8Case{"\xF0\x90\x80\x80\xF4\x8F\xBF\xBF", u"\xD800\xDC00\xDBFF\xDFFF"},
                           Utf8Case{"a\xEF\xBF\xBD", u"a\xD800"},
                           Utf8Case{"\xEF\xBF\xBD"
                                    "a",
                                    u"\xDC00"
                                    u"a"},
                           Utf8Case{"\xEF\xBF\xBD\xF0\x90\x80\x80", u"\xD800\xD800\xDC00"}};
    for (const Utf8Case& c : cases) {
        EXPECT_EQ(std::string_view(ToUTF8(c.utf16)), c.utf8);
        EXPECT_EQ(ToStdString(c.utf16), c.utf8);
    }
}

TEST(String, FromASCIIReplacesBytesThatAreNotASCII) {
    EXPECT_TRUE(FromASCII("q\xC2\xB0") == u"q\uFFFD\uFFFD");
}

TEST(String, EqualsIgnoringCaseFoldsOnlyASCIILetters) {
    EXPECT_TRUE(EqualsIgnoringCase("fftFilter_9", "FFTFILTER_9"));
    EXPECT_FALSE(EqualsIgnoringCase("XML", "XM"));
    EXPECT_FALSE(EqualsIgnoringCase("[", "{")); // a bit apart, as letters' cases are
    EXPECT_FALSE(EqualsIgnoringCase("\xC3\xA4", "\xC3\x84"));
}

} // namespace
} // namespace krocore
