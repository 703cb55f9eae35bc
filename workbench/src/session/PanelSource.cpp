#include "workbench/session/PanelSource.h"

#include "krocore/config/Error.h"
#include "qocui/module/ComponentUIFactory.h"
#include "workbench/session/PanelParts.h"
#include "workbench/session/ScriptFilter.h"

#include <fmt/format.h>

#include <algorithm>
#include <exception>

namespace workbench {

using kroaudiofilterhost::AudioFilter;
using krotarnlio::Script;
using krotarnlio::ScriptProblem;

namespace {

using FilterPtr = boost::intrusive_ptr<AudioFilter>;

// The types of resources, as files are named.
constexpr const char* kArchive = "xml";
constexpr const char* kSheet = "trn";
constexpr const char* kLayout = "lio";

// More would not fit into a panel's place.
constexpr std::size_t kMostLines = 12;

// The panels library, in which the scripts are embedded.
HINSTANCE PanelsModule() {
    return krocore::ModuleFromAddress(&qocui::module::ComponentUIFactory::GetInstance());
}

std::string EmbeddedText(std::string_view name, std::string_view type) {
    const auto bytes = krocore::FindResource(PanelsModule(), name, type);
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

void Append(FileChecker::Problems& problems, const FileChecker::Problems& more) {
    problems.insert(problems.end(), more.begin(), more.end());
}

krocore::string16 Lines(const FileChecker::Problems& problems) {
    std::string text;
    for (std::size_t i = 0; i < std::min(problems.size(), kMostLines); ++i)
        text += (i == 0 ? "" : "\n") + problems[i].ToString();
    if (problems.size() > kMostLines) text += "\n...";
    return krocore::ToUTF16(text);
}

} // namespace

PanelSource::PanelSource(const PanelsLibrary& library) : fLibrary(library) {
}

void PanelSource::Watch(const std::filesystem::path& folder) {
    fFolder.reset();
    fFolder = std::make_unique<WatchedFolder>(folder);
    if (!fChecker) fChecker.emplace(fLibrary.Supplier());
}

PanelSource::Made PanelSource::Make(const FilterPtr& filter) {
    Made made;
    try {
        fParts.clear();
        const ResourceListener listener(fParts);
        made.panel = MakePanel(filter);
    } catch (const std::exception& error) {
        made.problem = krocore::ToUTF16(error.what());
    }
    if (!fFolder) return made;
    for (const auto& broken : {CheckArchives(), CheckPairs()}) {
        if (broken.empty()) continue;
        made.problem = Lines(broken);
        made.panel = nullptr;
        return made;
    }
    if (const auto faults = CheckScripts(); !faults.empty()) made.problem = Lines(faults);
    return made;
}

bool PanelSource::HasChanged() {
    if (!fFolder) return false;
    const WatchedFolder::Names changed = fFolder->Look();
    // Pictures are kept from one panel to the next and not looked for again.
    return std::ranges::any_of(
        changed, [this](const ResourceName& name) { return name.type == "png" || fParts.contains(name); });
}

krocore::string16 PanelSource::TakeUnusedFile() {
    if (!fFolder) return {};
    for (const ResourceName& file : fFolder->Files()) {
        const bool isKnown = file.type == "png" || !fJudged.insert(file).second;
        if (isKnown || fParts.contains(file) || EffectWithFile(file)) continue;
        const std::string open =
            file.type == kArchive ? "" : fmt::format(R"(; "--scripts {}" opens it without one)", file.name);
        return krocore::ToUTF16(
            fmt::format(R"({}: no effect's panel is made of this file ("workbench list" says which){})",
                        fFolder->Find(file)->file, open));
    }
    return {};
}

PanelPtr PanelSource::MakePanel(const FilterPtr& filter) {
    auto* const scripts = dynamic_cast<ScriptFilter*>(filter.get());
    if (!scripts) return NewPanel(filter);
    if (const auto defaults = InputDefaults(EmbeddedText(scripts->Scripts(), kSheet))) scripts->SetDefaults(*defaults);
    return MakeScriptPanel(filter, scripts->Scripts());
}

PanelPtr PanelSource::MakeScriptPanel(const FilterPtr& filter, const std::string& scripts) const {
    return qocui::controls::TarnLioAudioComponentEditorView::Create(filter, &fLibrary.Supplier(),
                                                                    krocore::ToUTF16(scripts), PanelsModule());
}

// Of the archives that the last panel was made of and that are in the folder.
FileChecker::Problems PanelSource::CheckArchives() const {
    FileChecker::Problems problems;
    for (const ResourceName& part : fParts) {
        const Script* const archive = part.type == kArchive ? fFolder->Find(part) : nullptr;
        if (archive) Append(problems, fChecker->CheckArchive(*archive));
    }
    return problems;
}

// A script is of no use without the other one of its pair: the panel is empty then.
FileChecker::Problems PanelSource::CheckPairs() const {
    FileChecker::Problems problems;
    for (const ResourceName& part : fParts) {
        if (part.type != kSheet && part.type != kLayout) continue;
        if (krocore::FindResource(PanelsModule(), part.name, part.type).data() != nullptr) continue;
        const Script* const other = fFolder->Find({part.name, part.type == kSheet ? kLayout : kSheet});
        if (other)
            problems.push_back({other->file, {1, 1}, "there is no " + part.name + "." + part.type + " beside it"});
    }
    return problems;
}

FileChecker::Problems PanelSource::CheckScripts() const {
    FileChecker::Problems problems;
    for (const ResourceName& part : fParts) {
        const Script* const script = fFolder->Find(part);
        if (script && part.type == kSheet) Append(problems, fChecker->CheckSheet(*script));
        if (!script || part.type != kLayout) continue;
        const Script* const edited = fFolder->Find({part.name, kSheet});
        const Script sheet = edited ? *edited : Script{"", EmbeddedText(part.name, kSheet)};
        Append(problems, fChecker->CheckLayout(*script, sheet));
    }
    std::erase_if(problems, [](const ScriptProblem& problem) { return problem.isOnlyWarning; });
    return problems;
}

boost::intrusive_ptr<AudioFilter> NewScriptFilter(const std::string& scripts) {
    const HINSTANCE module = PanelsModule();
    for (const char* const type : {kSheet, kLayout})
        if (krocore::FindResource(module, scripts, type).data() == nullptr)
            throw krocore::config::Error(fmt::format(
                R"(there is no script "{}" of type {}, neither embedded nor in a watched folder)", scripts, type));
    const boost::intrusive_ptr<ScriptFilter> filter(new ScriptFilter(scripts));
    if (const auto defaults = InputDefaults(EmbeddedText(scripts, kSheet))) filter->SetDefaults(*defaults);
    return filter;
}

} // namespace workbench
