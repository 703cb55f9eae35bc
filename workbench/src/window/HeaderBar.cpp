#include "workbench/window/HeaderBar.h"

#include "krocore/Localizer.h"
#include "workbench/views/EdgeLines.h"

#include <algorithm>
#include <cmath>

namespace workbench {

using kroui::controls::UI_StaticText;
using kroui::controls::UI_TextButton;

namespace {

constexpr float kMargin = 16;
constexpr float kGap = 16;
constexpr float kButtonWidth = 60;
constexpr float kButtonHeight = 24;
constexpr float kButtonGap = 8;
constexpr float kNameSize = 13;
constexpr float kFactsSize = 11;
constexpr float kFactsWidth = 220;

boost::intrusive_ptr<UI_TextButton> NewButton(const char* id, const char* text) {
    boost::intrusive_ptr<UI_TextButton> button(new UI_TextButton);
    button->UI_SetID(id);
    button->SetText(krocore::Localize(text));
    button->SetEnabled(false);
    // Space is to go on playing.
    button->SetChangeFocusOnClick(false);
    return button;
}

void SetStep(UI_TextButton& button, bool can, std::u16string_view what, const char* tip) {
    button.SetEnabled(can);
    button.UI_SetTooltip(can ? krocore::ReplacePlaceholders(krocore::Localize(tip), {what}) : krocore::string16());
}

} // namespace

HeaderBar::HeaderBar(Actions actions, boost::intrusive_ptr<CompareSwitch> compare,
                     boost::intrusive_ptr<PresetBar> presets)
    : fActions(std::move(actions)), fName(new UI_StaticText), fFacts(new UI_StaticText),
      fUndo(NewButton("undo", "$$$/Workbench/Undo=Undo")), fRedo(NewButton("redo", "$$$/Workbench/Redo=Redo")),
      fCompare(std::move(compare)), fPresets(std::move(presets)) {
    UI_SetID("header");
    fName->UI_SetID("soundName");
    fName->SetBold(true);
    fName->SetFontSize(kNameSize);
    fFacts->UI_SetID("soundFacts");
    fFacts->SetFontSize(kFactsSize);
    fFacts->SetColorRole(kroui::ui::kColorDimText);
    fUndo->NotifyWhenChanged([this](auto*) { fActions.undo(); });
    fRedo->NotifyWhenChanged([this](auto*) { fActions.redo(); });
    ChildPushBack(fName);
    ChildPushBack(fFacts);
    ChildPushBack(fUndo);
    ChildPushBack(fRedo);
    ChildPushBack(fCompare);
    ChildPushBack(fPresets);
}

void HeaderBar::SetSound(std::u16string_view name, std::u16string_view facts) {
    fName->SetText(name);
    fFacts->SetText(facts);
    Arrange();
}

void HeaderBar::SetUndo(bool can, std::u16string_view what) {
    SetStep(*fUndo, can, what, "$$$/Workbench/UndoTip=Undo @0 (Ctrl+Z)");
}

void HeaderBar::SetRedo(bool can, std::u16string_view what) {
    SetStep(*fRedo, can, what, "$$$/Workbench/RedoTip=Redo @0 (Ctrl+Shift+Z)");
}

void HeaderBar::UI_Draw(kroui::limner::Limner* limner) {
    limner->FillRect(UI_GetLocalRect(), GetColor(kroui::ui::kColorPanel));
    DrawBottomLine(*this, *limner);
}

void HeaderBar::UI_SizeChanged(const kroui::RectT<float>& /*rect*/) {
    Arrange();
}

void HeaderBar::UI_NodeChanged(NodeChange change) {
    UI_Node::UI_NodeChanged(change);
    if (change == kAttached) Arrange();
}

void HeaderBar::Arrange() {
    const kroui::Rect rect = UI_GetLocalRect();
    const float top = (rect.height - kButtonHeight) / 2;
    const float presets = rect.width - kMargin - PresetBar::kWidth;
    const float compare = presets - kGap - CompareSwitch::kWidth;
    const float redo = compare - kGap - kButtonWidth;
    const float undo = redo - kButtonGap - kButtonWidth;
    fRedo->UI_SetFrame({redo, top, kButtonWidth, kButtonHeight});
    fUndo->UI_SetFrame({undo, top, kButtonWidth, kButtonHeight});
    fCompare->UI_SetFrame({compare, top, CompareSwitch::kWidth, kButtonHeight});
    fPresets->UI_SetFrame({presets, top, PresetBar::kWidth, kButtonHeight});

    const auto* const supplier = UI_GetDrawSupplier();
    if (!supplier) return;
    const float room = std::max(0.0F, undo - kGap - kFactsWidth - kGap - kMargin);
    const float wanted = std::ceil(supplier->MeasureText(fName->Text(), {kNameSize, true}).width) + 1;
    const float width = std::min(wanted, room);
    fName->UI_SetFrame({kMargin, top, width, kButtonHeight});
    fFacts->UI_SetFrame({kMargin + width + kGap, top, kFactsWidth, kButtonHeight});
}

} // namespace workbench
