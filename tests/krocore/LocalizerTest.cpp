#include "krocore/Localizer.h"

#include "krocore/config/Error.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>

namespace krocore {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

class LocalizerTest : public testing::Test {
protected:
    ~LocalizerTest() override { Localizer::Get().Clear(); }

    static std::string Shown(std::string_view key) { return ToStdString(Localize(key)); }
    static std::string Referred(std::string_view text) { return ToStdString(Localizer::Get().LocalizeReference(text)); }
    static void Load(std::string_view text) { Localizer::Get().LoadDictionaryText(text, "test.dict"); }
};

std::string MessageOf(const std::function<void()>& action) {
    try {
        action();
    } catch (const config::Error& error) {
        return error.what();
    }
    return "no error";
}

TEST_F(LocalizerTest, WithoutADictionaryDefaultsAreShown) {
    EXPECT_EQ(Shown("$$$/Doppler/QualityGood=Good"), "Good");
    EXPECT_EQ(Shown("$$$/Ratio=a=b"), "a=b");
    EXPECT_EQ(Shown("$$$/Empty="), "");
    EXPECT_EQ(Shown("$$$/Group/NoDefault"), "$$$/Group/NoDefault");
    EXPECT_EQ(Shown("no key=x"), "no key=x");
}

TEST_F(LocalizerTest, EscapesAreExpanded) {
    EXPECT_EQ(Shown("$$$/D/deg180=180#{deg}"), "180\xC2\xB0");
    EXPECT_EQ(Shown("m#{cubed}"), "m\xC2\xB3");
    EXPECT_EQ(Shown("a#{endl}b#{hash}{deg}"), "a\nb#{deg}");
    EXPECT_EQ(Shown("#1 #{unknown} #{deg #"), "#1 #{unknown} #{deg #");
}

TEST_F(LocalizerTest, OnlyKeysInParenthesesAreReferences) {
    Load("$$$/G/E=Anders");
    EXPECT_EQ(Referred("($$$/G/E=Other)"), "Anders");
    EXPECT_EQ(Referred("($$$/G/F=Text (dB))"), "Text (dB)");
    for (const std::string_view text : {"$$$/G/E=Other", "(plain)", "180#{deg}", "(", "()", "($$$/G/E=Other", ""})
        EXPECT_EQ(Referred(text), text);
}

TEST_F(LocalizerTest, DictionaryEntriesWin) {
    Load("\xEF\xBB\xBF// comment\r\n\r\n$$$/A/One=Eins\\nzwei\r\n$$$/A/Two=#{deg} \xC3\xA4\n   \n$$$/A/Three=");
    EXPECT_EQ(Shown("$$$/A/One=One"), "Eins\nzwei");
    EXPECT_EQ(Shown("$$$/A/Two"), "\xC2\xB0 \xC3\xA4");
    EXPECT_EQ(Shown("$$$/A/Three=Three"), "");
    EXPECT_EQ(Shown("$$$/A/Four=Four"), "Four");

    Load("$$$/A/One=Un");
    EXPECT_EQ(Shown("$$$/A/One=One"), "Un");
    EXPECT_EQ(Shown("$$$/A/Three=Three"), "");

    Localizer::Get().Clear();
    EXPECT_EQ(Shown("$$$/A/One=One"), "One");
}

TEST_F(LocalizerTest, ABadDictionaryNamesTheLineAndLeavesNothing) {
    for (const std::string_view bad : {"A/One=Eins", "$$$/A/One", "$$$/=x", " $$$/A/One=x", "=x"}) {
        const std::string text = "$$$/A/Good=Gut\n\n" + std::string(bad) + "\n$$$/A/Other=x";
        EXPECT_THAT(MessageOf([&text] { Load(text); }), StartsWith("test.dict:3: ")) << bad;
        EXPECT_EQ(Shown("$$$/A/Good=Good"), "Good");
    }
}

TEST_F(LocalizerTest, DictionaryFilesAreRead) {
    const std::filesystem::path file = std::filesystem::path(testing::TempDir()) / "krocore-localizer-test.dict";
    std::ofstream(file, std::ios::binary) << "$$$/A/One=Eins\n";
    Localizer::Get().LoadDictionary(file);
    EXPECT_EQ(Shown("$$$/A/One=One"), "Eins");

    std::ofstream(file, std::ios::binary) << "nonsense\n";
    EXPECT_THAT(MessageOf([&file] { Localizer::Get().LoadDictionary(file); }), StartsWith(file.string() + ":1: "));
    std::filesystem::remove(file);
    EXPECT_THAT(MessageOf([&file] { Localizer::Get().LoadDictionary(file); }), HasSubstr(file.string()));
    EXPECT_THAT(MessageOf([] { Localizer::Get().LoadDictionary(testing::TempDir()); }), HasSubstr(testing::TempDir()));
}

TEST_F(LocalizerTest, PlaceholdersAreReplaced) {
    struct Case {
        std::u16string_view text;
        std::u16string_view result;
    };
    for (const auto& [text, result] : {
             Case{u"@0 of @1", u"one of two"},
             Case{u"@1@0@1", u"twoonetwo"},
             Case{u"@2 stays, @ and @x too @", u"@2 stays, @ and @x too @"},
             Case{u"@@0 @@@0 @@", u"@0 @one @"},
             Case{u"", u""},
         }) {
        EXPECT_TRUE(ReplacePlaceholders(text, {u"one", u"two"}) == result) << ToStdString(text);
    }
    EXPECT_TRUE(ReplacePlaceholders(u"@0", {u"@1"}) == u"@1"); // replacements are not looked at again
}

} // namespace
} // namespace krocore
