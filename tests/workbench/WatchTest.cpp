#include "TemporaryFolder.h"
#include "WorkbenchFixture.h"

#include "SourcePaths.h"
#include "krocore/config/Error.h"
#include "workbench/session/ScriptEffect.h"

#include <gmock/gmock.h>

#include <chrono>

namespace workbench {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

constexpr const char* kSheet = "sheet a {\n"
                               "input: in0: 0.25; in1: 0.5;\n"
                               "interface: unlink on: in0 >= 0.5; unlink other: in1;\n"
                               "output: out0 <== on ? 1 : 0; out1 <== other;\n"
                               "}\n";
constexpr const char* kLayout = "layout a { view subview() {\n"
                                "checkbox(bind: @on, name: 'On', identifier: 'on');\n"
                                "} }\n";

// The workbench over a folder that an author edits, with the author's own pair of scripts.
class Watch : public testing::Test {
protected:
    Watch() : fWindow(fLibrary.Supplier(), WorkbenchView::kDefaultSize) {
        fFolder.Write("Mine.trn", kSheet);
        fFolder.Write("Mine.lio", kLayout);
        fPanels.Watch(fFolder.Path());
        fScripts.emplace("MINE");
        EffectList::Effects effects = AvailableEffects();
        effects.push_back(&fScripts->Description());
        Session::Beginning beginning;
        beginning.filter = fScripts->Filter();
        fSession.emplace(fOutput, fScripts->Description(), std::move(beginning));
        fView = new WorkbenchView(*fSession, effects, &fPanels);
        fView->UI_SetFrame({0, 0, WorkbenchView::kDefaultSize.width, WorkbenchView::kDefaultSize.height});
        fWindow.Window().SetContent(fView);
        fWindow.Advance(kWhile);
    }
    ~Watch() override { fWindow.Window().SetContent(nullptr); }

    // Long enough for two looks at the folder.
    static constexpr double kWhile = 0.6;

    // As an editor does it; the time differs from that of the version before.
    void Save(const std::string& name, const std::string& text) {
        fFolder.Write(name, text);
        fTime += std::chrono::seconds(2);
        std::filesystem::last_write_time(fFolder.Path(name), fTime);
        fWindow.Advance(kWhile);
    }
    kroui::ui::UI_Node* Find(std::string_view id) { return fView->UI_FindNode(id); }
    kroui::ui::UI_Node& Node(std::string_view id) {
        if (auto* const node = Find(id)) return *node;
        throw std::runtime_error("no node " + std::string(id));
    }
    void Click(std::string_view id) {
        fWindow.Click(kroui::ui::HeadlessWindow::CentreOf(Node(id)));
        fWindow.Advance(kWhile);
    }
    // What stands in the panel's place.
    std::string Message() { return krocore::ToStdString(Node("panel").UI_GetAccessibleInfo().value); }
    std::string Status() { return krocore::ToStdString(Node("message").UI_GetAccessibleInfo().name); }
    float Value(int index) { return fSession->Filter()->GetParameterValue(index); }
    static std::string Replaced(std::string text, const std::string& what, const std::string& with) {
        return text.replace(text.find(what), what.size(), with);
    }

    TemporaryFolder fFolder;
    std::filesystem::file_time_type fTime = std::filesystem::file_time_type::clock::now();
    PanelsLibrary fLibrary;
    PanelSource fPanels{fLibrary};
    kroui::ui::HeadlessWindow fWindow;
    SilentOutput fOutput;
    std::optional<ScriptEffect> fScripts;
    std::optional<Session> fSession;
    boost::intrusive_ptr<WorkbenchView> fView;
};

TEST_F(Watch, ScriptsWithoutAnEffectHaveTheSheetsInputsForParameters) {
    EXPECT_EQ(fSession->Filter()->GetParameterCount(), 2);
    EXPECT_EQ(Value(0), 0.25F);
    EXPECT_EQ(Value(1), 0.5F);
    Click("on");
    EXPECT_EQ(Value(0), 1.0F);
    Click("undo");
    EXPECT_EQ(Value(0), 0.25F);
    EXPECT_THROW(ScriptEffect("nowhere"), krocore::config::Error);
}

TEST_F(Watch, AnEditedFileShowsAtOnceAndTheFilterKeepsItsValuesAndHistory) {
    Click("on");
    Save("Mine.lio", Replaced(kLayout, "checkbox(bind: @on, name: 'On', identifier: 'on');",
                              "checkbox(bind: @on, name: 'New', identifier: 'new');"));
    EXPECT_EQ(Find("on"), nullptr);
    EXPECT_EQ(Node("new").UI_GetAccessibleInfo().value, u"on");
    EXPECT_EQ(Value(0), 1.0F);
    Click("undo");
    EXPECT_EQ(Value(0), 0.25F);
    EXPECT_EQ(Node("new").UI_GetAccessibleInfo().value, u"off");
}

TEST_F(Watch, ABrokenFileShowsItsFaultsInThePanelsPlaceAndRecoversWhenMended) {
    Click("on");
    Save("Mine.lio", Replaced(kLayout, "@on", "@off"));
    EXPECT_EQ(Find("on"), nullptr);
    EXPECT_EQ(Message(),
              fFolder.Path("Mine.lio").string() + ":2:10: 'bind' needs the name of a cell; the sheet has no 'off'");
    Save("Mine.trn", "sheet a {");
    EXPECT_THAT(Message(), HasSubstr("Mine.trn:1:10: expected "));
    Save("Mine.lio", kLayout);
    Save("Mine.trn", kSheet);
    EXPECT_NE(Find("on"), nullptr);
    EXPECT_EQ(Value(0), 1.0F); // all the time
    EXPECT_EQ(Value(1), 0.5F);
}

TEST_F(Watch, AFileThatIsReplacedByAnotherOneOrGoneForAMomentIsFollowed) {
    fFolder.Write("Mine.lio.new", Replaced(kLayout, "'on'", "'replaced'"));
    std::filesystem::rename(fFolder.Path("Mine.lio.new"), fFolder.Path("Mine.lio"));
    fWindow.Advance(kWhile);
    EXPECT_NE(Find("replaced"), nullptr);

    std::filesystem::remove(fFolder.Path("Mine.lio"));
    fWindow.Advance(0.25); // one look sees nothing
    EXPECT_NE(Find("replaced"), nullptr);
    Save("Mine.lio", Replaced(kLayout, "'on'", "'back'"));
    EXPECT_NE(Find("back"), nullptr);

    std::filesystem::remove(fFolder.Path("Mine.lio"));
    fWindow.Advance(kWhile);
    EXPECT_THAT(Message(), HasSubstr("Mine.trn:1:1: there is no mine.lio beside it"));
}

TEST_F(Watch, AFileThatIsBeingWrittenIsWaitedFor) {
    for (const std::size_t length : {std::size_t(5), std::size_t(20), std::size_t(40)}) {
        fFolder.Write("Mine.lio", std::string(kLayout).substr(0, length));
        fWindow.Advance(0.25);
        EXPECT_NE(Find("on"), nullptr) << length;
    }
    Save("Mine.lio", kLayout);
    EXPECT_NE(Find("on"), nullptr);
}

TEST_F(Watch, ANewPanelWaitsForTheEndOfADrag) {
    const kroui::Point place = kroui::ui::HeadlessWindow::CentreOf(Node("on"));
    fWindow.Press(place);
    Save("Mine.lio", Replaced(kLayout, "'on'", "'later'"));
    EXPECT_NE(Find("on"), nullptr);
    fWindow.Release();
    fWindow.Advance(kWhile);
    EXPECT_NE(Find("later"), nullptr);
    EXPECT_EQ(Value(0), 1.0F);
}

TEST_F(Watch, AFaultThatLetsThePanelWorkStandsBelow) {
    Save("Mine.trn", Replaced(kSheet, "out1 <== other", "out1 <== other == 7 ? nothing(1) : other"));
    EXPECT_NE(Find("on"), nullptr);
    EXPECT_EQ(Message(), "");
    EXPECT_EQ(Status(), fFolder.Path("Mine.trn").string() + ":4:52: there is no function 'nothing'");
    Save("Mine.trn", kSheet);
    EXPECT_THAT(Status(), StartsWith("Drag a number"));
}

TEST_F(Watch, AnOutputThatTurnsOutToBeNoNumberIsToldAndTheProgramGoesOn) {
    Save("Mine.trn", Replaced(kSheet, "out1 <== other", "out1 <== on ? !on : other"));
    Click("on");
    EXPECT_EQ(Value(0), 1.0F);
    EXPECT_EQ(Value(1), 0.5F);
    EXPECT_EQ(Status(), "MINE.trn:4:30: cell 'out1': an output needs a number, not a bool");
    Click("on");
    EXPECT_EQ(Value(0), 0.0F);
    EXPECT_THAT(Status(), StartsWith("Drag a number"));
}

TEST_F(Watch, AFileThatNoPanelIsMadeOfIsToldOnce) {
    Save("HardLimitUI.lio", "layout");
    EXPECT_EQ(Status(), fFolder.Path("HardLimitUI.lio").string() +
                            ": no effect's panel is made of this file (\"workbench list\" says which); "
                            "\"--scripts hardlimitui\" opens it without one");
    Save("HardLimiterUI.lio", "layout");
    Save("Mine.lio", Replaced(kLayout, "'On'", "'New'"));
    EXPECT_THAT(Status(), StartsWith("Drag a number"));
}

TEST_F(Watch, ArchivesOfTheLibraryAreOverriddenAndTheirFaultsShown) {
    fView->ChooseEffect(EffectFromName("amplify"));
    ASSERT_NE(Find("GainControlsContainer"), nullptr);
    const std::string archive = TemporaryFolder::Contents(QO_SOURCE_DIR "/resources/archives/AMPLIFY.xml");
    Save("Amplify.xml", Replaced(archive, "kroui::controls::UI_Checkbox", "kroui::controls::UI_Chequebox"));
    EXPECT_EQ(Find("GainControlsContainer"), nullptr);
    EXPECT_THAT(Message(), StartsWith(fFolder.Path("Amplify.xml").string() + ":"));
    EXPECT_THAT(Message(), HasSubstr("UI_Chequebox"));
    std::filesystem::remove(fFolder.Path("Amplify.xml"));
    fWindow.Advance(kWhile);
    EXPECT_NE(Find("GainControlsContainer"), nullptr);
}

TEST_F(Watch, FilesOfOtherPanelsDisturbNothing) {
    const kroui::ui::UI_Node* const before = Find("on");
    Save("Other.lio", "layout");
    Save("notes.txt", "text");
    EXPECT_EQ(Find("on"), before);
    EXPECT_EQ(Message(), "");
}

// Counts the brackets that are open.
class OpenGestures final : public kroaudiofilterhost::AudioFilterListener {
public:
    void ParameterChanged(kroaudiofilterhost::AudioFilter&,
                          const kroaudiofilterhost::AudioFilterParameterChange&) override {}
    void ParameterEditBegun(kroaudiofilterhost::AudioFilter&, int) override {
        ++begun;
        ++open;
    }
    void ParameterEditEnded(kroaudiofilterhost::AudioFilter&, int) override { --open; }

    int begun = 0;
    int open = 0;
};

TEST_F(Watch, APressOnThePanelsGroundOpensAGestureThatIsClosedWithTheInput) {
    OpenGestures gestures;
    fSession->Filter()->AddListener(gestures);
    const kroui::Point origin = Node("panel").UI_LocalToWindow({});
    fWindow.Click({origin.x + 2, origin.y + 2});
    EXPECT_EQ(gestures.begun, 1);
    EXPECT_LE(gestures.open, 0);
    fSession->Filter()->RemoveListener(gestures);
    Click("on");
    EXPECT_TRUE(fSession->History().CanUndo());
}

} // namespace
} // namespace workbench
