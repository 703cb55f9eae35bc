#include "kroui/ui/UI_NodeBuilder.h"
#include "kroui/ui/UI_NodeWriter.h"
#include "kroui/ui/UI_SubView.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>

using namespace kroui::ui;

namespace {

std::string Contents(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

// A view stands in for the nodes that editors make themselves.
boost::intrusive_ptr<UI_Node> MakeStandIn(const krocore::string8&) {
    return new UI_SubView;
}

TEST(Archives, EveryPanelReadsWithoutFaultAndIsWrittenBackByteForByte) {
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(QO_SOURCE_DIR "/resources/archives")) {
        const std::string text = Contents(entry.path());
        NamedNodes nodes;
        std::vector<Diagnostic> diagnostics;
        const auto root = UI_NodeBuilder::LoadView(std::as_bytes(std::span(text)), entry.path().filename(), nodes,
                                                   &MakeStandIn, diagnostics);
        ASSERT_NE(root, nullptr) << entry.path();
        for (const Diagnostic& diagnostic : diagnostics)
            ADD_FAILURE() << diagnostic.ToString();
        EXPECT_TRUE(WriteArchive(*root) == text) << entry.path();
        ++count;
    }
    EXPECT_GT(count, 0);
}

} // namespace
