#include "kroui/ui/UI_NodeBuilder.h"

#include "ArchiveReader.h"

#include "krocore/debug/Trace.h"

namespace kroui::ui {

namespace {

constexpr std::string_view kTraceCategory = "UI_NodeBuilder";
constexpr std::string_view kResourceType = "XML";

void TraceDiagnostics(const std::vector<Diagnostic>& diagnostics) {
    if (diagnostics.empty() || !krocore::debug::TraceEnabled(kTraceCategory, 1, true)) return;
    for (const auto& diagnostic : diagnostics) {
        krocore::debug::Trace(diagnostic.ToString() + "\n");
    }
}

} // namespace

boost::intrusive_ptr<UI_Node> UI_NodeBuilder::LoadViewFromXML(const utility::ResourceManager& resources,
                                                              const limner::SupplierInterface* /*supplier*/,
                                                              const krocore::string16& resourceName,
                                                              NamedNodes& namedNodes,
                                                              const CustomNodeFactory& customNodeFactory) {
    const auto name = krocore::ToStdString(resourceName);
    const auto bytes = resources.GetResource(name, kResourceType);
    std::vector<Diagnostic> diagnostics;
    boost::intrusive_ptr<UI_Node> root;
    if (bytes.data() == nullptr) {
        diagnostics.push_back(
            {name + ".xml", 1, 1, "there is no such layout archive, expected a resource of type XML"});
    } else {
        root = LoadView(bytes, name + ".xml", namedNodes, customNodeFactory, diagnostics);
    }
    TraceDiagnostics(diagnostics);
    return root;
}

boost::intrusive_ptr<UI_Node> UI_NodeBuilder::LoadView(std::span<const std::byte> bytes, const std::string& name,
                                                       NamedNodes& namedNodes,
                                                       const CustomNodeFactory& customNodeFactory,
                                                       std::vector<Diagnostic>& diagnostics) {
    ArchiveDocument document(bytes, name, diagnostics);
    const auto map = document.Parse();
    if (!map) return {};
    ArchiveReader reader(document, customNodeFactory);
    auto root = reader.Read(map);
    if (!root) return {};
    // Ids that the caller's map has from an earlier archive stand for the new nodes now.
    reader.Named().merge(namedNodes);
    namedNodes.swap(reader.Named());
    return root;
}

} // namespace kroui::ui
