#include "kroui/ui/UI_NodeBuilder.h"
#include "kroui/ui/UI_NodeWriter.h"
#include "kroui/ui/UI_SubView.h"

#include <cstdio>
#include <cstdlib>

namespace {

using namespace kroui::ui;

boost::intrusive_ptr<UI_Node> Load(std::span<const std::byte> bytes) {
    NamedNodes nodes;
    std::vector<Diagnostic> diagnostics;
    const auto makeCustom = [](const krocore::string16& name) {
        return boost::intrusive_ptr<UI_Node>(name == u"Nothing" ? nullptr : new UI_SubView);
    };
    auto root = UI_NodeBuilder::LoadView(bytes, "fuzz.xml", nodes, makeCustom, diagnostics);
    if (!root && diagnostics.empty()) {
        std::fputs("refused without a reason\n", stderr);
        std::abort();
    }
    for (const auto& [id, node] : nodes) {
        if (node->UI_GetID() != id) std::abort(); // also reads every node that is named
    }
    return root;
}

} // namespace

// Whatever is read can be written, and what is written reads as the same tree.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto root = Load(std::as_bytes(std::span(data, size)));
    if (!root) return 0;
    const auto written = WriteArchive(*root);
    const auto again = Load(std::as_bytes(std::span(written)));
    if (!again || WriteArchive(*again) != written) {
        std::fputs("the written archive reads as another tree\n", stderr);
        std::abort();
    }
    return 0;
}
