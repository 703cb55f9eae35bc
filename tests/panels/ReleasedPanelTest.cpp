// A host may close a panel whenever it hears of the effect, in the midst of what the user does in the panel.

#include "PanelWalk.h"
#include "uit/controls/UI_CurveEditor.h"
#include "uit/controls/UI_EditNumber.h"

using kroaudiofilterhost::AudioFilter;
using kroui::Point;
using kroui::ui::HeadlessWindow;
using kroui::ui::Key;
using kroui::ui::UI_Node;

namespace {

// Where a control is taken hold of.
Point GripOf(const UI_Node& control) {
    if (const auto* const edit = dynamic_cast<const uit::controls::UI_EditNumber*>(&control))
        return edit->UI_LocalToWindow(edit->Layout().number.Centre());
    if (const auto* const curve = dynamic_cast<const uit::controls::UI_CurveEditor*>(&control))
        if (const auto points = curve->GetCurvePoints(); !points.empty())
            return curve->UI_LocalToWindow(curve->GetPixelForCoordinatePair(points.front().coordinates));
    return HeadlessWindow::CentreOf(control);
}

struct Operation {
    const char* name;
    void (*run)(HeadlessWindow& window, UI_Node& control); // the control may go while it runs
};

constexpr Operation kOperations[] = {
    {"drag",
     [](HeadlessWindow& window, UI_Node& control) {
         const Point grip = GripOf(control);
         window.Drag(grip, {grip.x + 24, grip.y + 3});
     }},
    {"drag of the slider",
     [](HeadlessWindow& window, UI_Node& control) {
         const auto* const edit = dynamic_cast<uit::controls::UI_EditNumber*>(&control);
         if (!edit || edit->Layout().slider.IsEmpty()) return;
         const kroui::Rect& track = edit->Layout().track;
         const Point grip = edit->UI_LocalToWindow({track.left + track.width / 3, track.top + track.height / 3});
         window.Drag(grip, {grip.x + 9, grip.y + 9});
     }},
    {"abandoned drag",
     [](HeadlessWindow& window, UI_Node& control) {
         const Point grip = GripOf(control);
         window.Press(grip);
         window.MoveTo({grip.x + 24, grip.y + 3});
         window.PressKey(Key::kEscape);
         window.Release();
     }},
    {"wheel",
     [](HeadlessWindow& window, UI_Node& control) {
         const Point grip = GripOf(control);
         window.Wheel(grip, -1);
         window.Wheel(grip, 1);
         window.Advance(0.6); // the run of notches is over
     }},
    {"keys",
     [](HeadlessWindow& window, UI_Node& control) {
         control.UI_TakeFocus();
         for (const Key key : {Key::kUp, Key::kDown, Key::kRight, Key::kDelete})
             window.PressKey(key);
         window.Advance(0.6);
     }},
    {"accessible action",
     [](HeadlessWindow& window, UI_Node& control) {
         using kroui::ui::AccessibleAction;
         const bool isGraph = control.UI_GetAccessiblePartCount() > 0 && !control.UI_GetAccessibleInfo().expanded;
         const auto info = isGraph ? control.UI_GetAccessiblePart(0).info : control.UI_GetAccessibleInfo();
         kroui::ui::AccessibleRequest request{.part = isGraph ? 0 : kroui::ui::AccessibleRequest::kWhole};
         if (info.expanded) request.action = AccessibleAction::kIncrease;
         if (info.range) {
             request.action = AccessibleAction::kSetValue;
             request.value = info.range->value > info.range->minimum ? info.range->minimum : info.range->maximum;
         }
         window.Window().DoAccessibleAction(control, request);
     }},
    {"menu",
     [](HeadlessWindow& window, UI_Node& control) {
         control.UI_TakeFocus();
         for (const Key key : {Key::kSpace, Key::kDown, Key::kEnter})
             window.PressKey(key);
     }},
    {"typing",
     [](HeadlessWindow& window, UI_Node& control) {
         window.DoubleClick(GripOf(control));
         window.PressKey(Key::kCharacter, kroui::ui::kCommand, u'a');
         window.Type(u"7");
         window.PressKey(Key::kEnter);
     }},
};

class ReleasedPanelTest : public test::PanelWalk, public kroaudiofilterhost::AudioFilterListener {
protected:
    enum class Moment : std::uint8_t { kBegun, kChanged, kEnded };

    ReleasedPanelTest() { fFilter->AddListener(*this); }
    ~ReleasedPanelTest() override { fFilter->RemoveListener(*this); }

    void ParameterEditBegun(AudioFilter&, int) override { CloseAt(Moment::kBegun); }
    void ParameterChanged(AudioFilter&, const kroaudiofilterhost::AudioFilterParameterChange&) override {
        CloseAt(Moment::kChanged);
    }
    void ParameterEditEnded(AudioFilter&, int) override { CloseAt(Moment::kEnded); }
    void CloseAt(Moment moment) {
        if (fView && fMoment == moment) Close();
    }
    void OpenFresh() {
        fMoment.reset();
        StoreDefaults();
        Open();
    }

    std::optional<Moment> fMoment;
};

// Run with the address sanitizer, this finds handlers that go on in freed memory.
TEST_P(ReleasedPanelTest, APanelThatIsReleasedWhileItWritesIsGoneWhenTheWriteIsDone) {
    const long referencesWithout = fFilter->ReferenceCount();
    OpenFresh();
    const std::size_t count = Controls().size();
    int closed = 0;
    for (const Moment moment : {Moment::kBegun, Moment::kChanged, Moment::kEnded}) {
        for (const Operation& operation : kOperations) {
            for (std::size_t i = 0; i < count; ++i) {
                if (!fView) OpenFresh();
                fMoment = moment;
                const auto controls = Controls();
                if (i >= controls.size()) break; // an operation before has hidden some
                operation.run(fWindow, *controls[i]);
                if (fView) continue;
                ++closed;
                EXPECT_EQ(fFilter->ReferenceCount(), referencesWithout)
                    << operation.name << " of control " << i << " leaves the panel behind";
            }
        }
    }
    EXPECT_GT(closed, 0);
}

INSTANTIATE_TEST_SUITE_P(Effects, ReleasedPanelTest, testing::ValuesIn(qoc::components::AllEffects()),
                         test::EffectName());

} // namespace
