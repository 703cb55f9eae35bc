#include "kroui/ui/UI_NodeBuilder.h"

#include "ArchiveTestNodes.h"

#include "krocore/debug/Trace.h"
#include "kroui/ui/UI_NodeWriter.h"

#include <gmock/gmock.h>

namespace kroui::ui {

namespace {

using test::EveryType;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

// An archive as an author may write it: a pair a line. The root holds two nodes, named "first" and "second".
constexpr std::string_view kArchive = R"(<?xml version='1.0'?>
<prop.map version='4'>
<prop.list>
<prop.pair><key>UINodeArchive</key><int type='unsigned' size='32'>1</int></prop.pair>
<prop.pair><key>root</key><prop.list>
<prop.pair><key>adapter</key><ustring>test::EveryType</ustring></prop.pair>
<prop.pair><key>sections</key><prop.list>
<prop.pair><key>count</key><int type='unsigned' size='32'>3</int></prop.pair>
<prop.pair><key>section-0</key><prop.list>
<prop.pair><key>area</key><prop.list>
<prop.pair><key>.aptype</key><int type='signed' size='32'>1</int></prop.pair>
<prop.pair><key>height</key><float>4</float></prop.pair>
<prop.pair><key>left</key><float>-1.5</float></prop.pair>
<prop.pair><key>top</key><float>2</float></prop.pair>
<prop.pair><key>width</key><float>34.539062</float></prop.pair>
</prop.list></prop.pair>
<prop.pair><key>children</key><prop.list>
<prop.pair><key>child-0</key><prop.list>
<prop.pair><key>adapter</key><ustring>kroui::ui::UI_SubView</ustring></prop.pair>
<prop.pair><key>sections</key><prop.list>
<prop.pair><key>count</key><int type='unsigned' size='32'>2</int></prop.pair>
<prop.pair><key>section-0</key><prop.list>
<prop.pair><key>sectionName</key><ustring>kroui::ui::UI_SubView</ustring></prop.pair>
</prop.list></prop.pair>
<prop.pair><key>section-1</key><prop.list>
<prop.pair><key>id</key><string>first</string></prop.pair>
<prop.pair><key>sectionName</key><ustring>kroui::ui::UI_Node</ustring></prop.pair>
</prop.list></prop.pair>
</prop.list></prop.pair>
</prop.list></prop.pair>
<prop.pair><key>child-1</key><prop.list>
<prop.pair><key>adapter</key><ustring>kroui::ui::UI_SubView</ustring></prop.pair>
<prop.pair><key>className</key><ustring>Graph</ustring></prop.pair>
<prop.pair><key>sections</key><prop.list>
<prop.pair><key>count</key><int type='unsigned' size='32'>2</int></prop.pair>
<prop.pair><key>section-0</key><prop.list>
<prop.pair><key>sectionName</key><ustring>kroui::ui::UI_SubView</ustring></prop.pair>
</prop.list></prop.pair>
<prop.pair><key>section-1</key><prop.list>
<prop.pair><key>id</key><string>second</string></prop.pair>
<prop.pair><key>sectionName</key><ustring>kroui::ui::UI_Node</ustring></prop.pair>
<prop.pair><key>visible</key><false/></prop.pair>
</prop.list></prop.pair>
</prop.list></prop.pair>
</prop.list></prop.pair>
<prop.pair><key>count</key><int type='unsigned' size='32'>2</int></prop.pair>
</prop.list></prop.pair>
<prop.pair><key>choice</key><prop.list>
<prop.pair><key>.aptype</key><int type='signed' size='32'>2</int></prop.pair>
<prop.pair><key>selected</key><int type='signed' size='32'>2</int></prop.pair>
</prop.list></prop.pair>
<prop.pair><key>countOf</key><int type='signed' size='32'>-12</int></prop.pair>
<prop.pair><key>image</key><string>Plus</string></prop.pair>
<prop.pair><key>items</key><array><array.type><ustring/></array.type><ustring>a &amp; b</ustring><ustring/></array></prop.pair>
<prop.pair><key>level</key><double>-0.25</double></prop.pair>
<prop.pair><key>mask</key><int type='unsigned' size='32'>4294967295</int></prop.pair>
<prop.pair><key>on</key><true/></prop.pair>
<prop.pair><key>sectionName</key><ustring>test::EveryType</ustring></prop.pair>
<prop.pair><key>size</key><float>12</float></prop.pair>
<prop.pair><key>text</key><ustring>($$$/A/B=Text)</ustring></prop.pair>
</prop.list></prop.pair>
<prop.pair><key>section-1</key><prop.list>
<prop.pair><key>sectionName</key><ustring>kroui::ui::UI_SubView</ustring></prop.pair>
</prop.list></prop.pair>
<prop.pair><key>section-2</key><prop.list>
<prop.pair><key>sectionName</key><ustring>kroui::ui::UI_Node</ustring></prop.pair>
</prop.list></prop.pair>
</prop.list></prop.pair>
</prop.list></prop.pair>
</prop.list>
</prop.map>
)";

boost::intrusive_ptr<UI_Node> MakeEveryType(const krocore::string16& /*className*/) {
    return new EveryType;
}

struct Loaded {
    boost::intrusive_ptr<UI_Node> root;
    NamedNodes nodes;
    std::vector<Diagnostic> diagnostics;

    const EveryType& Root() const { return dynamic_cast<const EveryType&>(*root); }
    std::vector<std::string> Faults() const {
        std::vector<std::string> faults;
        for (const auto& diagnostic : diagnostics) {
            faults.push_back(diagnostic.ToString());
        }
        return faults;
    }
};

Loaded Load(std::string_view text, const CustomNodeFactory& factory = MakeEveryType) {
    Loaded loaded;
    loaded.root = UI_NodeBuilder::LoadView(std::as_bytes(std::span(text)), "Panel.xml", loaded.nodes, factory,
                                           loaded.diagnostics);
    return loaded;
}

// The archive with its first `find` replaced.
std::string With(std::string_view find, std::string_view replacement, std::string_view archive = kArchive) {
    std::string text(archive);
    const auto at = text.find(find);
    EXPECT_NE(at, text.npos) << find;
    return text.replace(at, find.size(), replacement);
}

// Takes the mark "@@" out of a text; returns "line:column" of where it stood.
std::string TakeMark(std::string& text) {
    const auto at = text.find("@@");
    EXPECT_NE(at, text.npos);
    text.erase(at, 2);
    const auto lineStart = at == 0 ? text.npos : text.rfind('\n', at - 1);
    return std::to_string(1 + std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(at), '\n')) + ":" +
           std::to_string(at - (lineStart == text.npos ? 0 : lineStart + 1) + 1);
}

// A chain of nodes, each the only child of the one before.
std::string NestedArchive(int levels) {
    constexpr std::string_view kOpen =
        "<prop.list><prop.pair><key>adapter</key><ustring>kroui::ui::UI_SubView</ustring></prop.pair><prop.pair><key>"
        "sections</key><prop.list><prop.pair><key>count</key><int type='unsigned' size='32'>2</int></prop.pair>"
        "<prop.pair><key>section-1</key><prop.list><prop.pair><key>sectionName</key><ustring>kroui::ui::UI_Node"
        "</ustring></prop.pair></prop.list></prop.pair><prop.pair><key>section-0</key><prop.list><prop.pair><key>"
        "sectionName</key><ustring>kroui::ui::UI_SubView</ustring></prop.pair>";
    constexpr std::string_view kOpenChild =
        "<prop.pair><key>children</key><prop.list><prop.pair><key>count</key><int type='unsigned' size='32'>1</int>"
        "</prop.pair><prop.pair><key>child-0</key>";
    constexpr std::string_view kCloseChild = "</prop.pair></prop.list></prop.pair>";
    constexpr std::string_view kClose = "</prop.list></prop.pair></prop.list></prop.pair></prop.list>";
    std::string text = "<prop.map version='4'><prop.list><prop.pair><key>UINodeArchive</key><int type='unsigned' "
                       "size='32'>1</int></prop.pair><prop.pair><key>root</key>";
    for (int level = 1; level <= levels; ++level) {
        text.append(kOpen).append(level < levels ? kOpenChild : "");
    }
    for (int level = levels; level >= 1; --level) {
        text.append(level < levels ? kCloseChild : "").append(kClose);
    }
    return text + "</prop.pair></prop.list></prop.map>";
}

int DepthOf(const UI_Node* node) {
    int depth = 0;
    for (; node != nullptr; node = node->Child(0)) {
        ++depth;
    }
    return depth;
}

} // namespace

TEST(UI_NodeBuilder, EveryValueTypeReachesItsProperty) {
    const auto loaded = Load(kArchive);
    ASSERT_THAT(loaded.Faults(), IsEmpty());
    const auto& root = loaded.Root();
    EXPECT_EQ(root.Area(), (Rect{-1.5F, 2, 34.539062F, 4}));
    EXPECT_EQ(root.Choice(), 2);
    EXPECT_EQ(root.Count(), -12);
    EXPECT_EQ(root.Image(), "Plus");
    EXPECT_THAT(root.Items(), ElementsAre("a & b", ""));
    EXPECT_EQ(root.Level(), -0.25);
    EXPECT_EQ(root.Mask(), 4294967295U);
    EXPECT_TRUE(root.On());
    EXPECT_EQ(root.Size(), 12);
    EXPECT_EQ(root.Text(), "($$$/A/B=Text)");
}

TEST(UI_NodeBuilder, ChildrenAndNamesAreThoseOfTheArchive) {
    const auto loaded = Load(kArchive);
    ASSERT_EQ(loaded.root->ChildCount(), 2U);
    ASSERT_EQ(loaded.nodes.size(), 2U);
    EXPECT_EQ(loaded.nodes.at("first"), loaded.root->Child(0));
    EXPECT_EQ(loaded.nodes.at("second"), loaded.root->Child(1));
}

TEST(UI_NodeBuilder, CustomNodeTakesThePlaceholdersPlaceAndSections) {
    krocore::string16 asked;
    const auto loaded = Load(kArchive, [&](const krocore::string16& name) {
        asked = name;
        return boost::intrusive_ptr<UI_Node>(new EveryType);
    });
    EXPECT_EQ(asked, u"Graph");
    const auto* custom = dynamic_cast<const EveryType*>(loaded.root->Child(1));
    ASSERT_NE(custom, nullptr);
    EXPECT_EQ(custom->UI_GetArchiveClassName(), "Graph");
    EXPECT_EQ(custom->UI_GetID(), "second");
    EXPECT_FALSE(custom->UI_IsVisible());
}

TEST(UI_NodeBuilder, NullCustomNodeLeavesItsPlaceEmptyAndTheRestLoads) {
    for (const auto& factory : {CustomNodeFactory(), CustomNodeFactory([](const auto&) { return nullptr; })}) {
        const auto loaded = Load(kArchive, factory);
        EXPECT_THAT(loaded.Faults(), IsEmpty());
        ASSERT_EQ(loaded.root->ChildCount(), 1U);
        EXPECT_EQ(loaded.nodes.count("second"), 0U);
    }
}

TEST(UI_NodeBuilder, KeysAreFoundByNameNotByPosition) {
    // The children's list before the area, the section's name first, the count of sections last.
    auto text = With("<prop.pair><key>sectionName</key><ustring>test::EveryType</ustring></prop.pair>\n", "");
    text = With("<prop.pair><key>area</key>",
                "<prop.pair><key>sectionName</key><ustring>test::EveryType</ustring></prop.pair>\n"
                "<prop.pair><key>text</key><ustring>moved</ustring></prop.pair>\n<prop.pair><key>area</key>",
                text);
    text = With("<prop.pair><key>text</key><ustring>($$$/A/B=Text)</ustring></prop.pair>\n", "", text);
    text = With("child-0", "child-X", text);
    text = With("child-1", "child-0", text);
    text = With("child-X", "child-1", text);
    const auto loaded = Load(text);
    ASSERT_THAT(loaded.Faults(), IsEmpty());
    EXPECT_EQ(loaded.Root().Text(), "moved");
    EXPECT_EQ(loaded.Root().Count(), -12);
    EXPECT_EQ(loaded.nodes.at("first"), loaded.root->Child(1));
    EXPECT_EQ(loaded.nodes.at("second"), loaded.root->Child(0));
}

TEST(UI_NodeBuilder, TextsKeepTheirSpacesAndEmptyOnesAreTexts) {
    const struct {
        std::string_view element;
        std::string_view text;
    } cases[] = {
        {"<ustring/>", ""},
        {"<ustring></ustring>", ""},
        {"<ustring> </ustring>", " "},
        {"<ustring> a  b </ustring>", " a  b "},
        {"<ustring>&lt;&amp;&gt;&#176;</ustring>", "<&>\xC2\xB0"},
        {"<ustring>a&#10;b</ustring>", "a\nb"},
    };
    for (const auto& c : cases) {
        const auto loaded = Load(With("<ustring>($$$/A/B=Text)</ustring>", c.element));
        EXPECT_THAT(loaded.Faults(), IsEmpty()) << c.element;
        EXPECT_EQ(loaded.Root().Text(), c.text) << c.element;
    }
}

TEST(UI_NodeBuilder, ChildrenAreReadFromWhateverSectionHoldsThem) {
    constexpr std::string_view kNone = "<prop.pair><key>children</key><prop.list>"
                                       "<prop.pair><key>count</key><int type='unsigned' size='32'>0</int></prop.pair>"
                                       "</prop.list></prop.pair>\n";
    EXPECT_EQ(Load(With("<prop.pair><key>visible</key>", std::string(kNone) + "<prop.pair><key>visible</key>"))
                  .root->ChildCount(),
              2U);
    // The whole list in the section of another class of the chain.
    const std::string text(kArchive);
    const auto begin = text.find("<prop.pair><key>children</key>");
    const auto end = text.find("<prop.pair><key>choice</key>");
    const auto children = text.substr(begin, end - begin);
    const auto moved = With("<prop.pair><key>section-1</key><prop.list>\n<prop.pair><key>sectionName</key><ustring>"
                            "kroui::ui::UI_SubView",
                            "<prop.pair><key>section-1</key><prop.list>\n" + children +
                                "<prop.pair><key>sectionName</key><ustring>kroui::ui::UI_SubView",
                            text.substr(0, begin) + text.substr(end));
    const auto loaded = Load(moved);
    EXPECT_THAT(loaded.Faults(), IsEmpty());
    EXPECT_EQ(loaded.root->ChildCount(), 2U);
}

TEST(UI_NodeBuilder, FaultsAreReportedOnceWhereTheyAreAndTheRestLoads) {
    const struct {
        std::string_view find;
        std::string_view replacement; // "@@" where the fault is
        std::string_view message;
    } cases[] = {
        {"<ustring>kroui::ui::UI_SubView</ustring>", "<ustring>@@kroui::controls::UI_Nothing</ustring>",
         "unknown adapter kroui::controls::UI_Nothing, expected the name of a node class"},
        {"<prop.pair><key>adapter</key><ustring>kroui::ui::UI_SubView</ustring></prop.pair>\n<prop.pair><key>sections",
         "<prop.pair><key>@@tipp</key><true/></prop.pair>\n<prop.pair><key>adapter</key><ustring>kroui::ui::UI_SubView"
         "</ustring></prop.pair>\n<prop.pair><key>sections",
         "unknown key \"tipp\" in a node, expected adapter, className, sections"},
        {"<key>size</key>", "<key>@@sizes</key>",
         "unknown key \"sizes\" in test::EveryType, expected children, area, choice, countOf, image, items, level, "
         "mask, on, size, text, sectionName"},
        {"<prop.pair><key>text</key>",
         "<prop.pair><key>@@size</key><float>1</float></prop.pair>\n<prop.pair><key>text</key>",
         "\"size\" stands twice, expected it once"},
        {"<true/>", "@@<int type='signed' size='32'>1</int>", "\"on\" is <int>, expected <true/> or <false/>"},
        {"<float>12</float>", "@@<double>12</double>", "\"size\" is <double>, expected <float>"},
        {"<float>12</float>", "<float>@@12px</float>", "\"size\" is \"12px\", expected a decimal number"},
        {"<float>12</float>", "@@<float/>", "\"size\" is \"\", expected a decimal number"},
        {"<float>12</float>", "<float>@@inf</float>", "\"size\" is \"inf\", expected a decimal number"},
        {"<float>12</float>", "<float>@@1e99</float>",
         "\"size\" is \"1e99\", which is out of range, expected a decimal number"},
        {"<int type='signed' size='32'>-12</int>", "@@<int type='unsigned' size='32'>12</int>",
         "\"countOf\" is an integer of another type, expected <int type='signed' size='32'>"},
        {"<int type='signed' size='32'>-12</int>", "<int type='signed' size='32'>@@2147483648</int>",
         "\"countOf\" is \"2147483648\", which is out of range, expected a decimal integer"},
        {"4294967295", "@@-1", "\"mask\" is \"-1\", which is out of range, expected a decimal integer"},
        {"<string>Plus</string>", "@@<ustring>Plus</ustring>", "\"image\" is <ustring>, expected <string>"},
        {"'32'>2</int></prop.pair>\n</prop.list></prop.pair>\n<prop.pair><key>countOf",
         "'32'>@@3</int></prop.pair>\n</prop.list></prop.pair>\n<prop.pair><key>countOf",
         "\"choice\" is 3, expected 0 to 2"},
        {"<key>.aptype</key><int type='signed' size='32'>1<", "<key>.aptype</key><int type='signed' size='32'>@@4<",
         "\"area\" is a record of type 4, expected type 1"},
        {"<key>height</key>", "<key>@@depth</key>", "unknown key \"depth\", expected height, left, top, width"},
        {"<float>4</float>", "<float>@@-4</float>", "\"height\" is out of range, expected 0 to 1000000"},
        {"<prop.list>\n<prop.pair><key>.aptype</key><int type='signed' size='32'>1</int></prop.pair>", "@@<prop.list>",
         "\"area\" is no record, expected the key \".aptype\""},
        {"<key>area</key><prop.list>\n<prop.pair><key>.aptype</key><int type='signed' size='32'>1</int></prop.pair>\n"
         "<prop.pair><key>height</key><float>4</float></prop.pair>",
         "<key>area</key>@@<prop.list>\n<prop.pair><key>.aptype</key><int type='signed' size='32'>1</int></prop.pair>",
         "\"area\" has no \"height\", expected height, left, top, width"},
        {"<array><array.type><ustring/></array.type>", "@@<array>",
         "\"items\" does not tell the type of its items, expected <array.type> with an empty <ustring>"},
        {"<prop.pair><key>on</key><true/></prop.pair>", "@@<prop.pair><key>on</key></prop.pair>",
         "\"on\" has no value, expected exactly one element behind the key"},
        {"<prop.pair><key>on</key><true/></prop.pair>", "@@<prop.pair><true/></prop.pair>",
         "the pair does not begin with its key, expected <key>"},
        {"<prop.pair><key>on</key><true/></prop.pair>", "@@<true/>", "<true> in a list, expected <prop.pair>"},
        {"'32'>2</int></prop.pair>\n</prop.list></prop.pair>\n<prop.pair><key>choice",
         "'32'>@@3</int></prop.pair>\n</prop.list></prop.pair>\n<prop.pair><key>choice",
         "\"children\" holds 2 of 3, expected child-0 to child-<count - 1>"},
        {"<key>children</key><prop.list>\n<prop.pair><key>child-0",
         "<key>children</key><prop.list>\n<prop.pair><key>@@child-00",
         "unknown key \"child-00\" in \"children\", expected count, child-NUMBER"},
        {"<key>child-1</key>", "<key>@@child-0</key>", "\"child-0\" stands twice, expected it once"},
        {"<ustring>kroui::ui::UI_Node</ustring>", "<ustring>@@kroui::controls::UI_Button</ustring>",
         "kroui::controls::UI_Button is no class of this node, expected one of kroui::ui::UI_SubView, "
         "kroui::ui::UI_Node"},
        {"<ustring>kroui::ui::UI_Node</ustring></prop.pair>\n</prop.list></prop.pair>\n</prop.list></prop.pair>\n"
         "</prop.list></prop.pair>\n<prop.pair><key>child-1",
         "<ustring>@@kroui::ui::UI_SubView</ustring></prop.pair>\n</prop.list></prop.pair>\n</prop.list></prop.pair>\n"
         "</prop.list></prop.pair>\n<prop.pair><key>child-1",
         "a second section for kroui::ui::UI_SubView, expected one a class"},
        {"<string>second</string>", "<string>@@first</string>",
         "another node has the id \"first\", expected one of its own"},
    };
    for (const auto& c : cases) {
        auto text = With(c.find, c.replacement);
        const auto position = TakeMark(text);
        const auto loaded = Load(text);
        EXPECT_THAT(loaded.Faults(), testing::Contains("Panel.xml:" + position + ": " + std::string(c.message)));
        EXPECT_LE(loaded.diagnostics.size(), 2U) << c.message; // a child that is left out also fails the count
        ASSERT_TRUE(loaded.root) << c.message;
        EXPECT_GE(loaded.root->ChildCount(), 1U) << c.message;
    }
}

TEST(UI_NodeBuilder, IndicesThatAreAmissAreToldAndCostNoOtherChild) {
    const std::string_view count = "'32'>2</int></prop.pair>\n</prop.list></prop.pair>\n<prop.pair><key>choice";
    const auto counted = [](std::string_view number) {
        return "'32'>" + std::string(number) + "</int></prop.pair>\n</prop.list></prop.pair>\n<prop.pair><key>choice";
    };
    const std::string expected = ", expected child-0 to child-<count - 1>";
    const struct {
        std::string text;                // "@@" where the fault is, if there is one
        std::string message;             // empty: none
        std::vector<std::string> stay{}; // ids
    } cases[] = {
        {With(count, counted("@@1")), "\"children\" holds 2 of 1" + expected, {"first"}},
        {With(count, counted("@@0")), "\"children\" holds 2 of 0" + expected, {}},
        {With(count, counted("@@3")), "\"children\" holds 2 of 3" + expected, {"first", "second"}},
        {With("<key>child-1</key>", "<key>child-2</key>", With(count, counted("@@2"))),
         "\"children\" holds 2 of 2" + expected,
         {"first"}},
        {With("<key>child-1</key>", "<key>child-2</key>", With(count, counted("@@3"))),
         "\"children\" holds 2 of 3" + expected,
         {"first", "second"}},
        {With("<key>child-0</key>", "<key>child-1</key>", With("<key>child-1</key>", "<key>child-0</key>")),
         "",
         {"second", "first"}},
        {With("<key>children</key><prop.list>\n<prop.pair><key>child-0",
              "<key>children</key><prop.list>\n<prop.pair><key>child-10", With(count, counted("@@11"))),
         "\"children\" holds 2 of 11" + expected,
         {"second", "first"}},
    };
    for (const auto& c : cases) {
        std::string text = c.text;
        const std::string position = c.message.empty() ? "" : TakeMark(text);
        const auto loaded = Load(text);
        if (c.message.empty()) {
            EXPECT_THAT(loaded.Faults(), IsEmpty());
        } else {
            EXPECT_THAT(loaded.Faults(), ElementsAre("Panel.xml:" + position + ": " + c.message));
        }
        std::vector<std::string> ids;
        for (const auto& child : loaded.root->Children())
            ids.emplace_back(krocore::ToStdString(krocore::ToUTF16(child->UI_GetID())));
        EXPECT_EQ(ids, c.stay) << c.message;
    }
}

TEST(UI_NodeBuilder, ItemsAreCountedFromNoughtToTheLast) {
    const auto choice = [](std::string_view item) {
        return "'32'>" + std::string(item) + "</int></prop.pair>\n</prop.list></prop.pair>\n<prop.pair><key>countOf";
    };
    const std::pair<const char*, bool> cases[] = {{"-1", false}, {"0", true}, {"1", true}, {"2", true}, {"3", false}};
    for (const auto& [item, isOne] : cases) {
        const auto loaded = Load(With(choice("2"), choice(item)));
        ASSERT_EQ(loaded.diagnostics.empty(), isOne) << item;
        if (isOne) {
            EXPECT_EQ(std::to_string(loaded.Root().Choice()), item);
        } else {
            EXPECT_THAT(loaded.diagnostics[0].message, HasSubstr("is " + std::string(item) + ", expected 0 to 2"));
        }
    }
}

TEST(UI_NodeBuilder, ValuesThatCannotBeReadLeaveTheDefault) {
    auto text = With("<float>12</float>", "<float>12px</float>");
    text = With("<int type='signed' size='32'>-12</int>", "<int type='signed' size='16'>-12</int>", text);
    text = With("<float>4</float>", "<float>1e9</float>", text);
    text = With("<ustring>($$$/A/B=Text)</ustring>", "<string>Text</string>", text);
    const auto loaded = Load(text);
    EXPECT_EQ(loaded.diagnostics.size(), 4U);
    EXPECT_EQ(loaded.Root().Size(), 0);
    EXPECT_EQ(loaded.Root().Count(), -1);
    EXPECT_EQ(loaded.Root().Area(), Rect());
    EXPECT_EQ(loaded.Root().Text(), "unset");
    EXPECT_TRUE(loaded.Root().On());
}

TEST(UI_NodeBuilder, WhatIsNoArchiveGivesNullAndSaysWhy) {
    const std::string whole(kArchive);
    const struct {
        std::string text; // "@@" where the fault is
        std::string_view message;
    } cases[] = {
        {"@@", "not an XML document, expected <?xml version='1.0'?> and <prop.map version='4'>"},
        {"@@hello", "not an XML document, expected <?xml version='1.0'?> and <prop.map version='4'>"},
        {"@@" + std::string(64, '\0'),
         "not an XML document, expected <?xml version='1.0'?> and <prop.map version='4'>"},
        {"<?xml version='1.0'?>\n<!-- a list -->\n  @@<plist/>",
         "not a layout archive, expected the root element <prop.map>"},
        {With("<prop.map version='4'>", "@@<prop.map version='3'>"),
         "another version of <prop.map>, expected version='4'"},
        {"@@<prop.map version='4'/>", "<prop.map> is empty, expected <prop.list>"},
        {With("'32'>1<", "'32'>@@2<"), "archive version 2, expected 1"},
        {With("<prop.list>\n<prop.pair><key>UINodeArchive</key><int type='unsigned' size='32'>1</int></prop.pair>",
              "@@<prop.list>"),
         "the archive has no \"UINodeArchive\", expected UINodeArchive, root"},
        {"<prop.map version='4'>@@<prop.list><prop.pair><key>UINodeArchive</key><int type='unsigned' size='32'>1</int>"
         "</prop.pair></prop.list></prop.map>",
         "the archive has no \"root\", expected UINodeArchive, root"},
        {With("<prop.list>\n<prop.pair><key>adapter</key><ustring>test::EveryType</ustring></prop.pair>",
              "@@<prop.list>"),
         "the node has no \"adapter\", expected the name of a node class"},
        {whole.substr(0, whole.find("<key>on</key>") + 5) + "@@", "the document is cut off, expected </prop.map>"},
        {whole.substr(0, whole.find("<true/>")) + "@@", "the document is cut off, expected </prop.map>"},
    };
    for (const auto& c : cases) {
        auto text = c.text;
        const auto position = TakeMark(text);
        const auto loaded = Load(text);
        EXPECT_FALSE(loaded.root) << c.message;
        EXPECT_THAT(loaded.Faults(), ElementsAre("Panel.xml:" + position + ": " + std::string(c.message)));
        EXPECT_THAT(loaded.nodes, IsEmpty());
    }
    const auto mismatch = Load(With("<true/>", "<true></false>"));
    EXPECT_FALSE(mismatch.root);
    ASSERT_EQ(mismatch.diagnostics.size(), 1U);
    EXPECT_EQ(mismatch.diagnostics[0].line, 57);
}

TEST(UI_NodeBuilder, EveryPrefixOfAnArchiveIsReportedAsCutOff) {
    const auto end = kArchive.find_last_not_of('\n');
    const auto first = kArchive.find("<prop.map version") + 10;
    for (auto length = first; length < end; ++length) {
        const auto loaded = Load(kArchive.substr(0, length));
        EXPECT_FALSE(loaded.root) << length;
        ASSERT_EQ(loaded.diagnostics.size(), 1U) << length;
        EXPECT_THAT(loaded.diagnostics[0].message, HasSubstr("cut off")) << length;
    }
}

TEST(UI_NodeBuilder, NodesBelowTheDeepestLevelAreLeftOut) {
    const auto deepest = Load(NestedArchive(UI_NodeBuilder::kDeepestNode));
    EXPECT_THAT(deepest.Faults(), IsEmpty());
    EXPECT_EQ(DepthOf(deepest.root.get()), 100);

    for (const int levels : {101, 10000}) {
        const auto loaded = Load(NestedArchive(levels));
        EXPECT_EQ(DepthOf(loaded.root.get()), 100) << levels;
        ASSERT_EQ(loaded.diagnostics.size(), 1U) << levels;
        EXPECT_EQ(loaded.diagnostics[0].message, "nodes are nested too deeply, expected at most 100 levels");
    }
}

TEST(UI_NodeBuilder, NodesBeyondTheLargestNumberAreLeftOutAndReportedOnce) {
    const std::string open = "<prop.pair><key>children</key><prop.list>\n";
    for (const int extra : {0, 3}) {
        const int count = UI_NodeBuilder::kMostNodes - 1 + extra; // next to the root
        std::string children;
        for (int i = 0; i < count; ++i) {
            children += "<prop.pair><key>child-" + std::to_string(i) +
                        "</key><prop.list><prop.pair><key>className</key><ustring>Graph</ustring></prop.pair>"
                        "</prop.list></prop.pair>\n";
        }
        std::string text(kArchive);
        const auto begin = text.find(open) + open.size();
        const auto end = text.find("<prop.pair><key>choice</key>");
        text.replace(begin, end - begin,
                     children + "<prop.pair><key>count</key><int type='unsigned' size='32'>" + std::to_string(count) +
                         "</int></prop.pair>\n</prop.list></prop.pair>\n");
        const auto loaded = Load(text);
        EXPECT_EQ(loaded.root->ChildCount(), 9999U);
        EXPECT_EQ(loaded.diagnostics.size(), extra == 0 ? 0U : 1U);
        EXPECT_THAT(loaded.Faults(), testing::Each(HasSubstr(": too many nodes, expected at most 10000")));
    }
}

TEST(UI_NodeBuilder, HugeNonsenseIsRefusedAtOnce) {
    const std::size_t size = 100'000'000;
    std::string inMap = "<prop.map version='4'>";
    inMap.resize(size, '<');
    for (const auto& text : {std::string(size, ' '), std::string(size, '<'), std::string(size, '\0'), inMap}) {
        const auto loaded = Load(text);
        EXPECT_FALSE(loaded.root);
        EXPECT_EQ(loaded.diagnostics.size(), 1U);
    }
}

TEST(UI_NodeBuilder, CountsThatLieAllocateNothingAndReportsAreBounded) {
    auto text = With("'32'>2</int></prop.pair>\n</prop.list></prop.pair>\n<prop.pair><key>choice",
                     "'32'>4294967295</int></prop.pair>\n</prop.list></prop.pair>\n<prop.pair><key>choice");
    EXPECT_EQ(Load(text).root->ChildCount(), 2U);

    std::string unknown;
    for (int i = 0; i < 300; ++i) {
        unknown += "<prop.pair><key>no" + std::to_string(i) + "</key><true/></prop.pair>\n";
    }
    const auto loaded = Load(With("<prop.pair><key>size</key>", unknown + "<prop.pair><key>size</key>"));
    EXPECT_EQ(loaded.diagnostics.size(), UI_NodeBuilder::kMostDiagnostics);
    EXPECT_EQ(loaded.Root().Size(), 12);
}

TEST(UI_NodeBuilder, FirstOfTwoNodesWithOneIdKeepsTheName) {
    const auto loaded = Load(With("<string>second</string>", "<string>first</string>"));
    EXPECT_EQ(loaded.nodes.at("first"), loaded.root->Child(0));
}

TEST(UI_NodeBuilder, LoadingAgainIntoTheSameNamesReplacesThem) {
    auto loaded = Load(kArchive);
    std::vector<Diagnostic> diagnostics;
    const auto again = UI_NodeBuilder::LoadView(std::as_bytes(std::span(kArchive)), "Panel.xml", loaded.nodes,
                                                MakeEveryType, diagnostics);
    EXPECT_THAT(diagnostics, IsEmpty());
    EXPECT_EQ(loaded.nodes.at("first"), again->Child(0));
}

TEST(UI_NodeBuilder, ResourcesAreLoadedByNameAndFaultsAreTraced) {
    class OneResource : public utility::ResourceManager {
    public:
        explicit OneResource(std::string text) : fText(std::move(text)) {}
        std::span<const std::byte> GetResource(std::string_view name, std::string_view type) const override {
            if (name != "Amplify" || type != "XML") return {};
            return std::as_bytes(std::span(fText));
        }

    private:
        std::string fText;
    };
    std::string traced;
    krocore::debug::SetTraceLevel("UI_NodeBuilder", 1);
    const auto sink = krocore::debug::SetTraceSink([&](std::string_view text) { traced += text; });
    NamedNodes nodes;
    const OneResource good{std::string(kArchive)};
    EXPECT_TRUE(UI_NodeBuilder::LoadViewFromXML(good, nullptr, u"Amplify", nodes, MakeEveryType));
    EXPECT_EQ(nodes.size(), 2U);
    EXPECT_EQ(traced, "");
    EXPECT_FALSE(UI_NodeBuilder::LoadViewFromXML(good, nullptr, u"Doppler", nodes, MakeEveryType));
    EXPECT_EQ(traced, "Doppler.xml:1:1: there is no such layout archive, expected a resource of type XML\n");
    traced.clear();
    const OneResource bad("hello");
    EXPECT_FALSE(UI_NodeBuilder::LoadViewFromXML(bad, nullptr, u"Amplify", nodes, MakeEveryType));
    EXPECT_THAT(traced, HasSubstr("Amplify.xml:1:1: not an XML document"));
    krocore::debug::SetTraceSink(sink);
    krocore::debug::SetTraceLevel("UI_NodeBuilder", 0);
}

} // namespace kroui::ui
