#pragma once

#include "kroui/controls/UI_ControlView.h"

namespace kroui::controls {

// A text that the user reads: labels, units, messages. Takes no events.
class UI_StaticText : public UI_ControlView {
public:
    void SetText(std::u16string_view text);
    const krocore::string16& Text() const { return fText.Text(); }
    // As archives write it: a reference to a localised text, or the text.
    void SetTextReference(std::string_view reference);
    const krocore::string8& TextReference() const { return fText.Reference(); }

    void SetAlignment(limner::TextAlignment alignment);
    limner::TextAlignment Alignment() const { return fAlignment; }
    // What becomes of a text that is wider than the view: cut off, or shortened with an ellipsis (the start value).
    void SetTextTruncation(limner::TextTruncation truncation);
    limner::TextTruncation TextTruncation() const { return fTruncation; }
    // Breaks the text into lines as wide as the view, from its top on.
    void SetMultiLine(bool on);
    bool MultiLine() const { return fMultiLine; }
    // View units, 1...200.
    void SetFontSize(float size);
    float FontSize() const { return fFontSize; }
    void SetBold(bool bold);
    // The theme role of the text while enabled; kColorText at first.
    void SetColorRole(int role);

    Size UI_GetNaturalSize() const override;
    float UI_GetBaseline() const override;
    void UI_Draw(limner::Limner* context) override;
    ui::AccessibleInfo UI_GetAccessibleInfo() const override;
    const ui::PropertyTable& UI_GetPropertyTable() const override;
    static const ui::PropertyTable& PropertiesOfStaticText();

protected:
    ~UI_StaticText() override = default;

    krocore::string16 ShownName() const override { return fText.Text(); }

private:
    ui::LocalizedText fText;
    float fFontSize = 12;
    int fColorRole = ui::kColorText;
    limner::TextAlignment fAlignment = limner::TextAlignment::kLeft;
    limner::TextTruncation fTruncation = limner::TextTruncation::kEnd;
    bool fMultiLine = false;
    bool fBold = false;
};

} // namespace kroui::controls
