#pragma once

#include "kroui/controls/UI_Button.h"

namespace kroui::controls {

// A button with a text. Spring-loaded it is pushed; otherwise it latches, and is lit while its value is 1.
class UI_TextButton : public UI_Button {
public:
    void SetText(std::u16string_view text);
    const krocore::string16& Text() const { return fText.Text(); }
    void SetTextReference(std::string_view reference);
    const krocore::string8& TextReference() const { return fText.Reference(); }
    // Centre at first.
    void SetTextAlignment(limner::TextAlignment alignment);
    limner::TextAlignment TextAlignment() const { return fAlignment; }
    // Raised as buttons are at first; flat: the ground shows while it is pointed at, pressed, on or focused; round:
    // with half-discs at its ends.
    enum class ButtonStyle : unsigned char { kRaised = 0, kFlat = 1, kRound = 2 };
    void SetButtonStyle(ButtonStyle style);
    ButtonStyle GetButtonStyle() const { return fStyle; }
    // Distance of a text that is not centred from its edge, view units.
    void SetTextIndent(float indent);
    float TextIndent() const { return fIndent; }

    Size UI_GetNaturalSize() const override;
    float UI_GetBaseline() const override;
    void UI_Draw(limner::Limner* context) override;
    const ui::PropertyTable& UI_GetPropertyTable() const override;
    static const ui::PropertyTable& PropertiesOfTextButton();

protected:
    ~UI_TextButton() override = default;

    krocore::string16 ShownName() const override { return fText.Text(); }

private:
    ui::LocalizedText fText;
    float fIndent = 8;
    limner::TextAlignment fAlignment = limner::TextAlignment::kCentre;
    ButtonStyle fStyle = ButtonStyle::kRaised;
};

} // namespace kroui::controls
