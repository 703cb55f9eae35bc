#include "FakeFilter.h"
#include "TestModule.h"
#include "krocore/debug/Trace.h"
#include "krocore/threads/Threads.h"
#include "krotarnlio/UI_KROLioRoot.h"
#include "kroui/controls/UI_ControlView.h"
#include "kroui/limner/CairoSupplier.h"
#include "kroui/ui/HeadlessWindow.h"
#include "orrin/error.h"
#include "qoc/components/ComponentIDs.h"
#include "qocui/controls/TarnLioAudioComponentEditorView.h"

#include <gmock/gmock.h>

#include <sstream>

using namespace kroui;
using qocui::controls::TarnLioAudioComponentEditorView;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

constexpr const char* kOneNumberLayout =
    "layout P { view subview() { column() { checkbox(identifier: 'Box', name: 'On', bind: @on); } } }";

class CurveFilter : public test::FakeFilter {
public:
    using test::FakeFilter::FakeFilter;
    bool GetResponseCurve(int index, std::size_t size, std::vector<float>& values) const override {
        ++requests;
        values.assign(size, static_cast<float>(index));
        return true;
    }
    mutable int requests = 0;
};

class Host : public kroaudiofilterhost::AudioFilterHost {
public:
    kroaudiofilterhost::AudioFilterTimeFormat GetTimeFormat() const override { return {3, 25, 12.5}; }
    kroaudiofilterhost::AudioFilterTempo GetTempo() const override { return {960, 90.5, 3, 8, 250.25}; }
};

class OpenView : public TarnLioAudioComponentEditorView {
public:
    OpenView(boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> filter,
             const kroui::limner::SupplierInterface* supplier, krocore::ModuleInstance module)
        : TarnLioAudioComponentEditorView(std::move(filter), supplier, u"Panel", module) {
        CreateLayout();
    }
    using TarnLioAudioComponentEditorView::GetLioRoot;
    using TarnLioAudioComponentEditorView::SyncParameters;
    using TarnLioAudioComponentEditorView::UI_DoMouseEvent;
};

class ScriptViewTest : public testing::Test {
protected:
    ~ScriptViewTest() override { fWindow.Window().SetContent(nullptr); }

    void Open(const std::string& sheet, const std::string& layout = kOneNumberLayout) {
        fModule.Add("TRN", "PANEL", sheet);
        fModule.Add("LIO", "PANEL", layout);
        fView.reset(new OpenView(fFilter, &fSupplier, fModule.Instance()));
        fFilter->TakeLog();
    }
    // Text that a display_text of the layout shows.
    std::string Shown(std::string_view identifier) {
        const ui::UI_Node* const node = fView->GetLioRoot()->GetViewHolder().GetControl(identifier);
        return node ? krocore::ToStdString(node->UI_GetAccessibleInfo().value) : "no " + std::string(identifier);
    }
    controls::UI_ControlView& Control(std::string_view identifier) {
        return dynamic_cast<controls::UI_ControlView&>(*fView->GetLioRoot()->GetViewHolder().GetControl(identifier));
    }
    void Click(std::string_view identifier) {
        fWindow.Window().SetContent(fView);
        fWindow.Click(ui::HeadlessWindow::CentreOf(Control(identifier)));
    }

    limner::CairoSupplier fSupplier;
    ui::HeadlessWindow fWindow{fSupplier, {800, 600}};
    test::TestModule fModule;
    boost::intrusive_ptr<CurveFilter> fFilter{new CurveFilter(4)};
    boost::intrusive_ptr<OpenView> fView;
};

constexpr const char* kSwitchSheet = "sheet P { input: in0: 0.5; in1: 0.5;"
                                     "interface: unlink on: in0 >= 0.5; unlink other: in1;"
                                     "output: out0 <== on ? 1 : 0; out1 <== other; }";

TEST_F(ScriptViewTest, AUsersChangeIsWrittenAndAFiltersChangeIsShownWithoutAnEcho) {
    Open(kSwitchSheet);
    EXPECT_THAT(fFilter->TakeLog(), IsEmpty());
    Click("Box");
    EXPECT_THAT(fFilter->TakeLog(), ElementsAre("set 0 1"));
    fFilter->Store(0, 0.25F);
    fWindow.Advance(0.011);
    EXPECT_THAT(fFilter->TakeLog(), IsEmpty()) << "0.25 is shown as off, which would be written as 0";
    EXPECT_EQ(fFilter->GetParameterValue(0), 0.25F);
    Click("Box");
    EXPECT_THAT(fFilter->TakeLog(), ElementsAre("set 0 1"));
    Click("Box");
    EXPECT_THAT(fFilter->TakeLog(), ElementsAre("set 0 0"));
}

TEST_F(ScriptViewTest, ValuesOutsideTheRangePassAndAreTracedInBothDirections) {
    std::string traced;
    const auto sink = krocore::debug::SetTraceSink([&](std::string_view text) { traced += text; });
    krocore::debug::SetTraceLevel("*", 5);
    Open("sheet P { input: in2: 0; interface: unlink on: false; output: out3 <== on ? 1.5 : 0; }");
    const auto line = [](const char* operation, const char* rest) {
        std::ostringstream text;
        text << "<" << krocore::threads::GetCurrentThreadID() << "> <TarnLioAudioComponentEditorView::" << operation
             << "> <5> " << rest << "\n";
        return text.str();
    };
    Click("Box");
    EXPECT_EQ(fFilter->GetParameterValue(3), 1.5F);
    EXPECT_EQ(traced, line("OnParameterChanged", "(from UI) parameter out of range: index = 3, value = 1.5"));
    traced.clear();
    fFilter->Store(2, -0.1F);
    fView->SyncParameters();
    EXPECT_EQ(traced, line("SyncParameters", "(from component) parameter out of range: index = 2, value = -0.1"));
    krocore::debug::SetTraceLevel("*", 0);
    krocore::debug::SetTraceSink(sink);
}

TEST_F(ScriptViewTest, AnExpressionThatFailsIsTracedWithItsPlace) {
    std::string traced;
    const auto sink = krocore::debug::SetTraceSink([&](std::string_view text) { traced += text; });
    krocore::debug::SetTraceLevel("TarnLioAudioComponentEditorView::Sheet", 1);
    Open("sheet P { input: in0: 0; output: out1 <== in0 > 0.5 ? in0 + 'a' : 0; }", "layout P { view row(); }");
    fFilter->Store(0, 1);
    fView->SyncParameters();
    EXPECT_EQ(traced, "property model description:1:59: cell 'out1': "
                      "'+' needs two numbers or two strings, not a number and a string\n");
    krocore::debug::SetTraceLevel("TarnLioAudioComponentEditorView::Sheet", 0);
    krocore::debug::SetTraceSink(sink);
}

TEST_F(ScriptViewTest, AnOutputThatIsNoNumberKeepsWhatTheFilterHasAndIsToldWithItsPlace) {
    Open("sheet P { input: in0: 0.5; in1: 0.5;\ninterface: unlink on: in0 >= 0.5;\n"
         "output: out0 <== on ? 1 : 0;\n  out1 <== on ? 0.5 : !on;\n  out2 <== on ? 0 : 1 / 0; }");
    fFilter->Store(0, 1);
    fFilter->Store(1, 0.5F);
    fView->SyncParameters();
    EXPECT_THAT(fView->GetProblems(), IsEmpty());
    fFilter->TakeLog();
    Click("Box");
    fWindow.Advance(0.011);
    EXPECT_THAT(fFilter->TakeLog(), ElementsAre("set 0 0"));
    EXPECT_EQ(fFilter->GetParameterValue(1), 0.5F);
    ASSERT_EQ(fView->GetProblems().size(), 2U);
    EXPECT_STREQ(fView->GetProblems()[0].what(), "Panel.trn:4:3: cell 'out1': an output needs a number, not a bool");
    EXPECT_STREQ(fView->GetProblems()[1].what(),
                 "Panel.trn:5:3: cell 'out2': an output needs a number, not one that is infinite or undefined");
    EXPECT_NE(fView->UI_GetAccessibleInfo().value, u"");
    Click("Box");
    fWindow.Advance(0.011);
    EXPECT_THAT(fFilter->TakeLog(), testing::Contains("set 0 1"));
    EXPECT_THAT(fView->GetProblems(), IsEmpty());
}

// The first output is half of what is clicked, so that it comes back rounded.
TEST_F(ScriptViewTest, APollLeavesAloneWhatTheEffectDoesNotKnow) {
    Open("sheet P { input: in0: 0; interface: unlink on: in0 > 0.01; unlink page: 0; unlink other: in0;"
         "logic: text <== serialize_regular([page, other > 0.32]);"
         "output: out0 <== on ? 0.1 : 0.3; out1 <== page / 3; }",
         "layout P { view subview() { checkbox(identifier: 'Box', name: 'On', bind: @on);"
         "radio_button(identifier: 'Page', name: 'Page', bind: @page, value: 1);"
         "display_text(identifier: 'Text', value: @text); } }");
    Click("Page");
    Click("Box");
    fWindow.Advance(0.1);
    EXPECT_EQ(Shown("Text"), "[1, false]");
    fFilter->Store(0, 0.4F);
    fWindow.Advance(0.1);
    EXPECT_EQ(Shown("Text"), "[1, true]");
}

// What calls a function is computed again at each push, so that the requests count them.
TEST_F(ScriptViewTest, APollPushesOnlyAfterAChangeOrANewSuspendedState) {
    Open("sheet P { input: in0: 0; suspended: false; interface: unlink on: suspended;"
         "logic: curve <== get_curve_data({ index: 2, size: 3 }); output: out1 <== in0; }",
         "layout P { view subview() { checkbox(identifier: 'Box', name: 'On', bind: @on); } }");
    const int opened = fFilter->requests;
    fView->SyncParameters();
    EXPECT_EQ(fFilter->requests, opened);
    fFilter->Store(0, 0.5F);
    fView->SyncParameters();
    EXPECT_EQ(fFilter->requests, opened + 1);
    fFilter->SetSuspended(!fFilter->IsSuspended());
    fView->SyncParameters();
    EXPECT_EQ(fFilter->requests, opened + 2) << "all parameters, though none has changed";
    fView->SyncParameters();
    EXPECT_EQ(fFilter->requests, opened + 2);
}

TEST_F(ScriptViewTest, TheSheetGetsTheHostsTimeOnceAndTheFiltersRateAndDuration) {
    Host host;
    fFilter->SetAudioFilterHost(&host);
    fFilter->Prepare(44100.7F, 64, kromediatypes::AudioChannelLayout::Stereo());
    fFilter->SetDuration(88200);
    Open("sheet P { input: time_format: {}; sample_rate: 0; current_duration: 0; suspended: false;"
         "interface: unlink on: false;"
         "logic: time <== serialize_regular(time_format);"
         "rest <== serialize_regular([sample_rate > 44100.6, current_duration, suspended]); }",
         "layout P { view subview() { display_text(identifier: 'Time', value: @time);"
         "display_text(identifier: 'Rest', value: @rest); } }");
    for (const char* const part :
         {"sample_rate: 44100", "format: 3", "current_fps: 25", "custom_fps: 12.5", "beatinfo_ticks_per_quarter: 960",
          "beatinfo_beats_per_minute: 90.5", "beatinfo_beats_per_bar: 3", "beatinfo_note_len: 8",
          "beatinfo_beat_offset_ms: 250.25"})
        EXPECT_THAT(Shown("Time"), HasSubstr(part));
    EXPECT_EQ(Shown("Rest"), "[true, 88200, true]");
    fFilter->SetAudioFilterHost(nullptr);
}

TEST_F(ScriptViewTest, APressOnTheGroundOpensAGestureAndTheReleaseOfAControlClosesIt) {
    Open(kSwitchSheet);
    ui::MouseEvent press;
    press.action = ui::MouseEvent::Action::kPressed;
    EXPECT_FALSE(fView->UI_DoMouseEvent(&Control("Box"), press));
    EXPECT_THAT(fFilter->TakeLog(), IsEmpty()) << "aimed at a widget";
    EXPECT_FALSE(fView->UI_DoMouseEvent(nullptr, press));
    press.action = ui::MouseEvent::Action::kReleased;
    EXPECT_FALSE(fView->UI_DoMouseEvent(nullptr, press));
    fView->ControlReleased();
    EXPECT_THAT(fFilter->TakeLog(), ElementsAre("begin -1", "end -1"));
    EXPECT_EQ(fView->UI_GetStateFlags() & 16U, 16U);
}

TEST_F(ScriptViewTest, APartThatComesAndGoesResizesTheViewAndTellsTheHostOnce) {
    Open("sheet P { input: in0: 0; interface: unlink on: in0 >= 0.5; output: out0 <== on ? 1 : 0; }",
         "layout P { view subview() { column() { checkbox(identifier: 'Box', name: 'On', bind: @on);"
         "optional(bind: @on, value: true) { static_text(name: 'More'); } } } }");
    const Rect before = fView->UI_GetFrame();
    EXPECT_FALSE(before.IsEmpty());
    EXPECT_EQ(before, fView->GetLioRoot()->GetTopNode()->UI_GetFrame());
    int told = 0;
    fView->GetContentSizeChangedSignal().connect([&] { ++told; });
    Click("Box");
    EXPECT_EQ(told, 1);
    EXPECT_GT(fView->UI_GetFrame().height, before.height);
    fFilter->Store(0, 0);
    fView->SyncParameters();
    EXPECT_EQ(told, 2);
    EXPECT_EQ(fView->UI_GetFrame().height, before.height);
    fFilter->Store(0, 0.25F);
    fView->SyncParameters();
    EXPECT_EQ(told, 2) << "the same size";
}

TEST_F(ScriptViewTest, WithoutBothScriptsThePanelIsEmptyAndABrokenOneThrows) {
    fModule.Add("TRN", "PANEL", "sheet P { this is not read");
    fView.reset(new OpenView(fFilter, &fSupplier, fModule.Instance()));
    EXPECT_TRUE(fView->UI_GetFrame().IsEmpty());
    EXPECT_NE(TarnLioAudioComponentEditorView::Create(fFilter, &fSupplier, u"PANEL", nullptr), nullptr);
    fView.reset();
    fModule.Add("LIO", "PANEL", kOneNumberLayout);
    const long references = fFilter->ReferenceCount();
    try {
        TarnLioAudioComponentEditorView::Create(fFilter, &fSupplier, u"panel", fModule.Instance());
        FAIL() << "opened";
    } catch (const orrin::error_t& error) {
        EXPECT_THAT(error.what(), HasSubstr("property model description:1:"));
    }
    EXPECT_EQ(fFilter->ReferenceCount(), references);
}

TEST_F(ScriptViewTest, ChannelsAreNamedByTheirLabelsOrNumbers) {
    fFilter->Prepare(44100, 64,
                     kromediatypes::AudioChannelLayout{kromediatypes::kAudioChannelLabelLeftSurround,
                                                       kromediatypes::kAudioChannelLabelUnknown});
    const std::pair<const char*, const char*> calls[] = {
        {"get_input_channel_abbrev(0)", "\"Ls\""},
        {"get_input_channel_name(0)", "\"Left Surround\""},
        {"get_output_channel_name(1)", "\"2\""},
        {"get_output_channel_abbrev(1.9)", "\"2\""},
        {"get_input_channel_name(2)", "\"\""},
        {"get_input_channel_name(-1)", "\"\""},
        {"get_input_channel_name('0')", "\"\""},
        {"get_output_channel_abbrev_array()", "[{name: \"Ls\", value: 0}, {name: \"2\", value: 1}]"},
        {"get_output_channel_name_array()", "[{name: \"Left Surround\", value: 0}, {name: \"2\", value: 1}]"},
        {"get_curve_data({ index: 2, size: 3 })", "[2, 2, 2]"},
        {"get_curve_data({ index: 1 })", "[]"},
        {"trace([@align_fill])", "[@align_fill]"},
        {"dictionary_union([{ a: 1 }, { b: 2 }])", "{a: 1, b: 2}"},
        {"has_key({ a: 1 }, @a)", "true"},
        {"string_to_name(name_to_string(@a))", "@a"},
        {"evaluate_serialization(serialize_regular([1, 'x']))", "[1, \"x\"]"},
        {"evaluate_token_stream(tokenize_regular({ a: 1 }))", "{a: 1}"},
        {"default_maximum() > 1e300 && default_minimum() < -1e300", "true"},
    };
    for (const auto& [call, expected] : calls) {
        Open("sheet P { interface: unlink on: false; logic: text <== serialize_regular(" + std::string(call) + "); }",
             "layout P { view subview() { display_text(identifier: 'Text', value: @text); } }");
        EXPECT_EQ(Shown("Text"), expected) << call;
        fModule = {};
    }
}

TEST_F(ScriptViewTest, ALayoutKnowsTheReflectedNamesAndNoCells) {
    Open(kSwitchSheet, "layout P { view subview() { column(child_horizontal: align_fill) { } } }");
    try {
        fModule = {};
        Open(kSwitchSheet, "layout P { view subview() { static_text(name: on); } }");
        FAIL() << "opened";
    } catch (const orrin::error_t& error) {
        EXPECT_THAT(error.what(), HasSubstr("Variable lookup failed"));
        EXPECT_THAT(error.what(), HasSubstr("layout description:1:"));
    }
}

TEST_F(ScriptViewTest, TheAnalysisOfPhaseCorrectionCanBeChangedOnlyWhileSuspended) {
    const std::string layout =
        "layout P { view subview() { checkbox(identifier: 'Checkbox_globalTimeShift', name: 'Shift', bind: @on);"
        "checkbox(identifier: 'Popup_AnalysisSize', name: 'Size', bind: @on);"
        "checkbox(identifier: 'Other', name: 'Other', bind: @on); } }";
    const std::pair<krocore::string16, bool> cases[] = {
        {krocore::string16(qoc::components::kAutoPhaseCorrectionComponentID), true}, {u"test.Fake", false}};
    for (const auto& [component, isDisabled] : cases) {
        fFilter.reset(new CurveFilter(4, component));
        fFilter->SetSuspended(true);
        fModule = {};
        Open(kSwitchSheet, layout);
        EXPECT_TRUE(Control("Popup_AnalysisSize").IsEnabled());
        fFilter->SetSuspended(false);
        fView->SyncParameters();
        EXPECT_EQ(Control("Checkbox_globalTimeShift").IsDisabled(), isDisabled);
        EXPECT_EQ(Control("Popup_AnalysisSize").IsDisabled(), isDisabled);
        EXPECT_TRUE(Control("Other").IsEnabled());
        fFilter->SetSuspended(true);
        fView->SyncParameters();
        EXPECT_TRUE(Control("Checkbox_globalTimeShift").IsEnabled());
    }
}

} // namespace
