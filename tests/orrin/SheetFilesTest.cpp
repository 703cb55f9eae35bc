#include "SourcePaths.h"
#include "orrin/serialization.h"
#include "orrin/sheet.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace orrin {
namespace {

using testing::Contains;
using testing::IsEmpty;

// A file of sheets/ is a script with commands in its comments, which run in order after loading (a comment that begins
// with a capital is none):
//   // error LINE:COLUMN: MESSAGE   loading fails with this message (the only command then)
//   // warning LINE:COLUMN: MESSAGE loading warns so
//   // set CELL VALUE               sets the cell and updates; "stage" does not update
//   // touch CELL, // update, // settle
//   // give INPUT VALUE             stages it as the host's; "echo TOLD INPUT VALUE" as what brings back TOLD
//   // reinitialise                 with what was given or echoed before; all cells if nothing was
//   // expect CELL VALUE, // contributed CELL VALUE
//   // evaluations COUNT            since the last such line, or since loading
//   // failing LINE:COLUMN: MESSAGE is among the present errors; "working": there is none
//   // contributing CELL NAMES..., // fault NAMES..., // valid CELL, // invalid CELL
class SheetFile : public testing::TestWithParam<std::string> {
protected:
    void RunAll(const std::string& text) {
        if (ExpectsError(text)) return;
        ASSERT_NO_THROW(LoadOrReport(text));
        fCounted = fSheet.evaluation_count();
        std::istringstream lines(text);
        std::string line;
        for (int number = 1; std::getline(lines, line); ++number) {
            SCOPED_TRACE("line " + std::to_string(number) + ": " + line);
            if (line.starts_with("// ") && std::islower(static_cast<unsigned char>(line[3]))) Run(line.substr(3));
        }
    }

    void LoadOrReport(const std::string& text) {
        try {
            fSheet.load(text, "sheet");
        } catch (const std::exception& error) {
            ADD_FAILURE() << error.what();
            throw;
        }
    }

    bool ExpectsError(const std::string& text) {
        const std::size_t at = text.find("// error ");
        if (at == std::string::npos) return false;
        const std::size_t begin = at + std::string("// error ").size();
        const std::string expected = text.substr(begin, text.find('\n', begin) - begin);
        try {
            fSheet.load(text, "sheet");
            ADD_FAILURE() << "loads, but should fail with " << expected;
        } catch (const error_t& error) {
            EXPECT_EQ(error.what(), "sheet:" + expected);
        }
        return true;
    }

    void Run(const std::string& line) {
        std::istringstream words(line);
        std::string command;
        words >> command;
        if (command == "set" || command == "stage") {
            const name_t cell = Cell(words);
            fSheet.set(cell, Value(words));
            if (command == "set") fSheet.update();
        } else if (command == "touch") {
            fSheet.touch(Cell(words));
            fSheet.update();
        } else if (command == "give") {
            Give(words, {});
        } else if (command == "echo") {
            std::string told;
            words >> told;
            Give(words, evaluate_serialization(told));
        } else if (command == "settle") {
            fSheet.settle();
        } else if (command == "update") {
            fSheet.update();
        } else if (command == "reinitialise") {
            Reinitialise();
        } else {
            Check(command, words);
        }
    }

    void Give(std::istringstream& words, any_regular_t told) {
        const name_t input = Cell(words);
        fSheet.set(input, Value(words));
        fGiven.push_back({input, std::move(told)});
    }

    void Reinitialise() {
        const std::vector<given_input_t> given = std::exchange(fGiven, {});
        given.empty() ? fSheet.reinitialise() : fSheet.reinitialise(given);
    }

    void Check(const std::string& command, std::istringstream& words) {
        if (command == "expect") {
            const name_t cell = Cell(words);
            EXPECT_EQ(serialize_regular(fSheet[cell]), serialize_regular(Value(words)));
        } else if (command == "contributed") {
            const name_t cell = Cell(words);
            EXPECT_EQ(serialize_regular(fSheet.contributed(cell)), serialize_regular(Value(words)));
        } else if (command == "evaluations") {
            EXPECT_EQ(std::to_string(fSheet.evaluation_count() - fCounted), Rest(words));
            fCounted = fSheet.evaluation_count();
        } else if (command == "failing") {
            EXPECT_THAT(Texts(fSheet.errors()), Contains("sheet:" + Rest(words)));
        } else if (command == "working") {
            EXPECT_THAT(Texts(fSheet.errors()), IsEmpty());
        } else if (command == "warning") {
            EXPECT_THAT(Texts(fSheet.warnings()), Contains("sheet:" + Rest(words)));
        } else if (command == "contributing") {
            const name_t cell = Cell(words);
            EXPECT_EQ(Names(fSheet.contributing(cell)), Rest(words));
        } else if (command == "fault") {
            EXPECT_EQ(Names(fSheet.at_fault()), Rest(words));
        } else if (command == "valid" || command == "invalid") {
            EXPECT_EQ(fSheet.is_valid(Cell(words)), command == "valid");
        } else {
            FAIL() << "no such command";
        }
    }

    static name_t Cell(std::istringstream& words) {
        std::string name;
        words >> name;
        return name_t(name);
    }

    static any_regular_t Value(std::istringstream& words) { return evaluate_serialization(Rest(words)); }

    static std::string Rest(std::istringstream& words) {
        std::string rest;
        std::getline(words >> std::ws, rest);
        while (!rest.empty() && rest.back() == '\r')
            rest.pop_back();
        return rest;
    }

    static std::vector<std::string> Texts(const std::vector<error_t>& errors) {
        std::vector<std::string> texts;
        for (const error_t& error : errors)
            texts.emplace_back(error.what());
        return texts;
    }

    static std::string Names(const std::vector<name_t>& names) {
        std::string text;
        for (const name_t name : names)
            text += (text.empty() ? "" : " ") + std::string(name.text());
        return text;
    }

    sheet_t fSheet;
    std::vector<given_input_t> fGiven;
    std::uint64_t fCounted = 0;
};

const std::filesystem::path kSheets = std::filesystem::path(QO_SOURCE_DIR "/tests/orrin") / "sheets";

std::vector<std::string> SheetFiles() {
    std::vector<std::string> files;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(kSheets))
        if (entry.path().extension() == ".txt") files.push_back(relative(entry.path(), kSheets).string());
    std::ranges::sort(files);
    return files;
}

TEST_P(SheetFile, Behaves) {
    std::ifstream file(kSheets / GetParam(), std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    RunAll(text.str());
}

INSTANTIATE_TEST_SUITE_P(Sheets, SheetFile, testing::ValuesIn(SheetFiles()), [](const auto& info) {
    std::string name = info.param.substr(0, info.param.rfind('.'));
    std::ranges::replace_if(
        name, [](char c) { return !std::isalnum(static_cast<unsigned char>(c)); }, '_');
    return name;
});

} // namespace
} // namespace orrin
