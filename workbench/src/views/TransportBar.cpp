#include "workbench/views/TransportBar.h"

#include "krocore/Localizer.h"
#include "krocore/Units.h"
#include "workbench/commands/TextOfSound.h"
#include "workbench/views/EdgeLines.h"

#include <cmath>

namespace workbench {

using kroui::controls::UI_StaticText;
using kroui::controls::UI_TextButton;

namespace {

constexpr float kMargin = 24;
constexpr float kPlayLeft = 36;
constexpr float kPlaySize = 40;
constexpr float kButtonSize = 32;
constexpr float kStopLeft = 92;
constexpr float kLoopLeft = 136;
constexpr float kTimeLeft = 196;
constexpr float kTimeWidth = 220;
constexpr float kTimeSize = 20;
constexpr float kRangeSize = 11;
constexpr float kBypassWidth = 88;
constexpr float kRenderWidth = 136;
constexpr float kTextButtonHeight = 24;
constexpr float kTextButtonGap = 16;

boost::intrusive_ptr<TransportButton> NewButton(TransportButton::Sign sign, const char* id, const char* tip) {
    boost::intrusive_ptr<TransportButton> button(new TransportButton(sign));
    button->UI_SetID(id);
    button->UI_SetTooltip(krocore::Localize(tip));
    return button;
}

} // namespace

TransportBar::TransportBar(Actions actions)
    : fActions(std::move(actions)),
      fPlay(NewButton(TransportButton::Sign::kPlay, "play", "$$$/Workbench/PlayTip=Play (Space)")),
      fStop(
          NewButton(TransportButton::Sign::kStop, "stop", "$$$/Workbench/StopTip=Stop; again: to the start (Escape)")),
      fLoop(NewButton(TransportButton::Sign::kLoop, "loop", "$$$/Workbench/LoopTip=Play again and again (L)")),
      fBypass(new UI_TextButton), fRender(new UI_TextButton), fTime(new UI_StaticText), fRange(new UI_StaticText) {
    UI_SetID("transport");
    fPlay->SetDefaultAppearance(true);
    fLoop->SetSpringLoaded(false);
    fBypass->UI_SetID("bypass");
    fBypass->SetText(krocore::Localize("$$$/Workbench/Bypass=Bypass"));
    fBypass->UI_SetTooltip(krocore::Localize("$$$/Workbench/BypassTip=Hear the sound without the effect (B)"));
    fBypass->SetSpringLoaded(false);
    fBypass->SetChangeFocusOnClick(false);
    fRender->UI_SetID("render");
    fRender->SetDefaultAppearance(true);
    fRender->SetChangeFocusOnClick(false);
    ShowRender();
    fTime->UI_SetID("time");
    fTime->SetBold(true);
    fTime->SetFontSize(kTimeSize);
    fRange->UI_SetID("duration");
    fRange->SetFontSize(kRangeSize);
    fRange->SetColorRole(kroui::ui::kColorDimText);
    Connect();
}

void TransportBar::Connect() {
    fPlay->NotifyWhenChanged([this](auto*) { fActions.playOrPause(); });
    fStop->NotifyWhenChanged([this](auto*) { fActions.stop(); });
    fLoop->NotifyWhenChanged([this](auto*) { fActions.loop(fLoop->IsChecked()); });
    fBypass->NotifyWhenChanged([this](auto*) { fActions.bypass(fBypass->IsChecked()); });
    fRender->NotifyWhenChanged([this](auto*) { fActions.render(); });
    ChildPushBack(fPlay);
    ChildPushBack(fStop);
    ChildPushBack(fLoop);
    ChildPushBack(fTime);
    ChildPushBack(fRange);
    ChildPushBack(fBypass);
    ChildPushBack(fRender);
}

void TransportBar::SetPlaying(bool playing) {
    if (playing == fIsPlaying) return;
    fIsPlaying = playing;
    fPlay->SetSign(playing ? TransportButton::Sign::kPause : TransportButton::Sign::kPlay);
    fPlay->UI_SetTooltip(
        krocore::Localize(playing ? "$$$/Workbench/PauseTip=Pause (Space)" : "$$$/Workbench/PlayTip=Play (Space)"));
}

void TransportBar::SetRendering(bool rendering) {
    if (rendering == fIsRendering) return;
    fIsRendering = rendering;
    ShowRender();
}

void TransportBar::ShowRender() {
    const char* const text = fIsRendering   ? "$$$/Workbench/CancelRender=Cancel"
                             : fIsSelection ? "$$$/Workbench/RenderSelection=Render Selection"
                                            : "$$$/Workbench/Render=Render";
    const char* const tip = fIsRendering
                                ? "$$$/Workbench/CancelRenderTip=Stop rendering; no file is made"
                                : "$$$/Workbench/RenderTip=Write what the effect makes into a new file beside the "
                                  "sound (Ctrl+R)";
    fRender->SetText(krocore::Localize(text));
    fRender->UI_SetTooltip(krocore::Localize(tip));
}

void TransportBar::SetTime(double position) {
    const long milliseconds = std::lround(krocore::MillisecondsOfSeconds(position));
    if (milliseconds != fMilliseconds) fTime->SetText(TimeText(position));
    fMilliseconds = milliseconds;
}

void TransportBar::SetRange(const TimeRange& range, bool isSelection) {
    fIsSelection = isSelection;
    fRange->SetText(isSelection ? RangeText(range.begin, range.end)
                                : krocore::ReplacePlaceholders(krocore::Localize("$$$/Workbench/Duration=of @0"),
                                                               {TimeText(range.end)}));
    ShowRender();
}

void TransportBar::UI_Draw(kroui::limner::Limner* limner) {
    limner->FillRect(UI_GetLocalRect(), GetColor(kroui::ui::kColorWindow));
    DrawTopLine(*this, *limner);
}

void TransportBar::UI_SizeChanged(const kroui::RectT<float>& rect) {
    const auto centred = [&rect](float height) { return std::floor((rect.height - height) / 2); };
    fPlay->UI_SetFrame({kPlayLeft, centred(kPlaySize), kPlaySize, kPlaySize});
    fStop->UI_SetFrame({kStopLeft, centred(kButtonSize), kButtonSize, kButtonSize});
    fLoop->UI_SetFrame({kLoopLeft, centred(kButtonSize), kButtonSize, kButtonSize});
    constexpr float kTimeHeight = 28;
    constexpr float kRangeHeight = 18;
    const float top = centred(kTimeHeight + kRangeHeight);
    fTime->UI_SetFrame({kTimeLeft, top, kTimeWidth, kTimeHeight});
    fRange->UI_SetFrame({kTimeLeft, top + kTimeHeight, kTimeWidth, kRangeHeight});
    const float render = rect.width - kMargin - kRenderWidth;
    const float bypass = render - kTextButtonGap - kBypassWidth;
    fBypass->UI_SetFrame({bypass, centred(kTextButtonHeight), kBypassWidth, kTextButtonHeight});
    fRender->UI_SetFrame({render, centred(kTextButtonHeight), kRenderWidth, kTextButtonHeight});
}

} // namespace workbench
