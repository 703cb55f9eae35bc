#pragma once

#include "FakeFilter.h"
#include "PanelHost.h"
#include "kroui/controls/UI_Button.h"
#include "kroui/controls/UI_Popup.h"

#include <gmock/gmock.h>

namespace test {

// A panel as a host has it: from the factory, in a window, driven by pointer and keys; its filter writes down what is
// done to it.
class PanelTest : public PanelHost<> {
protected:
    PanelTest(std::size_t parameters, const char16_t* component) : PanelHost({800, 600}) {
        fFilter.reset(new FakeFilter(parameters, component));
        fFilter->Prepare(44100, 64, kromediatypes::AudioChannelLayout::Stereo());
    }

    void Open() {
        ShowPanelOf(fFilter);
        fFilter->TakeLog();
    }
    kroui::controls::UI_Popup& Popup(std::string_view id) { return Find<kroui::controls::UI_Popup>(id); }
    std::string Shown(std::string_view id) { return krocore::ToStdString(Popup(id).GetItemText(Popup(id).GetValue())); }
    std::vector<std::string> Items(std::string_view id) {
        std::vector<std::string> items;
        for (int i = 0; i < Popup(id).GetItemCount(); ++i)
            items.push_back(krocore::ToStdString(Popup(id).GetItemText(i)));
        return items;
    }
    bool IsChecked(std::string_view id) { return Find<kroui::controls::UI_Button>(id).IsChecked(); }
    void Click(std::string_view id) { fWindow.Click(kroui::ui::HeadlessWindow::CentreOf(*fView->UI_FindNode(id))); }
    void PressIn(std::string_view id, kroui::ui::Key key) {
        fView->UI_FindNode(id)->UI_TakeFocus();
        fWindow.PressKey(key);
    }
    // Each of the pop-up's items is shown from its stored value, and written as it when the user steps to it.
    void ExpectItemsAreStoredAs(std::string_view id, int index, const std::vector<float>& stored) {
        ASSERT_EQ(Popup(id).GetItemCount(), static_cast<int>(stored.size()));
        for (int item = 0; item < Popup(id).GetItemCount(); ++item) {
            const float value = stored[static_cast<std::size_t>(item)];
            fFilter->Store(index, value);
            Poll();
            EXPECT_EQ(Popup(id).GetValue(), item) << value;
            if (item == 0) continue;
            Popup(id).SetValue(item - 1);
            fFilter->Store(index, -1);
            fFilter->TakeLog();
            PressIn(id, kroui::ui::Key::kDown);
            EXPECT_THAT(TakeEdits(), testing::ElementsAre(SetEntry(index, value))) << item;
        }
    }
    // What has been written as a user's change.
    std::vector<std::string> TakeEdits() {
        auto log = fFilter->TakeLog();
        std::erase_if(log, [](const std::string& entry) { return entry.starts_with("quiet"); });
        return log;
    }
    static std::string SetEntry(int index, float value) {
        return "set " + std::to_string(index) + " " + FakeFilter::Number(value);
    }

    boost::intrusive_ptr<FakeFilter> fFilter;
};

} // namespace test
