#pragma once

#include "kroui/controls/UI_Button.h"

namespace kroui::controls {

// One of several choices. The radio buttons under one parent are a group, or several: a click turns one on and the
// others off, and only the one clicked tells its listeners. The group is one stop of the Tab key, at the button that is
// on; the arrow keys go round the group and choose.
class UI_RadioButton : public UI_Button {
public:
    void SetText(std::u16string_view text);
    const krocore::string16& Text() const { return fText.Text(); }
    void SetTextReference(std::string_view reference);
    const krocore::string8& TextReference() const { return fText.Reference(); }
    void SetFontSize(float size);
    float FontSize() const { return fFontSize; }
    // Of the buttons under one parent those with the same number belong together; 0 at first.
    void SetGroup(std::size_t group) { fGroup = group; }
    std::size_t Group() const { return fGroup; }

    Size UI_GetNaturalSize() const override;
    float UI_GetBaseline() const override;
    void UI_Draw(limner::Limner* context) override;
    bool UI_DoKeyEvent(const ui::KeyEvent& event) override;
    bool UI_CanTakeFocus() const override;
    ui::AccessibleInfo UI_GetAccessibleInfo() const override;
    const ui::PropertyTable& UI_GetPropertyTable() const override;
    static const ui::PropertyTable& PropertiesOfRadioButton();

protected:
    ~UI_RadioButton() override = default;

    krocore::string16 ShownName() const override { return fText.Text(); }

    bool IsToggle() const override { return true; }
    bool ChangeByClick() override;

private:
    bool CanBeChosen() const { return IsEnabled() && UI_IsVisible(); }
    UI_RadioButton* Neighbour(bool forward) const;

    ui::LocalizedText fText;
    std::size_t fGroup = 0;
    float fFontSize = 12;
};

} // namespace kroui::controls
