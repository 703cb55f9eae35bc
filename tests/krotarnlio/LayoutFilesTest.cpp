#include "LioFixture.h"

#include "SourcePaths.h"
#include "kroui/controls/UI_TabGroup.h"
#include "orrin/serialization.h"

#include <cctype>
#include <filesystem>
#include <fstream>

namespace krotarnlio::test {
namespace {

// A file of layouts/ is a sheet, then a layout, with commands in comments behind them, which run in order after loading
// (a comment that begins with a capital is none). Places are in the window; "*" is any number.
//   // set CELL VALUE            as the host does
//   // click IDENTIFIER          in its middle; "tab IDENTIFIER NUMBER" clicks a tab
//   // expect CELL VALUE
//   // frame IDENTIFIER LEFT TOP WIDTH HEIGHT, // size WIDTH HEIGHT of the whole
//   // shown IDENTIFIERS..., // hidden IDENTIFIERS...
//   // resizes COUNT             since the last such line, or since loading
class LayoutFile : public LioTest, public testing::WithParamInterface<std::string> {
protected:
    void RunAll(const std::string& text) {
        const std::size_t layout = text.find("\nlayout ");
        ASSERT_NE(layout, std::string::npos);
        Load(text.substr(0, layout), text.substr(layout));
        std::istringstream lines(text);
        std::string line;
        for (int number = 1; std::getline(lines, line); ++number) {
            SCOPED_TRACE("line " + std::to_string(number) + ": " + line);
            if (line.starts_with("// ") && std::islower(static_cast<unsigned char>(line[3]))) Run(line.substr(3));
        }
    }

    void Run(const std::string& line) {
        std::istringstream words(line);
        const std::string command = Word(words);
        if (command == "set") {
            const std::string cell = Word(words);
            Set(cell, Value(words));
        } else if (command == "click") {
            Click(Word(words));
        } else if (command == "tab") {
            const std::string identifier = Word(words);
            ClickTab(identifier, std::stoi(Word(words)));
        } else {
            Check(command, words);
        }
    }

    void Check(const std::string& command, std::istringstream& words) {
        if (command == "expect") {
            const orrin::any_regular_t value = Get(Word(words));
            EXPECT_EQ(orrin::serialize_regular(value), orrin::serialize_regular(Value(words)));
        } else if (command == "frame") {
            const kroui::Rect frame = FrameInWindow(Word(words));
            ExpectNumbers({frame.left, frame.top, frame.width, frame.height}, words);
        } else if (command == "size") {
            ExpectNumbers({WholeSize().width, WholeSize().height}, words);
        } else if (command == "shown" || command == "hidden") {
            for (std::string identifier = Word(words); !identifier.empty(); identifier = Word(words))
                EXPECT_EQ(IsShown(identifier), command == "shown") << identifier;
        } else if (command == "resizes") {
            EXPECT_EQ(Resizes(), std::stoi(Word(words)));
        } else {
            FAIL() << "no such command";
        }
    }

    void ClickTab(const std::string& identifier, int tab) {
        auto& tabs = The<kroui::controls::UI_TabGroup>(identifier);
        fWindow.Click(tabs.UI_LocalToWindow(tabs.TabRect(tab).Centre()));
    }

    static void ExpectNumbers(std::initializer_list<float> numbers, std::istringstream& words) {
        for (const float number : numbers) {
            const std::string expected = Word(words);
            EXPECT_EQ(number, expected == "*" ? number : std::stof(expected));
        }
    }

    static std::string Word(std::istringstream& words) {
        std::string word;
        words >> word;
        return word;
    }
    static orrin::any_regular_t Value(std::istringstream& words) {
        std::string rest;
        std::getline(words >> std::ws, rest);
        return orrin::evaluate_serialization(rest);
    }
};

const std::filesystem::path kLayouts = std::filesystem::path(QO_SOURCE_DIR "/tests/krotarnlio") / "layouts";

std::vector<std::string> LayoutFiles() {
    std::vector<std::string> files;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(kLayouts))
        if (entry.path().extension() == ".lio") files.push_back(relative(entry.path(), kLayouts).string());
    std::ranges::sort(files);
    return files;
}

TEST_P(LayoutFile, Behaves) {
    std::ifstream file(kLayouts / GetParam(), std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    RunAll(text.str());
}

INSTANTIATE_TEST_SUITE_P(Layouts, LayoutFile, testing::ValuesIn(LayoutFiles()), [](const auto& info) {
    std::string name = info.param.substr(0, info.param.rfind('.'));
    std::ranges::replace_if(
        name, [](char c) { return !std::isalnum(static_cast<unsigned char>(c)); }, '_');
    return name;
});

} // namespace
} // namespace krotarnlio::test
