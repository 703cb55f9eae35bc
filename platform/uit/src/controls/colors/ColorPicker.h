#pragma once

#include "controls/colors/HSVColor.h"

#include "kroui/controls/FloatingPanel.h"
#include "kroui/controls/Messages.h"

#include <boost/function.hpp>

namespace uit::controls {

// A small panel over the window in which the user chooses a colour: a field of saturation and value, a strip of hues, a
// palette, and the colour's hexadecimal number, which can be typed. Escape in a drag abandons it; Escape, Enter or a
// press elsewhere close the panel.
class ColorPicker : public kroui::controls::FloatingPanel {
public:
    using ChangeMessage = kroui::controls::UI_InteractiveControlChangedMessage::ChangeMessage;
    // Told of each step of a gesture together with the colour that holds then.
    using ChangeHandler = boost::function<void(const kroui::limner::Color&, ChangeMessage)>;

    // Opens below the anchor, or above it where there is more room. `closed` is called once, whatever closes the panel.
    void Open(kroui::ui::UI_Window& window, const kroui::Rect& anchor, const kroui::limner::Color& color,
              ChangeHandler changed, boost::function<void()> closed);
    void Close();
    // Shows a colour that was set by others; ends no gesture.
    void ShowColor(const kroui::limner::Color& color);

    void UI_Draw(kroui::limner::Limner* limner) override;
    bool UI_DoMouseEvent(UI_Node* node, const kroui::ui::MouseEvent& event) override;
    bool UI_DoKeyEvent(const kroui::ui::KeyEvent& event) override;
    bool UI_DoTextEvent(const kroui::ui::TextEvent& event) override;
    void UI_NodeChanged(NodeChange change) override;
    kroui::ui::AccessibleInfo UI_GetAccessibleInfo() const override;

protected:
    ~ColorPicker() override = default;

private:
    enum class Part : unsigned char { kNone, kField, kHues };

    bool Press(kroui::Point point);
    void DragTo(kroui::Point point);
    void EndDrag();
    void AbandonDrag();
    void ChooseOnce(const kroui::limner::Color& color);
    void Step(float saturation, float value, float hue);
    void SetColor(const HSVColor& color, ChangeMessage change);
    void DrawShades(kroui::limner::Limner& limner);
    void DrawPalette(kroui::limner::Limner& limner) const;
    void DrawNumber(kroui::limner::Limner& limner) const;
    krocore::string16 NumberText() const;

    HSVColor fColor;
    HSVColor fBefore; // when the drag began
    Part fDragged = Part::kNone;
    krocore::string16 fTyped; // hexadecimal digits so far
    ChangeHandler fChanged;
    boost::function<void()> fClosed;

    // The field for one hue, and the strip; made when first drawn.
    kroui::limner::ImagePtr fShades;
    kroui::limner::ImagePtr fHues;
    float fShadesHue = -1;
};

} // namespace uit::controls
