#include "workbench/views/CompareSwitch.h"

#include "krocore/Localizer.h"

namespace workbench {

using kroui::controls::UI_TextButton;

CompareSwitch::CompareSwitch(boost::function<void()> listener)
    : fListener(std::move(listener)), fA(NewButton(Slot::kA, "slotA", u"A")), fB(NewButton(Slot::kB, "slotB", u"B")) {
    UI_SetID("compare");
    ChildPushBack(fA);
    ChildPushBack(fB);
    Show(fSlot);
}

CompareSwitch::ButtonPtr CompareSwitch::NewButton(Slot slot, const char* id, std::u16string_view text) {
    ButtonPtr button(new UI_TextButton);
    button->UI_SetID(id);
    button->SetText(text);
    button->UI_SetTooltip(krocore::Localize(
        "$$$/Workbench/CompareTip=Two sets of settings to compare; the second begins as a copy of the first (A)"));
    button->SetSpringLoaded(false);
    button->SetChangeFocusOnClick(false);
    button->NotifyWhenChanged([this, slot](auto*) { OnClick(slot); });
    return button;
}

void CompareSwitch::Show(Slot slot) {
    fSlot = slot;
    fA->SetValue(slot == Slot::kA ? 1 : 0);
    fB->SetValue(slot == Slot::kB ? 1 : 0);
}

// A click has turned the button over.
void CompareSwitch::OnClick(Slot slot) {
    const bool isOther = slot != fSlot;
    Show(fSlot);
    if (isOther) fListener();
}

void CompareSwitch::UI_SizeChanged(const kroui::RectT<float>& rect) {
    constexpr float kGap = 2;
    const float width = (rect.width - kGap) / 2;
    fA->UI_SetFrame({0, 0, width, rect.height});
    fB->UI_SetFrame({width + kGap, 0, width, rect.height});
}

} // namespace workbench
