#pragma once

#include "kroui/controls/UI_Button.h"

namespace kroui::controls {

// A box that is ticked or not, with its text on the right; a click turns it over. Box and text are both clicked.
class UI_Checkbox : public UI_Button {
public:
    // From code: no messages.
    void SetValue(int value) override;
    int GetValue() const override { return fChecked ? 1 : 0; }
    void SetChecked(bool checked) { SetValue(checked ? 1 : 0); }

    void SetText(std::u16string_view text);
    const krocore::string16& Text() const { return fText.Text(); }
    void SetTextReference(std::string_view reference);
    const krocore::string8& TextReference() const { return fText.Reference(); }
    void SetFontSize(float size);
    float FontSize() const { return fFontSize; }
    // The side of the box in view units, 6...100.
    void SetCheckSize(float size);
    float CheckSize() const { return fCheckSize; }

    Size UI_GetNaturalSize() const override;
    float UI_GetBaseline() const override;
    void UI_Draw(limner::Limner* context) override;
    ui::AccessibleInfo UI_GetAccessibleInfo() const override;
    const ui::PropertyTable& UI_GetPropertyTable() const override;
    static const ui::PropertyTable& PropertiesOfCheckbox();

protected:
    ~UI_Checkbox() override = default;

    krocore::string16 ShownName() const override { return fText.Text(); }

    bool IsToggle() const override { return true; }

private:
    ui::LocalizedText fText;
    float fFontSize = 12;
    float fCheckSize = 14;
    bool fChecked = false;
};

} // namespace kroui::controls
