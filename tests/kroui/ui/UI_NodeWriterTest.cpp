#include "kroui/ui/UI_NodeWriter.h"

#include "ArchiveTestNodes.h"

#include "kroui/ui/UI_NodeBuilder.h"

#include <gmock/gmock.h>

#include <limits>

namespace kroui::ui {

namespace {

using test::EveryType;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

boost::intrusive_ptr<UI_Node> Read(const std::string& text) {
    NamedNodes nodes;
    std::vector<Diagnostic> diagnostics;
    const auto makeCustom = [](const krocore::string16&) { return boost::intrusive_ptr<UI_Node>(new EveryType); };
    auto root = UI_NodeBuilder::LoadView(std::as_bytes(std::span(text)), "written", nodes, makeCustom, diagnostics);
    for (const auto& diagnostic : diagnostics) {
        ADD_FAILURE() << diagnostic.ToString();
    }
    return root;
}

boost::intrusive_ptr<EveryType> MakeEveryType() {
    return new EveryType;
}

// What stands between two marks of a text, without tabs.
std::string Between(const std::string& text, std::string_view begin, std::string_view end) {
    const auto from = text.find(begin) + begin.size();
    auto part = text.substr(from, text.find(end, from) - from);
    std::erase(part, '\t');
    return part;
}

std::string FloatText(float value) {
    const auto node = MakeEveryType();
    node->SetSize(value);
    return Between(WriteArchive(*node), "<key>size</key>\r\n", "\r\n");
}

} // namespace

TEST(UI_NodeWriter, PlainViewIsWrittenInTheOrderOfTheFormat) {
    const boost::intrusive_ptr<UI_SubView> view(new UI_SubView);
    view->UI_SetFrame({1, 2.5F, 300, 200});
    view->UI_SetID("Panel");
    view->SetConstraints(kConstrainLeft | kConstrainTop);
    const std::string expected = "<?xml version='1.0'?>\n"
                                 "<prop.map version='4'>\n"
                                 "\t<prop.list>\n"
                                 "\t\t<prop.pair>\n"
                                 "\t\t\t<key>UINodeArchive</key>\n"
                                 "\t\t\t<int type='unsigned' size='32'>1</int>\n"
                                 "\t\t</prop.pair>\n"
                                 "\t\t<prop.pair>\n"
                                 "\t\t\t<key>root</key>\n"
                                 "\t\t\t<prop.list>\n"
                                 "\t\t\t\t<prop.pair>\n"
                                 "\t\t\t\t\t<key>adapter</key>\n"
                                 "\t\t\t\t\t<ustring>kroui::ui::UI_SubView</ustring>\n"
                                 "\t\t\t\t</prop.pair>\n"
                                 "\t\t\t\t<prop.pair>\n"
                                 "\t\t\t\t\t<key>sections</key>\n"
                                 "\t\t\t\t\t<prop.list>\n"
                                 "\t\t\t\t\t\t<prop.pair>\n"
                                 "\t\t\t\t\t\t\t<key>count</key>\n"
                                 "\t\t\t\t\t\t\t<int type='unsigned' size='32'>2</int>\n"
                                 "\t\t\t\t\t\t</prop.pair>\n";
    std::string withCRLF;
    for (const auto c : expected) {
        withCRLF += c == '\n' ? std::string("\r\n") : std::string(1, c);
    }
    const auto text = WriteArchive(*view);
    EXPECT_EQ(text.substr(0, withCRLF.size()), withCRLF);
    EXPECT_EQ(Between(text, "<key>section-0</key>", "<key>section-1</key>"),
              "\r\n<prop.list>\r\n"
              "<prop.pair>\r\n<key>AutoLayout</key>\r\n<false/>\r\n</prop.pair>\r\n"
              "<prop.pair>\r\n<key>AutoLayout_Horizontal</key>\r\n<false/>\r\n</prop.pair>\r\n"
              "<prop.pair>\r\n<key>AutoLayout_MaintainMargins</key>\r\n<false/>\r\n</prop.pair>\r\n"
              "<prop.pair>\r\n<key>AutoLayout_ScaleChildren</key>\r\n<false/>\r\n</prop.pair>\r\n"
              "<prop.pair>\r\n<key>Constraints</key>\r\n<prop.list>\r\n"
              "<prop.pair>\r\n<key>.aptype</key>\r\n<int type='signed' size='32'>4</int>\r\n</prop.pair>\r\n"
              "<prop.pair>\r\n<key>constraints</key>\r\n<int type='unsigned' size='32'>5</int>\r\n</prop.pair>\r\n"
              "</prop.list>\r\n</prop.pair>\r\n"
              "<prop.pair>\r\n<key>LayoutChildren</key>\r\n<true/>\r\n</prop.pair>\r\n"
              "<prop.pair>\r\n<key>children</key>\r\n<prop.list>\r\n"
              "<prop.pair>\r\n<key>count</key>\r\n<int type='unsigned' size='32'>0</int>\r\n</prop.pair>\r\n"
              "</prop.list>\r\n</prop.pair>\r\n"
              "<prop.pair>\r\n<key>sectionName</key>\r\n<ustring>kroui::ui::UI_SubView</ustring>\r\n</prop.pair>\r\n"
              "</prop.list>\r\n</prop.pair>\r\n<prop.pair>\r\n");
    EXPECT_EQ(Between(text, "<key>section-1</key>", "</prop.map>"),
              "\r\n<prop.list>\r\n"
              "<prop.pair>\r\n<key>bounds</key>\r\n<prop.list>\r\n"
              "<prop.pair>\r\n<key>.aptype</key>\r\n<int type='signed' size='32'>1</int>\r\n</prop.pair>\r\n"
              "<prop.pair>\r\n<key>height</key>\r\n<float>200</float>\r\n</prop.pair>\r\n"
              "<prop.pair>\r\n<key>left</key>\r\n<float>1</float>\r\n</prop.pair>\r\n"
              "<prop.pair>\r\n<key>top</key>\r\n<float>2.5</float>\r\n</prop.pair>\r\n"
              "<prop.pair>\r\n<key>width</key>\r\n<float>300</float>\r\n</prop.pair>\r\n"
              "</prop.list>\r\n</prop.pair>\r\n"
              "<prop.pair>\r\n<key>id</key>\r\n<string>Panel</string>\r\n</prop.pair>\r\n"
              "<prop.pair>\r\n<key>sectionName</key>\r\n<ustring>kroui::ui::UI_Node</ustring>\r\n</prop.pair>\r\n"
              "<prop.pair>\r\n<key>tooltip</key>\r\n<ustring/>\r\n</prop.pair>\r\n"
              "<prop.pair>\r\n<key>visible</key>\r\n<true/>\r\n</prop.pair>\r\n"
              "</prop.list>\r\n</prop.pair>\r\n</prop.list>\r\n</prop.pair>\r\n</prop.list>\r\n</prop.pair>\r\n"
              "</prop.list>\r\n");
}

TEST(UI_NodeWriter, FloatsHaveTheShortestFormWithAtMostSixDecimals) {
    const struct {
        float value;
        std::string_view text;
    } cases[] = {
        {0, "0"},          {-0.0F, "0"},           {1.5F, "1.5"},      {34.5390625F, "34.539062"},
        {0.1F, "0.1"},     {1.0F / 3, "0.333333"}, {-1e-7F, "0"},      {16777216, "16777216"},
        {-2.25F, "-2.25"}, {1e10F, "10000000000"}, {9.9999999F, "10"}, {std::numeric_limits<float>::quiet_NaN(), "0"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(FloatText(c.value), "<float>" + std::string(c.text) + "</float>");
    }
}

TEST(UI_NodeWriter, DoublesAreExactAndPlainWhereTheyCanBe) {
    const struct {
        double value;
        std::string_view text;
    } cases[] = {{0.0001, "0.0001"},
                 {0.1, "0.1"},
                 {-96, "-96"},
                 {123456789.125, "123456789.125"},
                 {1e-7, "1e-07"},
                 {1e300, "1e+300"},
                 {1e14, "100000000000000"}};
    for (const auto& c : cases) {
        const auto node = MakeEveryType();
        node->SetLevel(c.value);
        const auto text = WriteArchive(*node);
        EXPECT_EQ(Between(text, "<key>level</key>\r\n", "\r\n"), "<double>" + std::string(c.text) + "</double>");
        EXPECT_EQ(boost::dynamic_pointer_cast<EveryType>(Read(text))->Level(), c.value);
    }
}

TEST(UI_NodeWriter, NumberedKeysStandInByteOrder) {
    const boost::intrusive_ptr<UI_SubView> view(new UI_SubView);
    for (int i = 0; i < 12; ++i) {
        view->ChildPushBack(new UI_SubView);
        view->Child(view->ChildCount() - 1)->UI_SetID(std::to_string(i));
    }
    const auto text = WriteArchive(*view);
    std::size_t last = 0;
    for (const auto* key : {"child-0", "child-1", "child-10", "child-11", "child-2", "child-9"}) {
        const auto at = text.find("<key>" + std::string(key) + "</key>");
        EXPECT_GT(at, last) << key;
        last = at;
    }
    const auto again = Read(text);
    EXPECT_EQ(again->Child(10)->UI_GetID(), "10");
    EXPECT_EQ(WriteArchive(*again), text);
}

TEST(UI_NodeWriter, TextsSurviveWhateverTheyHold) {
    constexpr std::string_view kTexts[] = {"",
                                           " ",
                                           "a < b && c > d",
                                           "'single' \"double\"",
                                           "line\r\nend\n",
                                           "\ttab",
                                           "($$$/A/B=&)",
                                           "50 \xC2\xB0",
                                           "]]>",
                                           "  spaces  "};
    for (const auto text : kTexts) {
        const auto node = MakeEveryType();
        node->SetText(text);
        node->SetImage(text);
        node->SetItems({krocore::string8(text), "", krocore::string8(text)});
        node->UI_SetID(text);
        const auto written = WriteArchive(*node);
        const auto again = boost::dynamic_pointer_cast<EveryType>(Read(written));
        ASSERT_TRUE(again) << text;
        EXPECT_EQ(again->Text(), text);
        EXPECT_EQ(again->Image(), text);
        EXPECT_EQ(again->Items(), node->Items());
        EXPECT_EQ(again->UI_GetID(), text);
        EXPECT_EQ(WriteArchive(*again), written);
    }
}

TEST(UI_NodeWriter, WhatXMLCannotHoldIsReplaced) {
    const auto node = MakeEveryType();
    node->SetText("a\x01"
                  "b\xFF"
                  "c");
    EXPECT_THAT(WriteArchive(*node), HasSubstr("<ustring>a\xEF\xBF\xBD"
                                               "b\xEF\xBF\xBD"
                                               "c</ustring>"));
}

TEST(UI_NodeWriter, CustomNodeIsWrittenAsAPlaceholder) {
    const auto node = MakeEveryType();
    node->ChildPushBack(new UI_SubView);
    node->UI_SetArchiveClassName("Graph");
    node->UI_SetFrame({8, 8, 100, 50});
    const auto text = WriteArchive(*node);
    EXPECT_EQ(Between(text, "<key>adapter</key>\r\n", "\r\n"), "<ustring>kroui::ui::UI_SubView</ustring>");
    EXPECT_EQ(Between(text, "<key>className</key>\r\n", "\r\n"), "<ustring>Graph</ustring>");
    EXPECT_EQ(text.find("test::EveryType"), text.npos);
    EXPECT_EQ(text.find("child-0"), text.npos);
    const auto again = Read(text);
    EXPECT_EQ(again->UI_GetFrame(), (Rect{8, 8, 100, 50}));
    EXPECT_EQ(WriteArchive(*again), text);
}

TEST(UI_NodeWriter, EnumerationsWithNamesListThem) {
    const auto node = MakeEveryType();
    node->SetChoice(1);
    EXPECT_EQ(Between(WriteArchive(*node), "<key>choice</key>", "<key>countOf</key>"),
              "\r\n<prop.list>\r\n"
              "<prop.pair>\r\n<key>.aptype</key>\r\n<int type='signed' size='32'>2</int>\r\n</prop.pair>\r\n"
              "<prop.pair>\r\n<key>items</key>\r\n<array>\r\n<array.type>\r\n<ustring/>\r\n</array.type>\r\n"
              "<ustring>Left/Top</ustring>\r\n<ustring>Right/Bottom</ustring>\r\n<ustring>Both</ustring>\r\n"
              "</array>\r\n</prop.pair>\r\n"
              "<prop.pair>\r\n<key>selected</key>\r\n<int type='signed' size='32'>1</int>\r\n</prop.pair>\r\n"
              "</prop.list>\r\n</prop.pair>\r\n<prop.pair>\r\n");
}

// As many nodes as there can be, 300 of them at the deepest level, where half a line is indentation.
TEST(UI_NodeWriter, TheLargestTreeIsReadAgain) {
    const boost::intrusive_ptr<UI_SubView> root(new UI_SubView);
    UI_Node* deepest = root.get();
    for (int level = 2; level < UI_NodeBuilder::kDeepestNode; ++level) {
        deepest->ChildPushBack(new UI_SubView);
        deepest = deepest->Child(0);
    }
    const int chain = UI_NodeBuilder::kDeepestNode - 1;
    for (int node = chain; node < UI_NodeBuilder::kMostNodes; ++node)
        (node < chain + 300 ? deepest : root.get())->ChildPushBack(new UI_SubView);
    const std::string text = WriteArchive(*root);
    const auto again = Read(text);
    ASSERT_TRUE(again);
    EXPECT_EQ(again->ChildCount(), static_cast<std::size_t>(UI_NodeBuilder::kMostNodes - chain - 300 + 1));
    EXPECT_TRUE(WriteArchive(*again) == text);
}

} // namespace kroui::ui
