#include "kroui/controls/UI_ControlView.h"

#include "controls/base/LabelBeside.h"
#include "kroui/ui/UI_Window.h"

namespace kroui::controls {

using ui::MakeProperty;
using ui::MouseEvent;
using ui::PropertyType;

UI_ControlView::UI_ControlView() = default;

void UI_ControlView::SetEnabled(bool enabled) {
    if (enabled == fEnabled) return;
    // What it ends may be told in several messages.
    const ui::MessageScope scope;
    fEnabled = enabled;
    if (!enabled && UI_GetWindow()) UI_GetWindow()->Forget(*this);
    ControlStateChanged();
}

void UI_ControlView::SetDownState(bool down) {
    if (down == fDownState) return;
    fDownState = down;
    ControlStateChanged();
}

void UI_ControlView::SetName(std::u16string_view name) {
    fName = name;
    UI_AccessibleInfoChanged();
}

bool UI_ControlView::ShowsFocus() const {
    return !fSuppressFocusDrawing && UI_HasFocus();
}

void UI_ControlView::NotifyWhenChanged(const ChangedSignal::slot_type& slot) {
    fChanged.connect(slot);
}

bool UI_ControlView::UI_DoMouseEvent(UI_Node* node, const MouseEvent& event) {
    if (node) return UI_SubView::UI_DoMouseEvent(node, event);
    if (event.IsAction(MouseEvent::Action::kEntered) || event.IsAction(MouseEvent::Action::kLeft)) {
        fHovered = event.IsAction(MouseEvent::Action::kEntered);
        if (fEnabled) ControlStateChanged();
    }
    return UI_SubView::UI_DoMouseEvent(node, event);
}

bool UI_ControlView::UI_CanTakeFocus() const {
    return fWantsFocus && fEnabled && UI_IsVisibleInWindow();
}

void UI_ControlView::UI_FocusChanged(bool hasFocus) {
    UI_SubView::UI_FocusChanged(hasFocus);
    ControlStateChanged();
}

void UI_ControlView::UI_NodeChanged(NodeChange change) {
    UI_SubView::UI_NodeChanged(change);
    if (change == kDetaching || change == kHidden) fHovered = false;
}

ui::AccessibleInfo UI_ControlView::UI_GetAccessibleInfo() const {
    ui::AccessibleInfo info = UI_SubView::UI_GetAccessibleInfo();
    info.name = fName.empty() ? ShownName() : fName;
    // Only what is operated has a label.
    if (info.name.empty() && fWantsFocus) info.name = LabelBeside(*this);
    if (info.name.empty()) info.name = UI_GetTooltip();
    info.enabled = fEnabled;
    info.focusable = fWantsFocus;
    return info;
}

const ui::PropertyTable& UI_ControlView::UI_GetPropertyTable() const {
    return PropertiesOfControlView();
}

const ui::PropertyTable& UI_ControlView::PropertiesOfControlView() {
    static constexpr ui::PropertyRow kRows[] = {
        MakeProperty<PropertyType::kBool, &UI_ControlView::DownState, &UI_ControlView::SetDownState>("downState"),
        MakeProperty<PropertyType::kBool, &UI_ControlView::IsEnabled, &UI_ControlView::SetEnabled>("enabled"),
        MakeProperty<PropertyType::kBool, &UI_ControlView::SuppressFocusDrawing,
                     &UI_ControlView::SetSuppressFocusDrawing>("suppressFocusDrawing"),
        MakeProperty<PropertyType::kBool, &UI_ControlView::WantsKeyboardFocus, &UI_ControlView::SetWantsKeyboardFocus>(
            "wantsFocus"),
    };
    static const ui::PropertyTable sTable{"kroui::controls::UI_ControlView", kRows, &PropertiesOfSubView()};
    return sTable;
}

void UI_ControlView::SendChanged() {
    if (fChanged.empty()) return;
    UI_ControlChangedMessage message(*this);
    fChanged(&message);
}

void UI_ControlView::ControlStateChanged() {
    UI_Invalidate();
}

} // namespace kroui::controls
