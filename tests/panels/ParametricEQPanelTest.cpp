#include "PanelHost.h"
#include "SourcePaths.h"
#include "orrin/sheet.h"
#include "qoc/components/ComponentIDs.h"
#include "qoc/components/EffectCatalogue.h"
#include "qoc/components/ParameterIndices.h"
#include "qocui/controls/TarnLioAudioComponentEditorView.h"
#include "uit/controls/UI_CurveEditor.h"
#include "uit/controls/UI_EditNumber.h"

#include <gmock/gmock.h>

#include <fstream>
#include <set>

using namespace kroui;
using namespace qoc::components;
using orrin::name_t;
using testing::IsEmpty;
using testing::UnorderedElementsAre;
using uit::controls::UI_CurveEditor;
using uit::controls::UI_EditNumber;

namespace {

constexpr int kHighPass = 0;
constexpr int kLowShelf = 1;
constexpr int kPeak1 = 2;
constexpr int kPeak2 = 3;
constexpr const char* kBands[] = {"high_pass", "low_shelf", "peak1",      "peak2",   "peak3",
                                  "peak4",     "peak5",     "high_shelf", "low_pass"};

// What each parameter is in the sheet.
std::vector<std::string> Cells() {
    std::vector<std::string> cells = {"master_gain", "graph_range", "constant_width", "keep_headroom"};
    const auto add = [&](std::initializer_list<int> bands, const char* what) {
        for (const int band : bands)
            cells.push_back(std::string(kBands[band]) + what);
    };
    add({0, 1, 2, 3, 4, 5, 6, 7, 8}, "_on");
    add({0, 1, 2, 3, 4, 5, 6, 7, 8}, "_frequency");
    add({1, 2, 3, 4, 5, 6, 7}, "_gain");
    add({2, 3, 4, 5, 6}, "_q");
    add({2, 3, 4, 5, 6}, "_width");
    add({1, 7}, "_steep");
    add({0, 8}, "_slope");
    cells.emplace_back("highest_gain");
    return cells;
}

// The panel of a real effect, from the factory, in a window.
class ParametricEQPanelTest : public test::PanelHost<> {
protected:
    ParametricEQPanelTest() : PanelHost({1000, 700}) {
        fFilter = CreateEffect(kParametricEQComponentID);
        fFilter->Prepare(44100, 64, kromediatypes::AudioChannelLayout::Stereo());
        ShowPanelOf(fFilter);
    }

    UI_CurveEditor& Graph() { return *FindGraph(*fView); }
    static std::vector<UI_EditNumber*> VisibleNumbers(ui::UI_Node& node) {
        std::vector<UI_EditNumber*> numbers;
        if (!node.UI_IsVisible()) return numbers;
        if (auto* const number = dynamic_cast<UI_EditNumber*>(&node)) return {number};
        for (const auto& child : node.Children())
            std::ranges::copy(VisibleNumbers(*child), std::back_inserter(numbers));
        return numbers;
    }
    static UI_CurveEditor* FindGraph(ui::UI_Node& node) {
        if (auto* const graph = dynamic_cast<UI_CurveEditor*>(&node)) return graph;
        for (const auto& child : node.Children())
            if (UI_CurveEditor* const graph = FindGraph(*child)) return graph;
        return nullptr;
    }
    Point HandleOf(int band) {
        const auto& point = Graph().GetCurvePoints()[static_cast<std::size_t>(band)];
        return Graph().UI_LocalToWindow(Graph().GetPixelForCoordinatePair(point.coordinates));
    }
    void DragHandle(int band, float x, float y) {
        const Point from = HandleOf(band);
        fWindow.Drag(from, {from.x + x, from.y + y});
        Poll();
    }

    float Natural(int index) const {
        return fFilter->GetParameterInfo(index)->ToNatural(fFilter->GetParameterValue(index));
    }
    void Set(int index, float natural) {
        fFilter->SetParameterValue(index, fFilter->GetParameterInfo(index)->ToNormalised(natural));
        Poll();
    }
    // The parameters that are others now, apart from what the effect tells.
    std::vector<int> Changed() {
        std::vector<int> changed;
        for (int i = 0; i < kParametricEQHighestGain; ++i)
            if (std::abs(fFilter->GetParameterValue(i) - fBefore[static_cast<std::size_t>(i)]) > 1e-6F)
                changed.push_back(i);
        return changed;
    }
    void Remember() {
        fBefore.clear();
        for (int i = 0; i < fFilter->GetParameterCount(); ++i)
            fBefore.push_back(fFilter->GetParameterValue(i));
    }

    boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> fFilter;
    std::vector<float> fBefore;
};

TEST_F(ParametricEQPanelTest, EveryParameterGoesThroughItsCell) {
    orrin::sheet_t sheet;
    dynamic_cast<qocui::controls::TarnLioAudioComponentEditorView&>(*fView).SetupVirtualMachine(sheet.machine(),
                                                                                                &sheet);
    std::ifstream script(QO_SOURCE_DIR "/resources/scripts/PARAMETRICEQ.trn", std::ios::binary);
    sheet.load(std::string(std::istreambuf_iterator<char>(script), {}), "PARAMETRICEQ");
    const std::vector<std::string> cells = Cells();
    ASSERT_EQ(static_cast<int>(cells.size()), fFilter->GetParameterCount());
    for (int index = 0; index < fFilter->GetParameterCount(); ++index) {
        SCOPED_TRACE(cells[static_cast<std::size_t>(index)]);
        const auto& info = *fFilter->GetParameterInfo(index);
        const bool isSwitch = info.GetKind() == kroaudiofilterhost::AudioFilterParameterInfo::Kind::kSwitch;
        const name_t cell(cells[static_cast<std::size_t>(index)]);
        EXPECT_NEAR(sheet[name_t("in" + std::to_string(index))].get<double>(), info.GetDefault(), 1e-6);
        for (const float value : {0.0F, isSwitch ? 0.0F : 0.3F, 1.0F}) {
            sheet.set(name_t("in" + std::to_string(index)), static_cast<double>(value));
            sheet.update();
            sheet.reinitialise();
            if (isSwitch)
                EXPECT_EQ(sheet[cell].get<bool>(), value == 1);
            else
                EXPECT_NEAR(sheet[cell].get<double>(), info.ToNatural(value), 1e-6 * (info.ToNatural(1) + 100));
            if (!info.IsReadOnly()) {
                EXPECT_FLOAT_EQ(static_cast<float>(sheet[name_t("out" + std::to_string(index))].get<double>()), value);
            }
        }
        EXPECT_EQ(sheet.has_output(name_t("out" + std::to_string(index))), !info.IsReadOnly());
    }
    EXPECT_THAT(sheet.errors(), IsEmpty());
    EXPECT_THAT(sheet.warnings(), IsEmpty());
}

TEST_F(ParametricEQPanelTest, EveryNumberHasANameAndAParameterOfItsOwn) {
    for (const bool constantWidth : {false, true}) {
        Set(kParametricEQConstantWidth, constantWidth ? 1 : 0);
        std::set<krocore::string16> names;
        std::set<int> parameters;
        for (UI_EditNumber* const number : VisibleNumbers(*fView)) {
            names.insert(number->UI_GetAccessibleInfo().name);
            Remember();
            const Point from = number->UI_LocalToWindow(number->Layout().number.Centre());
            fWindow.Drag(from, {from.x + (constantWidth ? -15.0F : 15.0F), from.y});
            Poll();
            for (const int index : Changed()) {
                parameters.insert(index);
                EXPECT_NEAR(number->GetValue(), Natural(index), 0.01);
            }
            EXPECT_EQ(Changed().size(), 1U) << krocore::ToStdString(number->UI_GetAccessibleInfo().name);
        }
        // Nine frequencies, seven gains, five widths, two slopes, the master gain and the graph.
        EXPECT_EQ(parameters.size(), 25U);
        EXPECT_EQ(names.size(), 25U);
        EXPECT_FALSE(names.contains(u""));
    }
}

TEST_F(ParametricEQPanelTest, AHandleMovesFrequencyAndGainOfItsBandAndNothingElse) {
    Remember();
    DragHandle(kPeak1, 60, -40);
    EXPECT_THAT(Changed(), UnorderedElementsAre(kParametricEQFirstFrequency + kPeak1, kParametricEQFirstGain + 1));
    EXPECT_GT(Natural(kParametricEQFirstFrequency + kPeak1), 300);
    EXPECT_GT(Natural(kParametricEQFirstGain + 1), 3);
    const std::int32_t settled = fFilter->GetParameterDirtyCount();
    Poll();
    EXPECT_EQ(fFilter->GetParameterDirtyCount(), settled);
}

// The graph shows more than a band can have.
TEST_F(ParametricEQPanelTest, AHandleStaysWithinTheGainsOfABand) {
    Set(kParametricEQGraphRange, 60);
    DragHandle(kPeak2, 0, -90);
    EXPECT_NEAR(Natural(kParametricEQFirstGain + 2), 20, 1e-4);
    Poll(); // without another edit
    EXPECT_NEAR(Graph().GetCurvePoints()[kPeak2].coordinates.vertical, 20, 1e-4) << "goes back to it";
}

TEST_F(ParametricEQPanelTest, APassHasAHandleWhenItIsOnThatMovesToTheSidesOnly) {
    Remember();
    DragHandle(kHighPass, 50, -30);
    EXPECT_THAT(Changed(), IsEmpty()) << "it is off";
    Set(kParametricEQFirstEnable + kHighPass, 1);
    Remember();
    DragHandle(kHighPass, 50, -30);
    EXPECT_THAT(Changed(), UnorderedElementsAre(kParametricEQFirstFrequency + kHighPass));
    EXPECT_EQ(Graph().GetCurvePoints()[kHighPass].coordinates.vertical, 0);
}

TEST_F(ParametricEQPanelTest, HandlesFollowTheEffectAlsoAfterTheUserHasMovedThem) {
    DragHandle(kLowShelf, 40, 30);
    Set(kParametricEQFirstFrequency + kLowShelf, 150);
    Set(kParametricEQFirstGain, -4.5F);
    EXPECT_NEAR(Graph().GetCurvePoints()[kLowShelf].coordinates.horizontal, 150, 1e-2);
    EXPECT_NEAR(Graph().GetCurvePoints()[kLowShelf].coordinates.vertical, -4.5, 1e-4);
}

TEST_F(ParametricEQPanelTest, BandsCanPassEachOther) {
    const float before = Natural(kParametricEQFirstFrequency + kPeak2);
    DragHandle(kPeak1, 250, -20);
    EXPECT_GT(Natural(kParametricEQFirstFrequency + kPeak1), before);
    EXPECT_EQ(Natural(kParametricEQFirstFrequency + kPeak2), before);
}

} // namespace
