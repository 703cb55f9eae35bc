#include "workbench/StatusLine.h"

#include "kroui/ui/UI_NodeManager.h"

namespace workbench {

using kroui::controls::UI_StaticText;

namespace {

constexpr float kMargin = 16;
constexpr float kStateWidth = 160;
constexpr float kStateHeight = 22;
constexpr float kFontSize = 11;

} // namespace

StatusLine::StatusLine(boost::intrusive_ptr<MenuButton> state)
    : fMessage(new UI_StaticText), fState(std::move(state)),
      fTimer(kroui::ui::UI_NodeManager::Get().GetUniqueTimerID()) {
    UI_SetID("status");
    fMessage->UI_SetID("message");
    fMessage->SetFontSize(kFontSize);
    ChildPushBack(fMessage);
    ChildPushBack(fState);
}

void StatusLine::Show(std::u16string_view text, int colorRole) {
    UI_RemoveTimer(fTimer, false);
    fMessage->SetText(text);
    fMessage->SetColorRole(colorRole);
    // The line may be too short for it.
    fMessage->UI_SetTooltip(colorRole == kroui::ui::kColorDimText ? std::u16string_view() : text);
}

void StatusLine::ShowHint(std::u16string_view text) {
    fHint = text;
    Show(text, kroui::ui::kColorDimText);
}

void StatusLine::ShowNews(std::u16string_view text) {
    Show(text, kroui::ui::kColorText);
    UI_InstallTimer(kNewsSeconds, fTimer);
}

void StatusLine::ShowProblem(std::u16string_view text) {
    Show(text, kroui::ui::kColorWarning);
}

bool StatusLine::UI_DoTimerNotify(long timerID) {
    if (timerID != fTimer) return UI_Node::UI_DoTimerNotify(timerID);
    ShowHint(fHint);
    return true;
}

void StatusLine::UI_Draw(kroui::limner::Limner* limner) {
    limner->FillRect(UI_GetLocalRect(), GetColor(kroui::ui::kColorWindow));
}

void StatusLine::UI_SizeChanged(const kroui::RectT<float>& rect) {
    const float state = rect.width - kMargin / 2 - kStateWidth;
    fMessage->UI_SetFrame({kMargin, 0, state - 2 * kMargin, rect.height});
    fState->UI_SetFrame({state, (rect.height - kStateHeight) / 2, kStateWidth, kStateHeight});
}

} // namespace workbench
