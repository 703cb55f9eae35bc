// What holds for every class of node that an archive can name.

#include "kroui/limner/CairoSupplier.h"
#include "kroui/ui/AdapterRegistry.h"
#include "kroui/ui/HeadlessWindow.h"
#include "kroui/ui/UI_SubView.h"

#include <gmock/gmock.h>

#include <cmath>
#include <limits>

namespace kroui::ui {
namespace {

class EveryControlTest : public testing::TestWithParam<std::string_view> {
protected:
    ~EveryControlTest() override { fWindow.Window().SetContent(nullptr); }

    using NodePtr = boost::intrusive_ptr<UI_Node>;

    static void SetNumbers(UI_Node& node, double value) {
        for (const auto* table = &node.UI_GetPropertyTable(); table != nullptr; table = table->base)
            for (const auto& row : table->rows) {
                if (row.type == PropertyType::kFloat) row.set(node, static_cast<float>(value));
                if (row.type == PropertyType::kDouble) row.set(node, value);
            }
    }
    static bool IsFinite(const PropertyValue& value) {
        const float* const single = std::get_if<float>(&value);
        const double* const number = std::get_if<double>(&value);
        return (!single || std::isfinite(*single)) && (!number || std::isfinite(*number));
    }
    // Something to be seen in it: texts, a range, marks.
    static NodePtr Make() {
        const NodePtr node = AdapterRegistry::Get().Create(GetParam());
        for (const auto* table = &node->UI_GetPropertyTable(); table != nullptr; table = table->base)
            for (const auto& row : table->rows) {
                if (row.type == PropertyType::kUnicode) row.set(*node, krocore::ToUTF8(u"Some words"));
                if (row.type == PropertyType::kTextList)
                    row.set(*node, std::vector<krocore::string8>{"One", "Two", "Three"});
                if (row.key == "rulerType" || row.key == "rulerPlacement") row.set(*node, std::int32_t{1});
                if (row.key == "maxValue") row.set(*node, 500.0);
            }
        return node;
    }
    void Show(const NodePtr& node, const Rect& frame) {
        const boost::intrusive_ptr<UI_SubView> root(new UI_SubView);
        fWindow.Window().SetContent(nullptr);
        root->ChildPushBack(node);
        root->UI_SetFrame({0, 0, 400, 200});
        node->UI_SetFrame(frame);
        fWindow.Window().SetContent(root);
        fWindow.Paint();
    }
    std::vector<std::uint32_t> Picture() {
        fWindow.Window().InvalidateAll();
        const limner::ImagePtr picture = fWindow.Snapshot();
        return {picture->Pixels().begin(), picture->Pixels().end()};
    }
    void Drive(const UI_Node& node) {
        const Point middle = HeadlessWindow::CentreOf(node);
        fWindow.Drag(middle, {middle.x + 12, middle.y - 9}, 2);
        fWindow.Wheel(middle, 1);
        for (const Key key : {Key::kUp, Key::kPageDown, Key::kHome, Key::kEnd, Key::kEnter, Key::kEscape})
            fWindow.PressKey(key);
        fWindow.Advance(1);
    }

    limner::CairoSupplier fSupplier;
    HeadlessWindow fWindow{fSupplier, {400, 200}};
};

TEST_P(EveryControlTest, AfterAChangeOfSizeItLooksAsIfItHadAlwaysBeenSo) {
    constexpr Rect kFrames[] = {{10, 10, 300, 60}, {10, 10, 90, 60}, {10, 10, 90, 150}, {10, 10, 360, 24}};
    const NodePtr used = Make();
    for (const Rect& frame : kFrames) {
        Show(used, frame);
        const std::vector<std::uint32_t> after = Picture();
        Show(Make(), frame);
        EXPECT_TRUE(after == Picture()) << frame.width << " x " << frame.height;
    }
}

TEST_P(EveryControlTest, NumbersThatAreNoneAreNeitherKeptAsItsValueNorDrawn) {
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    for (const double odd : {std::numeric_limits<double>::quiet_NaN(), kInfinity, -kInfinity, 1e308, -1e308}) {
        SCOPED_TRACE(odd);
        const NodePtr node = Make();
        Show(node, {10, 10, 300, 60});
        SetNumbers(*node, odd);
        Drive(*node);
        Picture();
        for (const auto* table = &node->UI_GetPropertyTable(); table != nullptr; table = table->base)
            for (const auto& row : table->rows)
                EXPECT_TRUE(IsFinite(row.get(*node))) << row.key;
    }
}

INSTANTIATE_TEST_SUITE_P(Classes, EveryControlTest, testing::ValuesIn(AdapterRegistry::Get().ClassNames()),
                         [](const auto& instance) {
                             const std::string name(instance.param);
                             return name.substr(name.rfind(':') + 1);
                         });

} // namespace
} // namespace kroui::ui
