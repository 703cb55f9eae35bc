#pragma once

#include "kroui/controls/UI_TextButton.h"
#include "workbench/session/CompareSlots.h"

#include <boost/function.hpp>

namespace workbench {

// Two buttons, A and B; the one of the slot in use is lit.
class CompareSwitch final : public kroui::ui::UI_Node {
public:
    static constexpr float kWidth = 70;

    // The listener is called when the user wants the other slot.
    explicit CompareSwitch(boost::function<void()> listener);

    void Show(CompareSlots::Slot slot);

    void UI_SizeChanged(const kroui::RectT<float>& rect) override;

private:
    using Slot = CompareSlots::Slot;
    using ButtonPtr = boost::intrusive_ptr<kroui::controls::UI_TextButton>;

    ButtonPtr NewButton(Slot slot, const char* id, std::u16string_view text);
    void OnClick(Slot slot);

    boost::function<void()> fListener;
    Slot fSlot = Slot::kA;
    ButtonPtr fA;
    ButtonPtr fB;
};

} // namespace workbench
