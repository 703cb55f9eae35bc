#include "SourcePaths.h"
#include "kroui/ui/UI_NodeBuilder.h"
#include "kroui/ui/UI_NodeWriter.h"
#include "kroui/ui/UI_SubView.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <sstream>

using namespace kroui::ui;

namespace {

std::string Contents(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

// A view stands in for the nodes that editors make themselves.
boost::intrusive_ptr<UI_Node> MakeStandIn(const krocore::string16&) {
    return new UI_SubView;
}

// The text up to the end of a list, every list's pairs last to first.
std::string Reversed(std::istream& lines) {
    std::string reversed;
    std::string pair;
    for (std::string line; std::getline(lines, line);) {
        if (line.ends_with("</prop.list>\r")) return reversed + line + "\n";
        pair += line + "\n";
        if (line.ends_with("<prop.list>\r")) pair += Reversed(lines);
        if (line.ends_with("</prop.pair>\r")) reversed.insert(0, std::exchange(pair, {}));
    }
    return pair;
}

// What is written of what has been read.
std::string Rewritten(const std::string& text, const std::string& name) {
    NamedNodes nodes;
    std::vector<Diagnostic> diagnostics;
    const auto root = UI_NodeBuilder::LoadView(std::as_bytes(std::span(text)), name, nodes, &MakeStandIn, diagnostics);
    for (const Diagnostic& diagnostic : diagnostics)
        ADD_FAILURE() << diagnostic.ToString();
    return root ? WriteArchive(*root) : "";
}

TEST(Archives, EveryPanelReadsWithoutFaultInAnyOrderAndIsWrittenBackByteForByte) {
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(QO_SOURCE_DIR "/resources/archives")) {
        const std::string name = entry.path().filename();
        const std::string text = Contents(entry.path());
        EXPECT_TRUE(Rewritten(text, name) == text) << name;
        std::istringstream lines(text);
        const std::string reversed = Reversed(lines);
        EXPECT_EQ(reversed.size(), text.size()) << name;
        EXPECT_TRUE(Rewritten(reversed, name + " reversed") == text) << name;
        ++count;
    }
    EXPECT_EQ(count, 9);
}

} // namespace
