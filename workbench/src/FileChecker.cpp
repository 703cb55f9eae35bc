#include "workbench/FileChecker.h"

#include "kroui/ui/UI_NodeBuilder.h"
#include "kroui/ui/UI_SubView.h"
#include "workbench/ScriptFilter.h"

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

} // namespace workbench
