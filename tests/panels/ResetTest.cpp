// A reset of any number of any panel takes its parameter to the parameter's default.

#include "PanelWalk.h"
#include "kroui/controls/UI_HotTextNumber.h"
#include "uit/controls/UI_EditNumber.h"

#include <set>

using kroaudiofilterhost::AudioFilterParameterInfo;
using kroui::Point;
using kroui::controls::UI_HotTextNumber;
using kroui::controls::ValueControl;
using kroui::ui::HeadlessWindow;
using kroui::ui::Key;
using kroui::ui::UI_Node;
using uit::controls::UI_EditNumber;

namespace {

struct Reset {
    const char* name;
    bool (*run)(HeadlessWindow& window, UI_Node& number); // false: the number has none of these
};

constexpr Reset kResets[] = {
    {"Ctrl-click on the number",
     [](HeadlessWindow& window, UI_Node& number) {
         const auto* const edit = dynamic_cast<UI_EditNumber*>(&number);
         window.Click(edit ? edit->UI_LocalToWindow(edit->Layout().number.Centre()) : HeadlessWindow::CentreOf(number),
                      kroui::ui::kCommand);
         return true;
     }},
    {"Ctrl-click on the slider",
     [](HeadlessWindow& window, UI_Node& number) {
         const auto* const edit = dynamic_cast<UI_EditNumber*>(&number);
         if (!edit || edit->Layout().slider.IsEmpty()) return false;
         window.Click(edit->UI_LocalToWindow(edit->Layout().slider.Centre()), kroui::ui::kCommand);
         return true;
     }},
    {"double-click on the slider",
     [](HeadlessWindow& window, UI_Node& number) {
         const auto* const edit = dynamic_cast<UI_EditNumber*>(&number);
         if (!edit || edit->Layout().slider.IsEmpty()) return false;
         window.DoubleClick(edit->UI_LocalToWindow(edit->Layout().slider.Centre()));
         return true;
     }},
    {"double-click on a number that can't be typed",
     [](HeadlessWindow& window, UI_Node& number) {
         const auto* const text = dynamic_cast<UI_HotTextNumber*>(&number);
         if (!text || text->NumericInput()) return false;
         window.DoubleClick(HeadlessWindow::CentreOf(number));
         return true;
     }},
};

class ResetTest : public test::PanelWalk {
protected:
    float Default(int index) const { return fFilter->GetParameterInfo(index)->GetDefault(); }
    // What the user sets: no results, nor what is shown of the axis, nor the bandwidth that follows from the order.
    bool IsSetting(int index) const {
        const AudioFilterParameterInfo* const info = fFilter->GetParameterInfo(index);
        const std::string id = info->GetID();
        return !info->IsReadOnly() && id != "viewstart" && id != "viewend" && id != "transition";
    }
    // Moves the number by the keyboard, up if it can; the settings that have gone with it.
    std::vector<int> Change(UI_Node& number) {
        number.UI_TakeFocus();
        const std::vector<float> before = StoredValues();
        for (const Key key : {Key::kPageUp, Key::kUp, Key::kPageDown, Key::kDown}) {
            fWindow.PressKey(key);
            if (StoredValues() != before) break;
        }
        std::vector<int> changed;
        for (int i = 0; i < fFilter->GetParameterCount(); ++i)
            if (fFilter->GetParameterValue(i) != before[static_cast<std::size_t>(i)] && IsSetting(i))
                changed.push_back(i);
        return changed;
    }
    // Every choice and switch at every item, so that each page and mode of the panel is open once.
    std::vector<std::pair<int, float>> Modes() const {
        std::vector<std::pair<int, float>> modes{{-1, 0.0F}};
        for (int i = 0; i < fFilter->GetParameterCount(); ++i) {
            const AudioFilterParameterInfo* const info = fFilter->GetParameterInfo(i);
            if (!info || info->IsReadOnly()) continue;
            if (info->GetKind() == AudioFilterParameterInfo::Kind::kSwitch)
                modes.insert(modes.end(), {{i, 0.0F}, {i, 1.0F}});
            if (info->GetKind() == AudioFilterParameterInfo::Kind::kChoice)
                for (int item = 0; item < info->GetItemCount(); ++item)
                    modes.emplace_back(i, info->FromItem(item));
        }
        return modes;
    }
    void ExpectReset(ValueControl& control, const Reset& reset) {
        UI_Node& number = dynamic_cast<UI_Node&>(control);
        const std::vector<int> changed = Change(number);
        if (!reset.run(fWindow, number)) return;
        fWindow.Advance(0.02);
        const std::string what = std::string(number.UI_GetID()) + " (" +
                                 krocore::ToStdString(number.UI_GetAccessibleInfo().name) + "), " + reset.name;
        for (const int index : changed)
            EXPECT_NEAR(fFilter->GetParameterValue(index), Default(index), 1e-5)
                << what << ": " << krocore::ToStdString(fFilter->GetParameterInfo(index)->GetName());
        if (!changed.empty()) fReset.insert(what);
    }

    std::set<std::string> fReset;
};

TEST_P(ResetTest, EveryNumberGoesToItsParametersDefault) {
    for (const auto& [index, stored] : Modes()) {
        StoreDefaults();
        if (index >= 0) fFilter->SetParameterValueQuietly(index, stored);
        Open();
        for (ValueControl* const control : Controls<ValueControl>())
            for (const Reset& reset : kResets)
                ExpectReset(*control, reset);
    }
    EXPECT_EQ(fReset.empty(), Controls<ValueControl>().empty());
}

INSTANTIATE_TEST_SUITE_P(Effects, ResetTest, testing::ValuesIn(qoc::components::AllEffects()), test::EffectName());

} // namespace
