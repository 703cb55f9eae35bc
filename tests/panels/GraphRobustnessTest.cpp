#include "PanelFixture.h"
#include "qoc/components/ComponentIDs.h"
#include "qoc/components/ParameterIndices.h"
#include "uit/controls/UI_RulerGridBase.h"

#include <cmath>
#include <limits>

using namespace qoc::components;
using kroui::Point;
using kroui::ui::HeadlessWindow;
using kroui::ui::Key;
using kroui::ui::UI_Node;

namespace {

constexpr std::size_t kParameters = 300;

struct GraphPanel {
    const char16_t* component;
    int countIndex; // of the number of points; -1 for none
    int viewStart;
};

constexpr GraphPanel kPanels[] = {
    {kNotchComponentID, -1, kNotchViewStart},
    {kFFTFilterComponentID, kFFTFilterPointCount, kFFTFilterViewStart},
    {kGraphicPhaseShifterComponentID, kPhaseShifterPointCount, kPhaseShifterViewStart},
    {kScientificFilterComponentID, -1, kSFViewStart},
};

uit::controls::UI_RulerGridBase* FindGraph(UI_Node& node) {
    if (auto* const graph = dynamic_cast<uit::controls::UI_RulerGridBase*>(&node)) return graph;
    for (const auto& child : node.Children())
        if (auto* const graph = FindGraph(*child)) return graph;
    return nullptr;
}

// Panels with graphs on filters that can't be drawn: driven as a user would, they go on, and leave nothing in the
// filter that is no number.
class GraphRobustnessTest : public test::PanelTest {
protected:
    GraphRobustnessTest() : PanelTest(kParameters, kNotchComponentID) {}

    void Use(const char16_t* component) {
        fWindow.Window().SetContent(nullptr);
        fView.reset();
        fFilter.reset(new test::FakeFilter(kParameters, component));
        fFilter->Prepare(44100, 64, kromediatypes::AudioChannelLayout::Stereo());
    }
    void Drive(UI_Node& graph) {
        const Point middle = HeadlessWindow::CentreOf(graph);
        fWindow.Drag(middle, {middle.x + 40, middle.y - 30});
        fWindow.Click({middle.x - 60, middle.y + 10});
        fWindow.Wheel(middle, 1);
        fWindow.Wheel({middle.x, middle.y + graph.UI_GetFrame().height / 2 - 4}, 1);
        for (const Key key : {Key::kTab, Key::kRight, Key::kUp, Key::kDelete})
            fWindow.PressKey(key);
        fWindow.DoubleClick(middle);
        fWindow.PressKey(Key::kEscape);
        graph.UI_SetFrame(graph.UI_GetFrame().Inset(20, 10));
        Poll();
    }
    void ExpectNumbers() const {
        for (int i = 0; i < static_cast<int>(kParameters); ++i)
            EXPECT_TRUE(std::isfinite(fFilter->GetParameterValue(i))) << i;
    }
};

TEST_F(GraphRobustnessTest, WithoutASampleRateTheRangeShownIsNotStored) {
    for (const GraphPanel& panel : kPanels)
        for (const float rate :
             {0.0F, -44100.0F, std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity()}) {
            SCOPED_TRACE(krocore::ToStdString(panel.component) + " " + std::to_string(rate));
            Use(panel.component);
            fFilter->sampleRate = rate;
            Open();
            UI_Node* const graph = FindGraph(*fView);
            ASSERT_NE(graph, nullptr);
            Drive(*graph);
            for (const std::string& entry : fFilter->TakeLog()) {
                const bool isViewRange = entry.starts_with("quiet " + std::to_string(panel.viewStart) + " ") ||
                                         entry.starts_with("quiet " + std::to_string(panel.viewStart + 1) + " ");
                EXPECT_FALSE(isViewRange) << entry;
                EXPECT_THAT(entry, testing::Not(testing::AnyOf(testing::HasSubstr("nan"), testing::HasSubstr("inf"))));
            }
            ExpectNumbers();
        }
}

TEST_F(GraphRobustnessTest, CountsThatAreNoneAndPointsOnEachOtherAreDrawnAndDragged) {
    for (const GraphPanel& panel : kPanels) {
        if (panel.countIndex < 0) continue;
        for (const float count : {-1.0F, std::numeric_limits<float>::quiet_NaN(), 0.03F, 1.0F, 2.0F}) {
            SCOPED_TRACE(krocore::ToStdString(panel.component) + " " + std::to_string(count));
            Use(panel.component);
            for (int i = 0; i < 256; ++i)
                fFilter->Store(panel.countIndex + 1 + i, 0.5F); // all points at one place
            fFilter->Store(panel.countIndex, count);
            Open();
            EXPECT_THAT(fFilter->TakeLog(), testing::IsEmpty());
            Drive(*FindGraph(*fView));
            for (int i = 0; i < 256; ++i)
                EXPECT_TRUE(std::isfinite(fFilter->GetParameterValue(panel.countIndex + 1 + i))) << i;
        }
    }
}

} // namespace
