#include "workbench/WorkbenchView.h"

#include "krocore/Localizer.h"
#include "krocore/NumberFormat.h"
#include "kroui/ui/UI_NodeManager.h"
#include "kroui/ui/UI_Window.h"
#include "workbench/TextOfSound.h"

#include <algorithm>
#include <cmath>
#include <exception>

namespace workbench {

using kroui::ui::Key;
using kroui::ui::KeyEvent;
using kroui::ui::Theme;
using qoc::components::EffectDescription;

namespace {

constexpr float kPollSeconds = 1.0F / 30;
// While nothing moves.
constexpr float kIdlePollSeconds = 0.1F;
// How often the files of a panel are looked at.
constexpr float kWatchSeconds = 0.25F;
constexpr float kZoomStep = 1.25F;
constexpr float kSmallestZoom = 0.64F; // two steps down

constexpr float kMargin = 24;
constexpr float kMetersWidth = 240;
// Where room is short, the panel needs it most.
constexpr float kNarrowWindow = 1100;
constexpr float kNarrowMargin = 12;
constexpr float kNarrowMetersWidth = 164;
constexpr float kWaveformPart = 0.16F;
constexpr float kLowestWaveform = 84;
constexpr float kHighestWaveform = 200;

krocore::string16 Hint() {
    return krocore::Localize(
        "$$$/Workbench/Hint=Drag a number or type it: 8k, -5 dB. Shift coarse, Ctrl fine. Space plays.");
}

std::vector<krocore::string16> ChannelNames(const kromediatypes::AudioChannelLayout& layout) {
    std::vector<krocore::string16> names;
    for (std::size_t channel = 0; channel < layout.size(); ++channel)
        names.push_back(layout.ChannelName(channel, true));
    return names;
}

} // namespace

WorkbenchView::WorkbenchView(Session& session, const EffectList::Effects& effects, PanelSource* panels)
    : fSession(session), fPanels(panels) {
    UI_SetID("workbench");
    BuildParts(effects);
    ShowSound();
    ShowEffect();
}

void WorkbenchView::BuildParts(const EffectList::Effects& effects) {
    fHeader = new HeaderBar({[this] { Undo(); }, [this] { Redo(); }});
    fEffects = new EffectList(effects, [this](const EffectDescription& effect) { ChooseEffect(effect); });
    fPanelPlace = new ScrollView;
    fPanelPlace->UI_SetID("panelPlace");
    fPanelPlace->SetCentred(true);
    fPanelCard = new PanelCard;
    fPanelCard->UI_SetID("panel");
    fPanelCard->SetRounded(true);
    fPanelCard->SetListener([this] { ArrangePanel(); });
    fPanelPlace->SetDocument(fPanelCard);
    fMeters = new LevelMeters;
    fMeters->UI_SetID("levels");
    fWaveform = new WaveformView([this](double seconds) { Seek(seconds); });
    fTransport = new TransportBar({[this] { PlayOrPause(); }, [this] { Stop(); }, [this](bool on) { SetLooping(on); },
                                   [this](bool on) { SetBypassed(on); }});
    fStatus = new StatusLine;
    const boost::intrusive_ptr<UI_Node> parts[] = {fHeader,   fEffects,   fPanelPlace, fMeters,
                                                   fWaveform, fTransport, fStatus};
    for (const auto& part : parts)
        ChildPushBack(part);
}

bool WorkbenchView::OpenFile(const std::filesystem::path& file) {
    try {
        fSession.OpenFile(file);
    } catch (const std::exception& error) {
        fStatus->ShowProblem(krocore::ToUTF16(error.what()));
        return false;
    }
    ShowSound();
    ShowEffect(); // its channels may be others
    return true;
}

bool WorkbenchView::ChooseEffect(const EffectDescription& effect) {
    if (&effect == &fSession.Effect()) return true;
    try {
        fSession.ChooseEffect(effect);
    } catch (const std::exception& error) {
        fStatus->ShowProblem(krocore::ToUTF16(error.what()));
        return false;
    }
    ShowEffect();
    return true;
}

krocore::string16 WorkbenchView::Title() const {
    return fSession.SoundName() + u" - " + fSession.Effect().DisplayName() + u" - Workbench";
}

void WorkbenchView::ShowSound() {
    const qohost::Sound& sound = fSession.CurrentSound();
    fHeader->SetSound(fSession.SoundName(), SoundText(sound));
    fWaveform->SetSound(sound);
    fTransport->SetTime(0, sound.Seconds());
    const krocore::string16 problem = fSession.Output().Problem();
    if (problem.empty())
        fStatus->ShowHint(Hint());
    else
        fStatus->ShowProblem(problem);
}

void WorkbenchView::ShowEffect() {
    const Session::FilterPtr& filter = fSession.Filter();
    fEffects->Select(fSession.Effect());
    ShowPanel();
    fPanelPlace->ScrollTo({});
    fMeters->SetChannels(ChannelNames(filter->GetInputBuses().front().GetLayout()),
                         ChannelNames(filter->GetOutputBuses().front().GetLayout()));
    fPeaks.assign(fMeters->Count(), 0.0F);
    Arrange();
    ShowHistory();
    if (fTitleListener) fTitleListener();
}

void WorkbenchView::ShowPanel() {
    const Session::FilterPtr& filter = fSession.Filter();
    fPanelIsStale = false;
    const PanelSource::Made made = fPanels ? fPanels->Make(filter) : PanelSource::Made{NewPanel(filter), {}};
    if (made.problem.empty())
        fPanelCard->SetMessage(krocore::ReplacePlaceholders(
            krocore::Localize("$$$/Workbench/NoPanel=@0 has no panel yet."), {fSession.Effect().DisplayName()}));
    else
        fPanelCard->SetProblem(made.problem);
    fPanelCard->SetPanel(made.panel);
    if (!fPanels || !fPanels->IsWatching()) return;
    if (made.panel && !made.problem.empty())
        fStatus->ShowProblem(made.problem.substr(0, made.problem.find(u'\n')));
    else
        fStatus->ShowHint(Hint());
}

// What the user is doing is not cut off: the new panel waits for its end.
void WorkbenchView::FollowFiles() {
    fPanelIsStale = fPanels->HasChanged() || fPanelIsStale;
    if (!fPanelIsStale || fIsInInput) return;
    ShowPanel();
    Arrange();
}

void WorkbenchView::ShowHistory() {
    qohost::UndoHistory& history = fSession.History();
    fSeenDirtyCount = fSession.Filter()->GetParameterDirtyCount();
    fCouldUndo = history.CanUndo();
    fCouldRedo = history.CanRedo();
    fHeader->SetUndo(fCouldUndo, history.UndoName());
    fHeader->SetRedo(fCouldRedo, history.RedoName());
}

void WorkbenchView::ShowState() {
    const kroui::ui::UI_Window* const window = UI_GetWindow();
    if (!window) return;
    constexpr double kPercent = 100;
    fStatus->SetState(krocore::ReplacePlaceholders(
        krocore::Localize("$$$/Workbench/State=zoom @0 %  @1"),
        {krocore::FormatNumber(fZoom * kPercent, 0), krocore::FromASCII(window->GetTheme().Name())}));
}

void WorkbenchView::UI_SizeChanged(const kroui::RectT<float>& /*rect*/) {
    Arrange();
}

void WorkbenchView::Arrange() {
    const float width = std::max(UI_GetFrame().width, kSmallestSize.width);
    const float height = std::max(UI_GetFrame().height, kSmallestSize.height);
    const float status = height - StatusLine::kHeight;
    const float transport = status - TransportBar::kHeight;
    const float waveHeight = std::round(std::clamp(height * kWaveformPart, kLowestWaveform, kHighestWaveform));
    const float wave = transport - waveHeight;
    const float centre = EffectList::kWidth;
    const bool isNarrow = width < kNarrowWindow;
    const float margin = isNarrow ? kNarrowMargin : kMargin;
    const float metersWidth = isNarrow ? kNarrowMetersWidth : kMetersWidth;
    const float meters = width - margin - metersWidth;
    const float top = HeaderBar::kHeight + margin;
    const float room = wave - margin - top;

    fHeader->UI_SetFrame({0, 0, width, HeaderBar::kHeight});
    fEffects->UI_SetFrame({0, HeaderBar::kHeight, EffectList::kWidth, transport - HeaderBar::kHeight});
    fWaveform->UI_SetFrame({centre, wave, width - centre, waveHeight});
    fTransport->UI_SetFrame({0, transport, width, TransportBar::kHeight});
    fStatus->UI_SetFrame({0, status, width, StatusLine::kHeight});
    fMeters->UI_SetFrame({meters, top, metersWidth, std::min(room, fMeters->WantedHeight())});
    fPanelPlace->UI_SetFrame({centre + margin, top, meters - margin - centre - margin, room});
    ArrangePanel();
}

void WorkbenchView::ArrangePanel() {
    const kroui::Size size = fPanelCard->UI_GetNaturalSize();
    fPanelCard->UI_SetLocalRect({0, 0, size.width, size.height});
    fPanelPlace->DocumentResized();
}

void WorkbenchView::UI_NodeChanged(NodeChange change) {
    UI_Node::UI_NodeChanged(change);
    if (change == kAttached) {
        fTimer = kroui::ui::UI_NodeManager::Get().GetUniqueTimerID();
        fLastPoll = kroui::ui::UI_NodeManager::Get().Now();
        UI_InstallTimer(kPollSeconds, fTimer);
        fIsIdle = false;
        fWatchTimer = kroui::ui::UI_NodeManager::Get().GetUniqueTimerID();
        if (fPanels && fPanels->IsWatching()) UI_InstallTimer(kWatchSeconds, fWatchTimer);
        UI_GetWindow()->SetUnhandledKeyHandler([this](const KeyEvent& event) { return HandleKey(event); });
        UI_GetWindow()->SetInputObserver([this](bool begins) { FollowInput(begins); });
        ShowState();
    } else if (change == kDetaching) {
        UI_RemoveTimer(fTimer, false);
        UI_RemoveTimer(fWatchTimer, false);
        UI_GetWindow()->SetUnhandledKeyHandler({});
        UI_GetWindow()->SetInputObserver({});
    } else if (change == kThemeChanged) {
        ShowState();
    }
}

bool WorkbenchView::UI_DoTimerNotify(long timerID) {
    if (timerID == fWatchTimer) {
        FollowFiles();
        return true;
    }
    if (timerID != fTimer) return UI_Node::UI_DoTimerNotify(timerID);
    fSession.Poll();
    FollowTransport();
    FollowHistory();
    FollowLevels();
    fPanelCard->FollowPanel();
    SetPace();
    return true;
}

// What the user does is one step to take back, however the panel writes it.
void WorkbenchView::FollowInput(bool begins) {
    fIsInInput = begins;
    if (begins) return fSession.History().InputBegins();
    qohost::UndoHistory& history = fSession.History();
    if (history.IsGestureOpen(kroaudiofilterhost::AudioFilter::kAllParameters)) fPanelCard->ReleaseControls();
    history.InputEnds();
}

void WorkbenchView::SetPace() {
    const bool isIdle = !fSession.Engine().IsPlaying() && fMeters->IsAtRest();
    if (isIdle == fIsIdle || fTimer == 0) return;
    fIsIdle = isIdle;
    UI_InstallTimer(isIdle ? kIdlePollSeconds : kPollSeconds, fTimer);
}

void WorkbenchView::FollowTransport() {
    const double position = fSession.Position();
    fTransport->SetPlaying(fSession.Engine().IsPlaying());
    fTransport->SetTime(position, fSession.CurrentSound().Seconds());
    fWaveform->SetPosition(position);
}

void WorkbenchView::FollowHistory() {
    const qohost::UndoHistory& history = fSession.History();
    const bool isSame = fSession.Filter()->GetParameterDirtyCount() == fSeenDirtyCount &&
                        history.CanUndo() == fCouldUndo && history.CanRedo() == fCouldRedo;
    if (!isSame) ShowHistory();
}

void WorkbenchView::FollowLevels() {
    const double now = kroui::ui::UI_NodeManager::Get().Now();
    const auto seconds = static_cast<float>(now - fLastPoll);
    fLastPoll = now;
    qohost::PlaybackEngine& engine = fSession.Engine();
    const std::size_t inputs = fSession.Filter()->GetNumberOfInputChannels();
    for (std::size_t i = 0; i < fPeaks.size(); ++i)
        fPeaks[i] = i < inputs ? engine.TakeInputPeak(i) : engine.TakeOutputPeak(i - inputs);
    fMeters->Feed(fPeaks, seconds);
}

bool WorkbenchView::UI_CanAcceptFiles(std::span<const std::filesystem::path> files) const {
    return !files.empty();
}

bool WorkbenchView::UI_DropFiles(std::span<const std::filesystem::path> files, kroui::Point /*position*/) {
    OpenFile(files.front());
    return true;
}

// A key that does something wherever the focus is, unless a control uses it.
struct WorkbenchView::Shortcut {
    Key key;
    char16_t character;
    std::uint8_t modifiers;
    void (WorkbenchView::*action)();
};

bool WorkbenchView::HandleKey(const KeyEvent& event) {
    using kroui::ui::kCommand;
    using kroui::ui::kNoModifier;
    using kroui::ui::kShift;
    static constexpr Shortcut kShortcuts[] = {
        {Key::kSpace, 0, kNoModifier, &WorkbenchView::PlayOrPause},
        {Key::kEscape, 0, kNoModifier, &WorkbenchView::Stop},
        {Key::kCharacter, u'l', kNoModifier, &WorkbenchView::ToggleLoop},
        {Key::kCharacter, u'b', kNoModifier, &WorkbenchView::ToggleBypass},
        {Key::kCharacter, u'z', kCommand, &WorkbenchView::Undo},
        {Key::kCharacter, u'z', kCommand | kShift, &WorkbenchView::Redo},
        {Key::kCharacter, u'y', kCommand, &WorkbenchView::Redo},
        {Key::kCharacter, u't', kCommand, &WorkbenchView::ToggleTheme},
        {Key::kCharacter, u'+', kCommand, &WorkbenchView::ZoomIn},
        {Key::kCharacter, u'+', kCommand | kShift, &WorkbenchView::ZoomIn},
        {Key::kCharacter, u'=', kCommand, &WorkbenchView::ZoomIn},
        {Key::kCharacter, u'=', kCommand | kShift, &WorkbenchView::ZoomIn},
        {Key::kCharacter, u'-', kCommand, &WorkbenchView::ZoomOut},
        {Key::kCharacter, u'0', kCommand, &WorkbenchView::ZoomToNormal},
    };
    for (const Shortcut& shortcut : kShortcuts) {
        const bool isMeant = shortcut.key == event.key && shortcut.modifiers == event.modifiers &&
                             (event.key != Key::kCharacter || shortcut.character == event.character);
        if (!isMeant) continue;
        (this->*shortcut.action)();
        return true;
    }
    return false;
}

void WorkbenchView::PlayOrPause() {
    fSession.Engine().IsPlaying() ? fSession.Stop() : fSession.Play();
    FollowTransport();
    SetPace();
}

void WorkbenchView::Stop() {
    fSession.StopOrRewind();
    FollowTransport();
}

void WorkbenchView::Seek(double seconds) {
    fSession.Seek(seconds);
    FollowTransport();
}

void WorkbenchView::Undo() {
    fSession.History().Undo();
    ShowHistory();
}

void WorkbenchView::Redo() {
    fSession.History().Redo();
    ShowHistory();
}

void WorkbenchView::SetLooping(bool looping) {
    fSession.Engine().SetLoop(looping);
    fTransport->SetLooping(looping);
}

void WorkbenchView::SetBypassed(bool bypassed) {
    fSession.Engine().SetBypass(bypassed);
    fTransport->SetBypassed(bypassed);
}

void WorkbenchView::ToggleTheme() {
    const bool isDark = &UI_GetWindow()->GetTheme() == &Theme::Dark();
    UI_GetWindow()->SetTheme(isDark ? Theme::Light() : Theme::Dark());
}

void WorkbenchView::SetZoom(float zoom) {
    fZoom = std::clamp(zoom, kSmallestZoom, fLargestZoom);
    if (UI_GetWindow()) UI_GetWindow()->SetZoom(fZoom);
    ShowState();
}

void WorkbenchView::ZoomIn() {
    SetZoom(fZoom * kZoomStep);
}

void WorkbenchView::ZoomOut() {
    SetZoom(fZoom / kZoomStep);
}

void WorkbenchView::ZoomToNormal() {
    SetZoom(1);
}

} // namespace workbench
