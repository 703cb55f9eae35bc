#pragma once

#include "kroui/controls/Messages.h"
#include "kroui/ui/Signal.h"
#include "kroui/ui/UI_SubView.h"

namespace kroui::controls {

using ui::UI_Node;

// Base of everything with a control's states: enabled, hovered, pressed, focused. Tells listeners of committed changes.
class UI_ControlView : public ui::UI_SubView {
public:
    UI_ControlView();

    void SetEnabled(bool enabled);
    bool IsEnabled() const { return fEnabled; }
    void SetDisabled(bool disabled) { SetEnabled(!disabled); }
    bool IsDisabled() const { return !fEnabled; }

    // The pressed or latched state, of buttons above all.
    void SetDownState(bool down);
    bool DownState() const { return fDownState; }

    void SetWantsKeyboardFocus(bool wants) { fWantsFocus = wants; }
    bool WantsKeyboardFocus() const { return fWantsFocus; }
    void SetSuppressFocusDrawing(bool suppress) { fSuppressFocusDrawing = suppress; }
    bool SuppressFocusDrawing() const { return fSuppressFocusDrawing; }
    bool IsHovered() const { return fHovered; }

    // What the accessible information calls the control. Without it, the name is what the control itself shows, or else
    // the label beside it, or else its tool tip.
    void SetName(std::u16string_view name);

    // Whether the focus ring is to be drawn: focused, by keyboard or a control that always shows it, and not
    // suppressed.
    bool ShowsFocus() const;

    // Calls the slot after each committed change by the user. A boost::bind to a member of a trackable object is cut
    // when that object dies; anything else lives as long as the control.
    using ChangedSignal = ui::Signal<UI_ControlChangedMessage*>;
    void NotifyWhenChanged(const ChangedSignal::slot_type& slot);

    bool UI_DoMouseEvent(UI_Node* node, const ui::MouseEvent& event) override;
    bool UI_CanTakeFocus() const override;
    void UI_FocusChanged(bool hasFocus) override;
    void UI_NodeChanged(NodeChange change) override;
    ui::AccessibleInfo UI_GetAccessibleInfo() const override;
    const ui::PropertyTable& UI_GetPropertyTable() const override;
    static const ui::PropertyTable& PropertiesOfControlView();

protected:
    ~UI_ControlView() override = default;

    // The name that the control itself shows; empty if it shows none.
    virtual krocore::string16 ShownName() const { return {}; }
    void SendChanged();
    // Enabled, hovered, down or focused changed. Repaints; controls with parts may do more.
    virtual void ControlStateChanged();

private:
    ChangedSignal fChanged;
    krocore::string16 fName;
    bool fEnabled = true;
    bool fDownState = false;
    bool fWantsFocus = false;
    bool fSuppressFocusDrawing = false;
    bool fHovered = false;
};

} // namespace kroui::controls
