#pragma once

#include "kroui/controls/HotTextLook.h"
#include "kroui/controls/UI_InteractiveControlView.h"

namespace kroui::controls {

// A text in the accent colour that does something when it is clicked (Enter and Space too): a committed change tells.
// Behind it stands a dim label, its unit for instance.
class UI_HotText : public UI_InteractiveControlView {
public:
    UI_HotText();

    void SetText(std::u16string_view text);
    const krocore::string16& GetText() const { return fText; }
    // The dim text behind, as it stands; by reference as archives write it.
    void SetTextLabel(std::u16string_view label);
    const krocore::string16& GetTextLabel() const { return fTextLabel.Text(); }
    void SetTextLabelReference(std::string_view reference);
    const krocore::string8& TextLabelReference() const { return fTextLabel.Reference(); }
    void SetFontSize(float size);
    float FontSize() const { return fFont.size; }

    Size UI_GetNaturalSize() const override;
    float UI_GetBaseline() const override;
    void UI_Draw(limner::Limner* context) override;
    bool UI_DoMouseEvent(UI_Node* node, const ui::MouseEvent& event) override;
    bool UI_DoKeyEvent(const ui::KeyEvent& event) override;
    ui::Cursor UI_GetCursor(Point point) const override;
    ui::AccessibleInfo UI_GetAccessibleInfo() const override;
    bool UI_DoAccessibleAction(const ui::AccessibleRequest& request) override;
    const ui::PropertyTable& UI_GetPropertyTable() const override;
    static const ui::PropertyTable& PropertiesOfHotText();

protected:
    ~UI_HotText() override = default;

    krocore::string16 ShownName() const override { return fText; }

    // What stands in the accent colour.
    virtual krocore::string16 ShownText() const { return fText; }
    // What every control does with the pointer, without the click of this one.
    void TrackHover(UI_Node* node, const ui::MouseEvent& event) {
        UI_InteractiveControlView::UI_DoMouseEvent(node, event);
    }
    // What the text takes at most, for the natural size.
    virtual float NaturalTextWidth() const;
    const limner::Font& GetFont() const { return fFont; }
    HotTextLook Look(std::u16string_view text) const;

private:
    krocore::string16 fText;
    ui::LocalizedText fTextLabel;
    limner::Font fFont;
};

} // namespace kroui::controls
