#pragma once

#include "kroui/controls/UI_TextField.h"

namespace workbench {

// A field that filters a list. Escape empties it; keys that go through a list, and Enter, are left to who holds both.
class SearchField final : public kroui::controls::UI_TextField {
public:
    // The listener hears of every change of the text.
    explicit SearchField(boost::function<void()> listener);

    bool UI_DoKeyEvent(const kroui::ui::KeyEvent& event) override;

private:
    bool Clear();

    boost::function<void()> fListener;
};

} // namespace workbench
