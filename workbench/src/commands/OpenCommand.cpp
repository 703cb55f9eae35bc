#include "workbench/commands/OpenCommand.h"

#include "host/ByteStream.h"
#include "krocore/config/Error.h"
#include "krocore/debug/Trace.h"
#include "krosdl/SdlWindow.h"
#include "workbench/commands/CommandLine.h"
#include "workbench/commands/Interruption.h"
#include "workbench/commands/TreeText.h"
#include "workbench/session/EffectNames.h"
#include "workbench/session/ScriptEffect.h"
#include "workbench/sound/SdlSoundOutput.h"
#include "workbench/window/WorkbenchView.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <optional>
#include <system_error>
#include <utility>

namespace workbench {

using kroui::ui::Theme;
using qoc::components::EffectDescription;

namespace {

constexpr const char* kTreeVariable = "QO_WORKBENCH_TREE";
constexpr const char* kFirstEffect = "amplify";

const EffectDescription& EffectToBeginWith(const std::string& wanted, const EffectList::Effects& effects) {
    if (!wanted.empty()) return EffectFromName(wanted);
    if (effects.empty()) throw krocore::config::Error("this version has no effect with a panel");
    const EffectDescription* const usual = qoc::components::FindEffectByShortName(kFirstEffect);
    return std::find(effects.begin(), effects.end(), usual) != effects.end() ? *usual : *effects.front();
}

// Writes the tree when its reader has taken the last one away. It appears complete.
void WriteTreeIfWanted(const std::filesystem::path& file, const kroui::ui::UI_Window& window) {
    std::error_code error;
    if (file.empty() || std::filesystem::exists(file, error)) return;
    std::filesystem::path partial = file;
    partial += ".partial";
    std::ofstream(partial, std::ios::binary) << DescribeTree(window);
    std::filesystem::rename(partial, file, error);
}

} // namespace

int Open(const OpenRequest& request) {
    krocore::debug::SetTraceLevel("*", request.trace);
    const PanelsLibrary library;
    EffectList::Effects effects = AvailableEffects();
    PanelSource panels(library);
    if (!request.watch.empty()) panels.Watch(request.watch);
    std::optional<ScriptEffect> scripts;
    if (!request.scripts.empty()) effects.push_back(&scripts.emplace(request.scripts).Description());
    const EffectDescription& effect = scripts ? scripts->Description() : EffectToBeginWith(request.effect, effects);
    // What is wrong with the file is told even where there is no screen and no sound.
    std::shared_ptr<const qohost::SoundSource> sound;
    if (!request.file.empty()) sound = qohost::OpenSoundSource(request.file, request.kind);
    krosdl::SdlWindow window(library.Supplier(),
                             {WorkbenchView::kDefaultSize, WorkbenchView::kSmallestSize, request.scale});
    RemoveUnfinishedFilesAtTheEnd(); // behind SDL, which makes some of the signals a wish to close the window
    SdlSoundOutput output;
    Session::Beginning beginning;
    if (scripts) beginning.filter = scripts->Filter();
    if (sound) beginning.file = {qohost::InputName(request.file), std::move(sound)};
    Session session(output, effect, std::move(beginning));

    const boost::intrusive_ptr<WorkbenchView> view(new WorkbenchView(session, effects, &panels));
    window.Window().SetTheme(request.theme == Theme::Light().Name() ? Theme::Light() : Theme::Dark());
    window.Window().SetContent(view);
    view->SetLargestZoom(window.LargestZoom());
    view->SetZoom(request.zoom);
    view->SetTitleListener([&] { window.SetTitle(view->Title()); });
    window.SetTitle(view->Title());
    const char* const tree = std::getenv(kTreeVariable);
    const std::filesystem::path treeFile = tree != nullptr ? tree : "";
    window.Run([&] { WriteTreeIfWanted(treeFile, window.Window()); });
    view->SetTitleListener({});
    window.Window().SetContent(nullptr);
    return kExitDone;
}

} // namespace workbench
