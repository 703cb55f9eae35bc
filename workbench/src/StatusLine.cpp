#include "workbench/StatusLine.h"

namespace workbench {

using kroui::controls::UI_StaticText;

namespace {

constexpr float kMargin = 16;
constexpr float kStateWidth = 180;
constexpr float kFontSize = 11;

boost::intrusive_ptr<UI_StaticText> NewText(const char* id) {
    boost::intrusive_ptr<UI_StaticText> text(new UI_StaticText);
    text->UI_SetID(id);
    text->SetFontSize(kFontSize);
    text->SetColorRole(kroui::ui::kColorDimText);
    return text;
}

} // namespace

StatusLine::StatusLine() : fMessage(NewText("message")), fState(NewText("state")) {
    UI_SetID("status");
    fState->SetAlignment(kroui::limner::TextAlignment::kRight);
    ChildPushBack(fMessage);
    ChildPushBack(fState);
}

void StatusLine::ShowHint(std::u16string_view text) {
    fMessage->SetText(text);
    fMessage->UI_SetTooltip({});
    fMessage->SetColorRole(kroui::ui::kColorDimText);
}

void StatusLine::ShowProblem(std::u16string_view text) {
    fMessage->SetText(text);
    // The line may be too short for it.
    fMessage->UI_SetTooltip(text);
    fMessage->SetColorRole(kroui::ui::kColorWarning);
}

void StatusLine::UI_Draw(kroui::limner::Limner* limner) {
    limner->FillRect(UI_GetLocalRect(), GetColor(kroui::ui::kColorWindow));
}

void StatusLine::UI_SizeChanged(const kroui::RectT<float>& rect) {
    const float state = rect.width - kMargin - kStateWidth;
    fMessage->UI_SetFrame({kMargin, 0, state - 2 * kMargin, rect.height});
    fState->UI_SetFrame({state, 0, kStateWidth, rect.height});
}

} // namespace workbench
