#include "workbench/commands/CheckCommand.h"

#include "krocore/FilePath.h"
#include "workbench/commands/CommandLine.h"
#include "workbench/commands/FileChecker.h"
#include "workbench/commands/Messages.h"
#include "workbench/session/PanelsLibrary.h"
#include "workbench/session/TextFile.h"

#include <fmt/format.h>

#include <algorithm>
#include <optional>
#include <system_error>

namespace workbench {

using krotarnlio::Script;
using krotarnlio::ScriptProblem;
using std::filesystem::path;

namespace {

constexpr const char* kArchive = ".xml";
constexpr const char* kSheet = ".trn";
constexpr const char* kLayout = ".lio";

// The sheet that stands beside a layout under the same name, in whatever case.
std::optional<path> SheetBeside(const path& layout) {
    std::error_code error;
    const path folder = layout.has_parent_path() ? layout.parent_path() : path(".");
    for (const auto& entry : std::filesystem::directory_iterator(folder, error)) {
        if (LowerExtension(entry.path()) == kSheet && LowerStem(entry.path()) == LowerStem(layout))
            return layout.parent_path() / entry.path().filename();
    }
    return {};
}

// Checks files one after the other and keeps account of the outcome.
class CheckRun {
public:
    explicit CheckRun(std::vector<path> files) : fFiles(std::move(files)) {
        fFaults.HideHeadings();
        AddSheets();
    }

    int Run(TableFormat format) {
        for (const path& file : fFiles)
            Check(file);
        PrintOut(fFaults.ToText(format));
        if (fHasUnreadable) return kExitUnreadable;
        return fHasFault ? kExitFailed : kExitDone;
    }

private:
    const path* FindSheet(const path& layout) const {
        const auto found = std::ranges::find_if(fFiles, [&](const path& file) {
            return LowerExtension(file) == kSheet && LowerStem(file) == LowerStem(layout);
        });
        return found != fFiles.end() ? &*found : nullptr;
    }

    // Those that layouts have beside them, each in front of its layout.
    void AddSheets() {
        std::vector<path> files;
        for (const path& file : fFiles) {
            const bool needsSheet = LowerExtension(file) == kLayout && !FindSheet(file);
            if (const auto sheet = needsSheet ? SheetBeside(file) : std::nullopt) files.push_back(*sheet);
            files.push_back(file);
        }
        fFiles = std::move(files);
    }

    void Check(const path& file) {
        auto text = ReadFile(file);
        if (!text) return Refuse(file, "can't be read");
        const Script script{krocore::PathText(file), *std::move(text)};
        const std::string kind = LowerExtension(file);
        if (kind == kArchive) return Report(fChecker.CheckArchive(script));
        if (kind == kSheet) return Report(fChecker.CheckSheet(script));
        if (kind == kLayout) return CheckLayout(file, script);
        Refuse(file, "is no layout archive (.xml), sheet (.trn) or layout (.lio)");
    }

    void CheckLayout(const path& file, const Script& layout) {
        const path* const sheet = FindSheet(file);
        const auto text = sheet ? ReadFile(*sheet) : std::nullopt;
        if (!sheet)
            Report({{layout.file,
                     {1, 1},
                     "the layout has no sheet, expected " + krocore::PathText(file.stem()) + ".trn beside it"}});
        // Without cells, what does not depend on them is still checked.
        Report(fChecker.CheckLayout(layout, {sheet ? sheet->string() : "", text.value_or(kNoSheet)}));
    }

    void Refuse(const path& file, const char* why) {
        TellProblem(fmt::format("{} {}", krocore::PathText(file), why));
        fHasUnreadable = true;
    }

    void Report(const std::vector<ScriptProblem>& problems) {
        for (const ScriptProblem& problem : problems) {
            fFaults.Add({problem.ToString(), problem.file, static_cast<double>(problem.position.line),
                         static_cast<double>(problem.position.column),
                         std::string(problem.isOnlyWarning ? "warning" : "error"), problem.message});
            fHasFault = fHasFault || !problem.isOnlyWarning;
        }
    }

    // What can't be read as a sheet.
    static constexpr const char* kNoSheet = "?";

    const PanelsLibrary fLibrary;
    const FileChecker fChecker{fLibrary.Supplier()};
    std::vector<path> fFiles;
    Table fFaults{{{"", "FAULT"}, {"file", ""}, {"line", ""}, {"column", ""}, {"kind", ""}, {"message", ""}}};
    bool fHasFault = false;
    bool fHasUnreadable = false;
};

} // namespace

int Check(const CheckRequest& request) {
    return CheckRun(request.files).Run(request.format);
}

} // namespace workbench
