#pragma once

#include "kroui/controls/ScrollView.h"
#include "workbench/session/PanelSource.h"
#include "workbench/session/Session.h"
#include "workbench/views/EffectBrowser.h"
#include "workbench/views/LevelMeters.h"
#include "workbench/views/PanelCard.h"
#include "workbench/window/Appearance.h"
#include "workbench/window/HeaderBar.h"
#include "workbench/window/PresetController.h"
#include "workbench/window/RenderController.h"
#include "workbench/window/Shortcuts.h"
#include "workbench/window/StatusLine.h"
#include "workbench/window/TransportController.h"
#include "workbench/window/WorkbenchLayout.h"

namespace workbench {

// Everything in the window: arranges the parts, carries what the user does to the session and what the session does to
// the parts. Takes sound files dropped on it and, while attached, the keys that no control uses.
class WorkbenchView final : public kroui::ui::UI_Node {
public:
    static constexpr kroui::Size kDefaultSize = {1440, 920};
    static constexpr kroui::Size kSmallestSize = WorkbenchLayout::kSmallestSize;

    // Session and source outlive the view. `panels` makes the panels; null: they are as the library has them. If it
    // watches a folder, the panel follows the files in it, keeping the filter with its values and history.
    WorkbenchView(Session& session, const EffectList::Effects& effects, PanelSource* panels = nullptr);

    // False, with a message on the status line and everything as before, when that is not possible.
    bool OpenFile(const std::filesystem::path& file);
    bool ChooseEffect(const qoc::components::EffectDescription& effect);

    // The user's magnification, from when the view is attached; held within what is useful and the largest one.
    void SetZoom(float zoom) { fAppearance.SetZoom(zoom); }
    void SetLargestZoom(float zoom) { fAppearance.SetLargestZoom(zoom); }

    // "file - Effect - Workbench".
    krocore::string16 Title() const;
    // Called when the title is another.
    void SetTitleListener(boost::function<void()> listener) { fTitleListener = std::move(listener); }

    bool UI_ClipsChildren() const override { return true; }
    void UI_SizeChanged(const kroui::RectT<float>& rect) override;
    void UI_NodeChanged(NodeChange change) override;
    bool UI_DoTimerNotify(long timerID) override;
    bool UI_CanAcceptFiles(std::span<const std::filesystem::path> files) const override;
    bool UI_DropFiles(std::span<const std::filesystem::path> files, kroui::Point position) override;

private:
    bool HandleKey(const kroui::ui::KeyEvent& event);
    void Do(Command command);
    void Undo();
    void Redo();

    void BuildParts(const EffectList::Effects& effects);
    void Arrange();
    void ArrangePanel();
    void ShowSound();
    void ShowEffect();
    void ShowPanel();
    void FollowFiles();
    void TellUnusedFile();
    void FollowPanelProblem();
    void ShowHistory();
    void FollowInput(bool begins);
    void SetPace();
    void FollowHistory();
    void FollowSound();
    void FollowOutput();
    void FollowLevels();

    Session& fSession;
    PanelSource* fPanels;
    boost::function<void()> fTitleListener;
    Appearance fAppearance;
    boost::intrusive_ptr<StatusLine> fStatus;
    PresetController fPresets;
    RenderController fRendering;
    TransportController fTransport;
    boost::intrusive_ptr<HeaderBar> fHeader;
    boost::intrusive_ptr<EffectBrowser> fEffects;
    boost::intrusive_ptr<kroui::controls::ScrollView> fPanelPlace;
    boost::intrusive_ptr<PanelCard> fPanelCard;
    boost::intrusive_ptr<LevelMeters> fMeters;
    std::vector<float> fPeaks; // reused at every poll
    long fTimer = 0;
    long fWatchTimer = 0;
    bool fIsInInput = false;        // the user is doing something
    bool fPanelIsStale = false;     // its files have changed
    krocore::string16 fToldProblem; // of the running panel
    krocore::string16 fToldOutputProblem;
    double fLastPoll = 0; // seconds
    std::int32_t fSeenDirtyCount = 0;
    bool fCouldUndo = false;
    bool fCouldRedo = false;
    bool fIsIdle = false; // nothing moves: polls less often
};

} // namespace workbench
