#include "kroui/ui/AdapterRegistry.h"
#include "kroui/ui/UI_NodeBuilder.h"
#include "kroui/ui/UI_NodeWriter.h"

#include <gmock/gmock.h>

namespace kroui::ui {

namespace {

std::vector<const PropertyTable*> ChainOf(const UI_Node& node) {
    std::vector<const PropertyTable*> chain;
    for (const auto* table = &node.UI_GetPropertyTable(); table != nullptr; table = table->base) {
        chain.push_back(table);
    }
    return chain;
}

// A value unlike the one that the property has now.
PropertyValue OtherValue(const PropertyRow& row, const PropertyValue& now) {
    switch (row.type) {
    case PropertyType::kBool: return !std::get<bool>(now);
    case PropertyType::kInt: return std::get<std::int32_t>(now) + 1;
    case PropertyType::kUnsigned: return std::get<std::uint32_t>(now) + 1;
    case PropertyType::kFloat: return std::get<float>(now) + 1.25F;
    case PropertyType::kDouble: return std::get<double>(now) + 1.25;
    case PropertyType::kUnicode: return krocore::ToUTF8(u"($$$/Test/Entry=Cut < & > off)");
    case PropertyType::kBytes: return krocore::ToUTF8(u"Name");
    case PropertyType::kRect: return Rect{1, 2.5F, 300.25F, 200};
    case PropertyType::kEnumeration: return std::get<std::int32_t>(now) == 0 ? 1 : 0;
    case PropertyType::kConstraints: return std::uint32_t{20};
    case PropertyType::kTextList: return std::vector<krocore::string8>{"One", "", "($$$/Test/Three=Three)"};
    }
    return {};
}

void SetEverything(UI_Node& node) {
    for (const auto* table : ChainOf(node)) {
        for (const auto& row : table->rows) {
            row.set(node, OtherValue(row, row.get(node)));
        }
    }
}

boost::intrusive_ptr<UI_Node> Read(const std::string& text) {
    NamedNodes nodes;
    std::vector<Diagnostic> diagnostics;
    auto root = UI_NodeBuilder::LoadView(std::as_bytes(std::span(text)), "written", nodes, {}, diagnostics);
    for (const auto& diagnostic : diagnostics) {
        ADD_FAILURE() << diagnostic.ToString();
    }
    return root;
}

} // namespace

TEST(Archive, EveryKeyOfEveryClassSurvivesWritingAndReading) {
    const auto& registry = AdapterRegistry::Get();
    ASSERT_GE(registry.ClassNames().size(), 16U);
    for (const auto className : registry.ClassNames()) {
        const auto node = registry.Create(className);
        const auto fresh = registry.Create(className);
        ASSERT_EQ(node->UI_GetPropertyTable().className, className);
        SetEverything(*node);
        const auto written = WriteArchive(*node);
        const auto again = Read(written);
        ASSERT_TRUE(again) << className;
        for (const auto* table : ChainOf(*node)) {
            for (const auto& row : table->rows) {
                EXPECT_EQ(row.get(*again), row.get(*node)) << className << " " << row.key;
                EXPECT_NE(row.get(*again), row.get(*fresh)) << className << " " << row.key;
            }
        }
        EXPECT_EQ(WriteArchive(*again), written) << className;
    }
}

// Ten thousand nodes of any class stay below the size from which on a document is taken for nonsense.
TEST(Archive, NoClassTakesMoreThanItsShareOfTheLargestArchive) {
    for (const auto className : AdapterRegistry::Get().ClassNames()) {
        const auto node = AdapterRegistry::Get().Create(className);
        SetEverything(*node);
        std::string written = WriteArchive(*node);
        std::erase(written, '\t');
        EXPECT_LT(written.size(), 8U << 10U) << className;
    }
}

TEST(Archive, RowsOfEveryClassStandInByteOrder) {
    for (const auto className : AdapterRegistry::Get().ClassNames()) {
        for (const auto* table : ChainOf(*AdapterRegistry::Get().Create(className))) {
            EXPECT_TRUE(std::ranges::is_sorted(table->rows, {}, &PropertyRow::key)) << table->className;
        }
    }
}

TEST(Archive, EveryClassHasTheKeysAndTheChainOfTheFormat) {
    // From the adapter on, the section names and their keys.
    const struct {
        std::string_view className;
        std::vector<std::string_view> chain;
    } cases[] = {
        {"uit::controls::UI_OutlineBoxWithLabel",
         {"uit::controls::UI_OutlineBoxWithLabel: label", "kroui::ui::UI_SubView", "kroui::ui::UI_Node"}},
        {"uit::controls::UI_OptionalView",
         {"uit::controls::UI_OptionalView: activeIndex", "kroui::ui::UI_SubView", "kroui::ui::UI_Node"}},
        {"uit::controls::ColorField",
         {"uit::controls::ColorField: allowUserColorChange", "kroui::controls::UI_InteractiveControlView",
          "kroui::controls::UI_ControlView", "kroui::ui::UI_SubView", "kroui::ui::UI_Node"}},
    };
    for (const auto& c : cases) {
        const auto chain = ChainOf(*AdapterRegistry::Get().Create(c.className));
        ASSERT_EQ(chain.size(), c.chain.size()) << c.className;
        EXPECT_TRUE(chain.front()->holdsChildren) << c.className;
        for (std::size_t i = 0; i < chain.size(); ++i) {
            const auto expected = c.chain[i];
            EXPECT_EQ(chain[i]->className, expected.substr(0, expected.find(": ")));
            if (expected.find(": ") == expected.npos) continue;
            ASSERT_EQ(chain[i]->rows.size(), 1U);
            EXPECT_EQ(chain[i]->rows[0].key, expected.substr(expected.find(": ") + 2));
        }
    }
}

} // namespace kroui::ui
