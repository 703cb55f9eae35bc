#include "workbench/window/WorkbenchView.h"

#include "krocore/Localizer.h"
#include "kroui/ui/UI_NodeManager.h"
#include "kroui/ui/UI_Window.h"
#include "workbench/commands/ProblemText.h"
#include "workbench/commands/TextOfSound.h"

#include <algorithm>
#include <exception>

namespace workbench {

using kroui::ui::KeyEvent;
using qoc::components::EffectDescription;

namespace {

constexpr float kPollSeconds = 1.0F / 30;
// While nothing moves.
constexpr float kIdlePollSeconds = 0.1F;
// How often the files of a panel are looked at.
constexpr float kWatchSeconds = 0.25F;

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
    : fSession(session), fPanels(panels), fStatus(new StatusLine(fAppearance.Button())), fPresets(session, *fStatus),
      fRendering(session, *fStatus), fTransport(session, [this] { Do(Command::kRender); }) {
    UI_SetID("workbench");
    BuildParts(effects);
    ShowSound();
    ShowEffect();
}

void WorkbenchView::BuildParts(const EffectList::Effects& effects) {
    fHeader = new HeaderBar({[this] { Undo(); }, [this] { Redo(); }}, fPresets.Switch(), fPresets.Bar());
    fEffects = new EffectBrowser(effects, EffectSearch(fSession.SavedPresets()),
                                 [this](const EffectDescription& effect) { ChooseEffect(effect); });
    fPanelPlace = new kroui::controls::ScrollView;
    fPanelPlace->UI_SetID("panelPlace");
    fPanelPlace->SetCentred(true);
    fPanelCard = new PanelCard;
    fPanelCard->UI_SetID("panel");
    fPanelCard->SetRounded(true);
    fPanelCard->SetListener([this] { ArrangePanel(); });
    fPanelPlace->SetDocument(fPanelCard);
    fMeters = new LevelMeters;
    fMeters->UI_SetID("levels");
    const boost::intrusive_ptr<UI_Node> parts[] = {
        fHeader, fEffects, fPanelPlace, fMeters, fTransport.Waveform(), fTransport.Bar(), fStatus};
    for (const auto& part : parts)
        ChildPushBack(part);
}

bool WorkbenchView::OpenFile(const std::filesystem::path& file) {
    try {
        fSession.OpenFile(file);
    } catch (const std::exception& error) {
        fStatus->ShowProblem(krocore::ToUTF16(ProblemText(error)));
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
        fStatus->ShowProblem(krocore::ToUTF16(ProblemText(error)));
        return false;
    }
    ShowEffect();
    return true;
}

krocore::string16 WorkbenchView::Title() const {
    return fSession.SoundName() + u" - " + fSession.Effect().DisplayName() + u" - Workbench";
}

void WorkbenchView::ShowSound() {
    fHeader->SetSound(fSession.SoundName(), SoundText(fSession.CurrentSound()));
    fTransport.ShowSound();
    fStatus->ShowHint(Hint());
    fToldOutputProblem.clear();
    FollowOutput();
}

void WorkbenchView::FollowOutput() {
    const krocore::string16 problem = fSession.Output().Problem();
    if (problem == fToldOutputProblem) return;
    fToldOutputProblem = problem;
    if (!problem.empty()) fStatus->ShowProblem(problem);
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
    fPresets.ShowEffect();
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
    TellUnusedFile();
}

void WorkbenchView::TellUnusedFile() {
    const krocore::string16 message = fPanels->TakeUnusedFile();
    if (!message.empty()) fStatus->ShowProblem(message);
}

void WorkbenchView::FollowPanelProblem() {
    const krocore::string16 problem = fPanelCard->PanelProblem();
    if (problem == fToldProblem) return;
    fToldProblem = problem;
    if (problem.empty())
        fStatus->ShowHint(Hint());
    else
        fStatus->ShowProblem(problem);
}

// What the user is doing is not cut off: the new panel waits for its end.
void WorkbenchView::FollowFiles() {
    fPanelIsStale = fPanels->HasChanged() || fPanelIsStale;
    TellUnusedFile();
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
    fPresets.Follow();
}

void WorkbenchView::UI_SizeChanged(const kroui::RectT<float>& /*rect*/) {
    Arrange();
}

void WorkbenchView::Arrange() {
    const WorkbenchLayout layout({UI_GetFrame().width, UI_GetFrame().height});
    kroui::Rect meters = layout.meters;
    meters.height = std::min(meters.height, fMeters->WantedHeight());
    fHeader->UI_SetFrame(layout.header);
    fEffects->UI_SetFrame(layout.browser);
    fPanelPlace->UI_SetFrame(layout.panel);
    fMeters->UI_SetFrame(meters);
    fTransport.Waveform()->UI_SetFrame(layout.waveform);
    fTransport.Bar()->UI_SetFrame(layout.transport);
    fStatus->UI_SetFrame(layout.status);
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
        fAppearance.Show();
    } else if (change == kDetaching) {
        UI_RemoveTimer(fTimer, false);
        UI_RemoveTimer(fWatchTimer, false);
        UI_GetWindow()->SetUnhandledKeyHandler({});
        UI_GetWindow()->SetInputObserver({});
    } else if (change == kThemeChanged) {
        fAppearance.Show();
    }
}

bool WorkbenchView::UI_DoTimerNotify(long timerID) {
    if (timerID == fWatchTimer) {
        FollowFiles();
        return true;
    }
    if (timerID != fTimer) return UI_Node::UI_DoTimerNotify(timerID);
    fSession.Poll();
    fTransport.Follow();
    FollowSound();
    FollowHistory();
    FollowLevels();
    fRendering.Follow(*fTransport.Bar());
    fPanelCard->FollowPanel();
    FollowPanelProblem();
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
    const bool isIdle = !fSession.Engine().IsPlaying() && fMeters->IsAtRest() && !fRendering.IsRendering() &&
                        !fSession.ArePeaksComing();
    if (isIdle == fIsIdle || fTimer == 0) return;
    fIsIdle = isIdle;
    UI_InstallTimer(isIdle ? kIdlePollSeconds : kPollSeconds, fTimer);
}

void WorkbenchView::FollowHistory() {
    const qohost::UndoHistory& history = fSession.History();
    const bool isSame = fSession.Filter()->GetParameterDirtyCount() == fSeenDirtyCount &&
                        history.CanUndo() == fCouldUndo && history.CanRedo() == fCouldRedo;
    if (isSame) return;
    ShowHistory();
}

void WorkbenchView::FollowSound() {
    FollowOutput();
    const krocore::string16 problem = fSession.TakeSoundProblem();
    if (!problem.empty()) fStatus->ShowProblem(problem);
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

bool WorkbenchView::HandleKey(const KeyEvent& event) {
    const auto command = CommandOf(event);
    if (command) Do(*command);
    return command.has_value();
}

void WorkbenchView::Do(Command command) {
    switch (command) {
    case Command::kPlayOrPause: fTransport.PlayOrPause(); break;
    case Command::kStop: fTransport.Stop(); break;
    case Command::kLoop: fTransport.ToggleLoop(); break;
    case Command::kBypass: fTransport.ToggleBypass(); break;
    case Command::kUndo: Undo(); break;
    case Command::kRedo: Redo(); break;
    case Command::kSwitchSlot: fPresets.SwitchSlot(); break;
    case Command::kRender: fRendering.StartOrCancel(); break;
    case Command::kSearch: fEffects->BeginSearch(); break;
    case Command::kSelectAll: fTransport.SelectAll(); break;
    case Command::kToggleTheme: fAppearance.ToggleTheme(); break;
    case Command::kZoomIn: fAppearance.ZoomIn(); break;
    case Command::kZoomOut: fAppearance.ZoomOut(); break;
    case Command::kZoomToNormal: fAppearance.SetZoom(1); break;
    }
    SetPace();
}

void WorkbenchView::Undo() {
    fSession.History().Undo();
    ShowHistory();
}

void WorkbenchView::Redo() {
    fSession.History().Redo();
    ShowHistory();
}

} // namespace workbench
