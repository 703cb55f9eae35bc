#include "workbench/commands/FileChecker.h"

#include "krocore/FilePath.h"
#include "kroui/ui/UI_NodeBuilder.h"
#include "kroui/ui/UI_SubView.h"
#include "workbench/session/PanelParts.h"
#include "workbench/session/ScriptFilter.h"
#include "workbench/session/TextFile.h"

namespace workbench {

using krotarnlio::Script;
using krotarnlio::ScriptChecker;
using qocui::controls::TarnLioAudioComponentEditorView;

namespace {

ScriptChecker::Surroundings SurroundingsOf(TarnLioAudioComponentEditorView& panel,
                                           const kroui::limner::SupplierInterface& supplier) {
    return {[&panel](orrin::virtual_machine_t& machine, orrin::sheet_t* sheet) {
                panel.SetupVirtualMachine(machine, sheet);
            },
            panel.GetFunctionNames(), uit::lio::GetAdapterFactoryProc(), &supplier};
}

// Its numbers; what choices and switches stand for is the script's affair.
krotarnlio::ScriptEffect EffectOf(const qoc::components::EffectDescription& description) {
    constexpr std::size_t kBlock = 512;
    krotarnlio::ScriptEffect effect;
    const auto filter = description.create();
    filter->Prepare(static_cast<float>(effect.sampleRate), kBlock,
                    kromediatypes::AudioChannelLayout::ForChannelCount(2));
    for (int i = 0; i < filter->GetParameterCount(); ++i) {
        const auto* const info = filter->GetParameterInfo(i);
        if (info && info->GetKind() == kroaudiofilterhost::AudioFilterParameterInfo::Kind::kNumber)
            effect.parameters.push_back(
                {i, krocore::ToStdString(info->GetName()), info->ToNatural(0), info->ToNatural(1)});
    }
    return effect;
}

// A view stands in for the nodes that editors make themselves.
boost::intrusive_ptr<kroui::ui::UI_Node> MakeStandIn(const krocore::string16& /*className*/) {
    return new kroui::ui::UI_SubView;
}

} // namespace

FileChecker::FileChecker(const kroui::limner::SupplierInterface& supplier)
    : fPanel(TarnLioAudioComponentEditorView::Create(new ScriptFilter(""), &supplier, u"", nullptr)),
      fScripts(SurroundingsOf(*fPanel, supplier)) {
}

FileChecker::Problems FileChecker::CheckArchive(const Script& archive) const {
    kroui::ui::NamedNodes nodes;
    std::vector<kroui::ui::Diagnostic> diagnostics;
    kroui::ui::UI_NodeBuilder::LoadView(std::as_bytes(std::span(archive.text)), archive.file, nodes, &MakeStandIn,
                                        diagnostics);
    Problems problems;
    for (const kroui::ui::Diagnostic& found : diagnostics)
        problems.push_back({found.file,
                            {static_cast<std::uint32_t>(found.line), static_cast<std::uint32_t>(found.column)},
                            found.message});
    return problems;
}

FileChecker::Problems FileChecker::CheckSheet(const Script& sheet) const {
    const std::filesystem::path file = krocore::PathFromText(sheet.file);
    const auto* const description = EffectWithFile({LowerStem(file), "trn"});
    if (!description) return fScripts.CheckSheet(sheet);
    const krotarnlio::ScriptEffect effect = EffectOf(*description);
    return fScripts.CheckSheet(sheet, &effect);
}

} // namespace workbench
