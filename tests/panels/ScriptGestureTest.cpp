// What relations do while a control is dragged and the panel polls the effect in between.

#include "FakeFilter.h"
#include "PanelHost.h"
#include "SourcePaths.h"
#include "krocore/ModuleResources.h"
#include "qoc/components/EffectCatalogue.h"
#include "qocui/controls/TarnLioAudioComponentEditorView.h"
#include "uit/controls/UI_CurveEditor.h"
#include "uit/controls/UI_EditNumber.h"
#include "uit/controls/UI_TimecodeEdit.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <set>

using kroaudiofilterhost::AudioFilter;
using qocui::controls::TarnLioAudioComponentEditorView;

namespace {

// The effects by the scripts of their panels. The one without an effect runs on a filter that keeps its parameters.
const std::map<std::string, const char*>& EffectsWithRelations() {
    static const std::map<std::string, const char*> kEffects = {{"CHANNELMIXERUI", "channelmixer"},
                                                                {"FULLREVERBUI", "fullreverb"},
                                                                {"PARAMETRICEQ", "parametriceq"},
                                                                {"STRETCHUI", nullptr}};
    return kEffects;
}

boost::intrusive_ptr<AudioFilter> NewFilter(const char* effect) {
    if (effect)
        for (const auto& description : qoc::components::AllEffects())
            if (description.shortName == effect) return description.create();
    constexpr std::size_t kStretchParameters = 21;
    const boost::intrusive_ptr<test::FakeFilter> filter(new test::FakeFilter(kStretchParameters));
    filter->SetDuration(441000);
    for (const int index : {2, 3, 19}) // 100 %, of 25 to 400
        filter->Store(index, 0.2F);
    filter->Store(18, 0.5F);
    return filter;
}

class ScriptGesture : public test::PanelHost<testing::TestWithParam<std::string>> {
protected:
    ScriptGesture() : PanelHost({1600, 1200}) {
        fFilter = NewFilter(EffectsWithRelations().at(GetParam()));
        fFilter->Prepare(44100, 64, kromediatypes::AudioChannelLayout::ForChannelCount(2));
        Show(TarnLioAudioComponentEditorView::Create(
            fFilter, &fSupplier, krocore::ToUTF16(GetParam()),
            krocore::ModuleFromAddress(&qocui::module::ComponentUIFactory::GetInstance())));
    }

    // Those that can be dragged.
    std::vector<kroui::ui::UI_Node*> Controls() const {
        std::vector<kroui::ui::UI_Node*> found;
        Collect(*fView, found);
        return found;
    }
    static void Collect(kroui::ui::UI_Node& node, std::vector<kroui::ui::UI_Node*>& found) {
        if (!node.UI_IsVisible()) return;
        if (dynamic_cast<uit::controls::UI_EditNumber*>(&node) || dynamic_cast<uit::controls::UI_CurveEditor*>(&node) ||
            dynamic_cast<uit::controls::UI_TimecodeEdit*>(&node))
            return found.push_back(&node);
        for (const auto& child : node.Children())
            Collect(*child, found);
    }

    std::vector<float> Parameters() const {
        std::vector<float> values;
        for (int i = 0; i < fFilter->GetParameterCount(); ++i)
            values.push_back(fFilter->GetParameterValue(i));
        return values;
    }
    // The parameters that are not what they were.
    std::set<std::size_t> ChangedSince(const std::vector<float>& before) const {
        constexpr float kStored = 2e-6F; // a float, from one unit to the other and back
        const std::vector<float> now = Parameters();
        std::set<std::size_t> changed;
        for (std::size_t i = 0; i < now.size(); ++i)
            if (!(std::abs(now[i] - before[i]) <= kStored)) changed.insert(i);
        return changed;
    }

    // Whether anything was written.
    bool DragAndAbandon(kroui::Point from) {
        const std::vector<float> before = Parameters();
        std::set<std::size_t> first;
        fWindow.Press(from);
        for (int step = 1; step <= kSteps; ++step) {
            fWindow.MoveTo({from.x + 2 * static_cast<float>(step), from.y - static_cast<float>(step)});
            const std::set<std::size_t> changed = ChangedSince(before);
            Poll();
            EXPECT_EQ(ChangedSince(before), changed) << "the poll itself";
            if (first.empty()) first = changed;
            EXPECT_THAT(changed, testing::Each(testing::AnyOfArray(std::vector(first.begin(), first.end()))))
                << "step " << step;
        }
        fWindow.PressKey(kroui::ui::Key::kEscape);
        Poll();
        EXPECT_THAT(ChangedSince(before), testing::IsEmpty()) << "abandoned";
        fWindow.Release();
        Poll();
        return !first.empty();
    }

    static constexpr int kSteps = 6;

    boost::intrusive_ptr<AudioFilter> fFilter;
};

// Before each drag another control has been dragged, so that every order of strength comes up.
TEST_P(ScriptGesture, RunsOneWayFromBeginningToEndAndAbandonedRestoresEveryParameter) {
    int dragged = 0;
    for (int round = 0; round < 2; ++round)
        for (kroui::ui::UI_Node* const control : Controls()) {
            SCOPED_TRACE(krocore::ToStdString(control->UI_GetAccessibleInfo().name) + ", " +
                         std::string(control->UI_GetID()));
            dragged += DragAndAbandon(kroui::ui::HeadlessWindow::CentreOf(*control)) ? 1 : 0;
        }
    EXPECT_GT(dragged, 3);
}

std::set<std::string> SheetsWithRelations() {
    std::set<std::string> sheets;
    for (const auto& entry : std::filesystem::directory_iterator(QO_SOURCE_DIR "/resources/scripts")) {
        std::ifstream stream(entry.path(), std::ios::binary);
        const std::string text(std::istreambuf_iterator<char>(stream), {});
        if (entry.path().extension() == ".trn" && text.find("relate") != std::string::npos)
            sheets.insert(entry.path().stem());
    }
    return sheets;
}

TEST(ScriptGestures, KnowEverySheetThatHasRelations) {
    std::set<std::string> known;
    for (const auto& [script, effect] : EffectsWithRelations())
        known.insert(script);
    EXPECT_EQ(known, SheetsWithRelations());
}

INSTANTIATE_TEST_SUITE_P(Panels, ScriptGesture,
                         testing::Values("CHANNELMIXERUI", "FULLREVERBUI", "PARAMETRICEQ", "STRETCHUI"),
                         [](const auto& info) { return info.param; });

} // namespace
