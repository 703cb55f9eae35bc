#include "workbench/commands/CheckCommand.h"

#include "SourcePaths.h"
#include "TemporaryFolder.h"

#include <gmock/gmock.h>

#include <sstream>

namespace workbench {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

constexpr const char* kSheet = "sheet a {\n"
                               "input: in0: 0.5;\n"
                               "interface: unlink gain: in0; unlink names: get_output_channel_name_array();\n"
                               "output: out0 <== gain;\n"
                               "}\n";
constexpr const char* kLayout = "layout a { view subview() {\n"
                                "aud_edit_number(bind: @gain, name: localize('$$$/A/Gain=Gain:'));\n"
                                "popup(items: @names, horizontal: align_fill);\n"
                                "} }\n";

class CheckCommand : public testing::Test {
protected:
    // What is said about the files, which stand in the folder.
    int Run(const std::vector<std::string>& files, TableFormat format = TableFormat::kAligned) {
        CheckRequest request;
        request.format = format;
        for (const std::string& file : files)
            request.files.push_back(fFolder.Path(file));
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        const int code = Check(request);
        std::fflush(stdout);
        fOutput = testing::internal::GetCapturedStdout();
        fErrors = testing::internal::GetCapturedStderr();
        return code;
    }

    TemporaryFolder fFolder;
    std::string fOutput;
    std::string fErrors;
};

TEST_F(CheckCommand, GoodFilesAreSilent) {
    fFolder.Write("A.trn", kSheet);
    fFolder.Write("a.lio", kLayout);
    fFolder.Write("panel.xml", TemporaryFolder::Contents(QO_SOURCE_DIR "/resources/archives/AMPLIFY.xml"));
    EXPECT_EQ(Run({"A.trn", "a.lio", "panel.xml"}), 0);
    EXPECT_EQ(fOutput, "");
    EXPECT_EQ(fErrors, "");
}

TEST_F(CheckCommand, TellsTheFaultsOfALayoutAndOfTheSheetBesideIt) {
    fFolder.Write("A.trn", "sheet a {\ninput: in0: 0.5;\ninterface: unlink b: wrong(in0);\noutput: out0 <== b;\n}");
    fFolder.Write("a.lio", kLayout);
    EXPECT_EQ(Run({"a.lio"}), 1);
    EXPECT_EQ(fOutput, fFolder.Path("A.trn").string() + ":3:22: there is no function 'wrong'\n" +
                           fFolder.Path("a.lio").string() +
                           ":2:17: 'bind' needs the name of a cell; the sheet has no 'gain'\n" +
                           fFolder.Path("a.lio").string() + ":3:7: 'items' needs an array, not a name\n");
}

TEST_F(CheckCommand, TakesTheSheetThatIsGivenAndNotTheOneBesideTheLayout) {
    fFolder.Write("a.trn", "sheet a {}");
    fFolder.Write("a.lio", kLayout);
    fFolder.Write("new/a.trn", kSheet);
    EXPECT_EQ(Run({"a.lio", "new/a.trn"}), 0) << fOutput;
}

TEST_F(CheckCommand, ALayoutWithoutSheetIsAFault) {
    fFolder.Write("a.lio", kLayout);
    EXPECT_EQ(Run({"a.lio"}), 1);
    EXPECT_EQ(fOutput, fFolder.Path("a.lio").string() + ":1:1: the layout has no sheet, expected a.trn beside it\n");
}

TEST_F(CheckCommand, WarningsAloneAreNoFailure) {
    fFolder.Write("a.trn", "sheet a {\ninterface: gain;\noutput: out0 <== gain;\n}");
    EXPECT_EQ(Run({"a.trn"}), 0);
    EXPECT_THAT(fOutput, StartsWith(fFolder.Path("a.trn").string() + ":2:12: warning: "));
    EXPECT_EQ(Run({"a.trn"}, TableFormat::kTabbed), 0);
    EXPECT_THAT(fOutput, StartsWith("file\tline\tcolumn\tkind\tmessage\n" + fFolder.Path("a.trn").string() +
                                    "\t2\t12\twarning\t"));
}

TEST_F(CheckCommand, ScriptsOfTheLibraryHaveNoFaultsButNumbersThatOnlyShow) {
    std::vector<std::string> files;
    for (const auto& entry : std::filesystem::directory_iterator(QO_SOURCE_DIR "/resources/scripts")) {
        files.push_back(entry.path().filename().string());
        fFolder.Write(files.back(), TemporaryFolder::Contents(entry.path()));
    }
    EXPECT_EQ(Run(files), 0);
    std::istringstream lines(fOutput);
    for (std::string line; std::getline(lines, line);)
        EXPECT_THAT(line, testing::EndsWith("is computed, so that the user can't change the number"));
}

TEST_F(CheckCommand, ComparesTheSheetOfAnEffectWithItsRanges) {
    std::string sheet = TemporaryFolder::Contents(QO_SOURCE_DIR "/resources/scripts/HARDLIMITERUI.trn");
    const std::string bound = "max_amp_min: -100";
    sheet.replace(sheet.find(bound), bound.size(), "max_amp_min: -60");
    fFolder.Write("HardLimiterUI.trn", sheet);
    EXPECT_EQ(Run({"HardLimiterUI.trn"}), 0);
    EXPECT_THAT(fOutput,
                HasSubstr("cell 'max_amp' runs from -60 to 0 over in0, the effect's \"Maximum Amplitude\" from "
                          "-100 to 0"));
}

TEST_F(CheckCommand, ArchivesTellEveryFaultWithItsPlace) {
    std::string archive = TemporaryFolder::Contents(QO_SOURCE_DIR "/resources/archives/AMPLIFY.xml");
    const std::size_t at = archive.find("kroui::controls::UI_Checkbox");
    ASSERT_NE(at, std::string::npos);
    const auto line = 1 + std::count(archive.begin(), archive.begin() + static_cast<std::ptrdiff_t>(at), '\n');
    archive.replace(at, 5, "krouy");
    fFolder.Write("panel.xml", archive);
    EXPECT_EQ(Run({"panel.xml"}), 1);
    EXPECT_THAT(fOutput, HasSubstr("panel.xml:" + std::to_string(line) + ":"));
    EXPECT_THAT(fOutput, HasSubstr("krouy::controls::UI_Checkbox"));
}

TEST_F(CheckCommand, FilesThatCannotBeReadExitWithTwoAndTheOthersAreCheckedAllTheSame) {
    fFolder.Write("a.trn", "sheet");
    fFolder.Write("a.txt", "text");
    EXPECT_EQ(Run({"missing.trn", "a.txt", "a.trn"}), 2);
    EXPECT_THAT(fErrors, HasSubstr("missing.trn"));
    EXPECT_THAT(fErrors, HasSubstr("a.txt is no layout archive"));
    EXPECT_THAT(fOutput, HasSubstr("a.trn:1:6: expected a name for the sheet"));
}

} // namespace
} // namespace workbench
