#include "workbench/window/StatusLine.h"

#include "krocore/Localizer.h"
#include "kroui/ui/UI_NodeManager.h"

#include <algorithm>
#include <utility>

namespace workbench {

using kroui::controls::UI_StaticText;

namespace {

constexpr float kMargin = 16;
constexpr float kStateWidth = 160;
constexpr float kRemediesWidth = 112;
constexpr float kButtonHeight = 22;
constexpr float kFontSize = 11;

} // namespace

StatusLine::StatusLine(boost::intrusive_ptr<MenuButton> state)
    : fMessage(new UI_StaticText), fState(std::move(state)),
      fRemedies(new MenuButton([this] { return fRemedyCommands; })),
      fTimer(kroui::ui::UI_NodeManager::Get().GetUniqueTimerID()) {
    UI_SetID("status");
    fMessage->UI_SetID("message");
    fMessage->SetFontSize(kFontSize);
    ChildPushBack(fMessage);
    ChildPushBack(fState);
    fRemedies->UI_SetID("remedies");
    fRemedies->SetText(krocore::Localize("$$$/Workbench/Remedies=What Helps..."));
    fRemedies->UI_Show(false);
    ChildPushBack(fRemedies);
}

void StatusLine::Show(std::u16string_view text, int colorRole, MenuButton::Commands remedies) {
    UI_RemoveTimer(fTimer, false);
    fRemedyCommands = std::move(remedies);
    fRemedies->UI_Show(!fRemedyCommands.empty());
    Arrange();
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

void StatusLine::ShowProblem(std::u16string_view text, MenuButton::Commands remedies) {
    Show(text, kroui::ui::kColorWarning, std::move(remedies));
}

bool StatusLine::UI_DoTimerNotify(long timerID) {
    if (timerID != fTimer) return UI_Node::UI_DoTimerNotify(timerID);
    ShowHint(fHint);
    return true;
}

void StatusLine::UI_Draw(kroui::limner::Limner* limner) {
    limner->FillRect(UI_GetLocalRect(), GetColor(kroui::ui::kColorWindow));
}

void StatusLine::UI_SizeChanged(const kroui::RectT<float>& /*rect*/) {
    Arrange();
}

void StatusLine::Arrange() {
    const kroui::Rect rect = UI_GetLocalRect();
    const float top = (rect.height - kButtonHeight) / 2;
    const float state = rect.width - kMargin / 2 - kStateWidth;
    const float remedies = state - kMargin / 2 - kRemediesWidth;
    fState->UI_SetFrame({state, top, kStateWidth, kButtonHeight});
    fRemedies->UI_SetFrame({remedies, top, kRemediesWidth, kButtonHeight});
    const float end = fRemedies->UI_IsVisible() ? remedies : state;
    fMessage->UI_SetFrame({kMargin, 0, std::max(0.0F, end - 2 * kMargin), rect.height});
}

} // namespace workbench
