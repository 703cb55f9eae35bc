#pragma once

#include "kroui/controls/UI_InteractiveControlView.h"

namespace uit::controls {

class ColorPicker;

// A swatch of a colour. Where the user may change it, a click (or Space, Enter) opens a panel to choose from; each
// choice there is a gesture, followed by the committed change.
class ColorField : public kroui::controls::UI_InteractiveControlView {
public:
    ColorField();

    void SetColor(const kroui::limner::Color& color);
    const kroui::limner::Color& GetColor() const { return fColor; }
    void SetAllowUserColorChange(bool allow);
    bool AllowUserColorChange() const { return fAllowUserColorChange; }

    void UI_Draw(kroui::limner::Limner* limner) override;
    bool UI_DoMouseEvent(UI_Node* node, const kroui::ui::MouseEvent& event) override;
    bool UI_DoKeyEvent(const kroui::ui::KeyEvent& event) override;
    bool UI_CanTakeFocus() const override;
    void UI_NodeChanged(NodeChange change) override;
    kroui::ui::Cursor UI_GetCursor(kroui::Point point) const override;
    kroui::ui::AccessibleInfo UI_GetAccessibleInfo() const override;
    bool UI_DoAccessibleAction(const kroui::ui::AccessibleRequest& request) override;
    const kroui::ui::PropertyTable& UI_GetPropertyTable() const override;
    static const kroui::ui::PropertyTable& PropertiesOfColorField();

protected:
    ~ColorField() override;

    void ControlStateChanged() override;

private:
    using ChangeMessage = kroui::controls::UI_InteractiveControlChangedMessage::ChangeMessage;

    bool CanOpen() const { return fAllowUserColorChange && IsEnabled(); }
    void OpenPicker();
    void ClosePicker();
    void Choose(const kroui::limner::Color& color, ChangeMessage change);

    kroui::limner::Color fColor{1, 1, 1, 1};
    kroui::limner::Color fCommitted; // when the gesture began
    boost::intrusive_ptr<ColorPicker> fPicker;
    bool fAllowUserColorChange = false;
    bool fIsPressed = false;
    bool fIsChanging = false; // inside a gesture of the panel
};

} // namespace uit::controls
