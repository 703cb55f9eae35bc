#pragma once

#include "krocore/NumberFormat.h"
#include "kroui/controls/UI_ControlView.h"

namespace kroui::controls {

// A value that the user reads and cannot change: a label that ends at its colon, a number or a text, and its unit.
// Stands in a column with numbers that can be edited: label and number have the same places there.
class UI_DisplayNumber : public UI_ControlView {
public:
    // From code: repaints the number if it looks different.
    void SetValue(double value);
    double GetValue() const { return fValue; }
    // A text in place of the number; empty shows the number again.
    void SetText(std::u16string_view text);
    const krocore::string16& GetText() const { return fText; }

    void SetLabel(std::u16string_view label);
    const krocore::string16& GetLabel() const { return fLabel; }
    void SetUnitLabel(std::u16string_view unit);
    const krocore::string16& GetUnitLabel() const { return fUnit; }
    // Width of the label's column, so that the colons of several meet; 0: as the label needs.
    void SetLabelWidth(float width);
    float MeasureLabelWidth() const;
    // Characters that the value has room for; 0: as it needs.
    void SetDigits(std::uint32_t digits);
    void SetDecimalPlaces(int places);
    // krocore::NumberFormatFlags.
    void SetFormatFlags(std::uint32_t flags);
    // Right at first, so that numbers below each other meet at their last digit.
    void SetAlignment(limner::TextAlignment alignment);

    // What is shown: the number as it is written, or the text.
    krocore::string16 ShownText() const;
    Size UI_GetNaturalSize() const override;
    float UI_GetBaseline() const override;
    void UI_Draw(limner::Limner* context) override;
    void UI_NodeChanged(NodeChange change) override;
    ui::AccessibleInfo UI_GetAccessibleInfo() const override;

protected:
    ~UI_DisplayNumber() override = default;

    krocore::string16 ShownName() const override { return fLabel; }

private:
    float LabelWidth() const;
    float NumberWidth() const;
    Rect NumberRect() const;
    void LookChanged();

    krocore::string16 fLabel;
    krocore::string16 fText;
    krocore::string16 fUnit;
    mutable float fMeasuredLabel = -1; // below 0: to be measured
    double fValue = 0;
    float fLabelWidth = 0;
    std::uint32_t fDigits = 0;
    std::uint32_t fFormatFlags = krocore::kFormatNormal;
    int fDecimalPlaces = 0;
    limner::TextAlignment fAlignment = limner::TextAlignment::kRight;
};

} // namespace kroui::controls
