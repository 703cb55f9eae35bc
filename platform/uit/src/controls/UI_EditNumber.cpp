#include "uit/controls/UI_EditNumber.h"

#include "kroui/ui/AdapterRegistry.h"
#include "kroui/utility/DecibelRuler.h"
#include "kroui/utility/LinearRuler.h"
#include "kroui/utility/LogRuler.h"

#include <algorithm>
#include <cmath>

namespace uit::controls {

using kroui::Size;
using kroui::limner::Font;
using kroui::limner::SupplierInterface;
using kroui::limner::TextAlignment;

namespace {

const kroui::ui::AdapterRegistrar<UI_EditNumber> sRegistrar("uit::controls::UI_EditNumber");

constexpr float kUsualSliderLength = 200;
constexpr float kRulerFontSize = 9;
constexpr float kEstimatedAdvance = 0.64F; // of the font's size, while nothing can measure
constexpr float kSpareHeight = 3;          // below the letters of the ruler's labels
constexpr std::uint32_t kMostCharacters = 100;

float WidthOf(const SupplierInterface* supplier, std::u16string_view text) {
    const Font font;
    if (text.empty()) return 0;
    if (supplier) return supplier->MeasureText(text, font).width;
    return static_cast<float>(text.size()) * font.size * kEstimatedAdvance;
}

float WidthOfDigits(const SupplierInterface* supplier, std::uint32_t count) {
    return WidthOf(supplier, u"0") * static_cast<float>(std::min(count, kMostCharacters));
}

} // namespace

UI_EditNumber::UI_EditNumber() {
    SetWantsKeyboardFocus(true);
}

void UI_EditNumber::SetLabel(std::u16string_view label) {
    if (label == GetLabel()) return;
    fLabel.SetText(label);
    LayoutChanged();
}

void UI_EditNumber::SetUnitLabel(std::u16string_view label) {
    if (label == GetUnitLabel()) return;
    fUnitLabel.SetText(label);
    LayoutChanged();
}

void UI_EditNumber::SetUseLabel(bool use) {
    fUseLabel = use;
    LayoutChanged();
}

void UI_EditNumber::SetUseInline(bool use) {
    fUseInline = use;
    LayoutChanged();
}

void UI_EditNumber::SetLabelWidth(float width) {
    if (width == fLabelWidth) return;
    fLabelWidth = width;
    LayoutChanged();
}

float UI_EditNumber::MeasureLabelWidth() const {
    return std::ceil(WidthOf(UI_GetDrawSupplier(), GetLabel()));
}

void UI_EditNumber::SetDigits(std::uint32_t digits) {
    fDigits = digits;
    LayoutChanged();
}

void UI_EditNumber::SetUnitLabelLength(std::uint32_t characters) {
    fUnitLabelLength = characters;
    LayoutChanged();
}

void UI_EditNumber::SetHotTextNumberAlignment(int alignment) {
    const bool isKnown = alignment >= 0 && alignment <= static_cast<int>(TextAlignment::kRight);
    fAlignment = isKnown ? static_cast<TextAlignment>(alignment) : TextAlignment::kLeft;
    UI_Invalidate();
}

void UI_EditNumber::SetUseSlider(bool use) {
    fUseSlider = use;
    LayoutChanged();
}

void UI_EditNumber::SetSliderLength(float length) {
    if (!(length >= 0) || length == fSliderLength) return;
    fSliderLength = length;
    LayoutChanged();
}

void UI_EditNumber::SetSliderStretches(bool stretches) {
    fSliderStretches = stretches;
    LayoutChanged();
}

void UI_EditNumber::SetInvertSlider(bool invert) {
    fInvertSlider = invert;
    UI_Invalidate();
}

void UI_EditNumber::SetLogarithmic(bool logarithmic) {
    fLogarithmic = logarithmic;
    UI_Invalidate();
}

void UI_EditNumber::SetRuler(boost::intrusive_ptr<RulerBase> ruler, RulerPlacement placement,
                             RulerTextPlacement textPlacement, std::u16string_view label) {
    fRuler = std::move(ruler);
    fRulerIsGiven = fRuler != nullptr;
    fRulerPlacement = placement + 1;
    fRulerTextPlacement = textPlacement;
    if (fRuler && !label.empty()) fRuler->SetLabel1(label);
    LayoutChanged();
}

const boost::intrusive_ptr<UI_EditNumber::RulerBase>& UI_EditNumber::GetRuler() {
    if (!fRuler) MakeRuler();
    return fRuler;
}

void UI_EditNumber::SetRulerType(int type) {
    fRulerType = type;
    if (!fRulerIsGiven) fRuler.reset();
    LayoutChanged();
}

void UI_EditNumber::SetRulerPlacementIndex(int index) {
    fRulerPlacement = index;
    LayoutChanged();
}

void UI_EditNumber::SetRulerTextPlacement(int placement) {
    fRulerTextPlacement = placement;
    LayoutChanged();
}

void UI_EditNumber::SetStepFactor(double pixels) {
    fStepFactor = pixels;
    RulerPropertyChanged();
}

void UI_EditNumber::SetLogSeed(double seed) {
    fLogSeed = seed;
    RulerPropertyChanged();
}

void UI_EditNumber::SetLogStep(double step) {
    fLogStep = step;
    RulerPropertyChanged();
}

void UI_EditNumber::SetAbbreviateNumbers(bool abbreviate) {
    fAbbreviateNumbers = abbreviate;
    RulerPropertyChanged();
}

void UI_EditNumber::SetLabelReference(std::string_view reference) {
    fLabel.SetReference(reference);
    LayoutChanged();
}

void UI_EditNumber::SetUnitLabelReference(std::string_view reference) {
    fUnitLabel.SetReference(reference);
    LayoutChanged();
}

void UI_EditNumber::SetRulerLabel1Reference(std::string_view reference) {
    fRulerLabel1.SetReference(reference);
    RulerPropertyChanged();
}

void UI_EditNumber::SetRulerLabel2Reference(std::string_view reference) {
    fRulerLabel2.SetReference(reference);
    RulerPropertyChanged();
}

void UI_EditNumber::RecalcLayout() {
    LayoutChanged();
    if (UI_IsAttached()) TakeNaturalSize();
}

Size UI_EditNumber::NaturalSize() const {
    return EditNumberLayout::Natural(Needs());
}

const EditNumberLayout& UI_EditNumber::Layout() const {
    if (fLayoutIsValid) return fLayout;
    const Size size{UI_GetFrame().width, UI_GetFrame().height};
    EditNumberLayout::Needs needs = Needs();
    fRulerFits = needs.isVertical || size.height + kSpareHeight >= EditNumberLayout::Natural(needs).height;
    if (!fRulerFits) needs.rulerBefore = needs.rulerBehind = 0;
    fLayout = EditNumberLayout::In(size, needs);
    // Without a supplier widths are only estimates.
    fLayoutIsValid = UI_GetDrawSupplier() != nullptr;
    return fLayout;
}

bool UI_EditNumber::IsVertical() const {
    return fRulerIsGiven && fRuler->IsVertical();
}

bool UI_EditNumber::IsRulerShown() const {
    if (!fUseSlider || fRulerPlacement <= 0) return false;
    return fRulerIsGiven || (fRulerType > kNoRuler && fRulerType <= kFaderRuler);
}

// What the slider knows of its ruler; none if it is not shown.
SliderRuler UI_EditNumber::Ruler() const {
    SliderRuler ruler;
    if (!IsRulerShown()) return ruler;
    if (!fRuler) const_cast<UI_EditNumber*>(this)->MakeRuler();
    ruler.ruler = fRuler.get();
    ruler.textPlacement =
        fRulerTextPlacement == RulerTextPlacement::kTextLeftTop || fRulerTextPlacement == RulerTextPlacement::kTextBoth
            ? static_cast<RulerTextPlacement>(fRulerTextPlacement)
            : RulerTextPlacement::kTextRightBottom;
    return ruler;
}

void UI_EditNumber::MakeRuler() {
    switch (fRulerType) {
    case kLogRuler: fRuler.reset(new kroui::utility::LogRuler); break;
    case kDecibelRuler:
    case kFaderRuler: fRuler.reset(new kroui::utility::DecibelRuler); break;
    default: fRuler.reset(new kroui::utility::LinearRuler); break;
    }
    if (fRulerType == kFaderRuler) fRuler->SetStyle(RulerBase::kFader);
    fRuler->SetFontSize(kRulerFontSize);
    fRulerLow = GetMinValue();
    fRulerHigh = GetMaxValue();
    fRuler->SetValueRange(fRulerLow, fRulerHigh);
    ConfigureRuler();
}

void UI_EditNumber::ConfigureRuler() {
    fRuler->SetStepFactor(fStepFactor);
    fRuler->SetAbbreviateNumbers(fAbbreviateNumbers);
    fRuler->SetLabel1(fRulerLabel1.Text());
    fRuler->SetLabel2(fRulerLabel2.Text());
    if (auto* const logarithmic = dynamic_cast<kroui::utility::LogRuler*>(fRuler.get())) {
        logarithmic->SetLogSeed(fLogSeed);
        logarithmic->SetLogStep(fLogStep);
    }
}

void UI_EditNumber::RulerPropertyChanged() {
    if (fRuler && !fRulerIsGiven) ConfigureRuler();
    LayoutChanged();
}

void UI_EditNumber::LayoutChanged() {
    fLayoutIsValid = false;
    UI_Invalidate();
}

EditNumberLayout::Needs UI_EditNumber::Needs() const {
    const SupplierInterface* const supplier = UI_GetDrawSupplier();
    const SliderRuler ruler = Ruler();
    EditNumberLayout::Needs needs;
    const bool hasLabel = fUseLabel && (fLabelWidth > 0 || !GetLabel().empty());
    if (hasLabel) needs.labelWidth = fLabelWidth > 0 ? fLabelWidth : WidthOf(supplier, GetLabel());
    needs.numberWidth = WidthOfDigits(supplier, fDigits);
    needs.unitWidth = WidthOf(supplier, GetUnitLabel());
    if (fUnitLabelLength > 0) needs.unitWidth = WidthOfDigits(supplier, fUnitLabelLength);
    if (fUseSlider) needs.sliderLength = fSliderLength > 0 ? fSliderLength : kUsualSliderLength;
    needs.rulerBefore = ruler.ReachBefore();
    needs.rulerBehind = ruler.ReachBehind();
    needs.hasRuler = ruler.ruler != nullptr;
    needs.stretches = fSliderStretches;
    needs.isInline = fUseInline;
    needs.isVertical = IsVertical();
    return needs;
}

void UI_EditNumber::TakeNaturalSize() {
    if (!UI_GetLocalRect().IsEmpty()) return;
    const Size size = NaturalSize();
    UI_SetLocalRect({0, 0, size.width, size.height});
    auto* const parent = dynamic_cast<UI_SubView*>(UI_GetParent());
    if (parent && parent->AutoLayout()) parent->RecalcAutoLayout();
}

} // namespace uit::controls
