#include "uit/controls/UI_EditNumber.h"

#include "kroui/controls/TextMeasure.h"
#include "kroui/ui/AdapterRegistry.h"

#include <algorithm>
#include <cmath>

namespace uit::controls {

using kroui::Size;
using kroui::controls::DigitsWidth;
using kroui::controls::TextWidth;
using kroui::limner::Font;
using kroui::limner::TextAlignment;

namespace {

const kroui::ui::AdapterRegistrar<UI_EditNumber> sRegistrar("uit::controls::UI_EditNumber");

constexpr float kUsualSliderLength = 200;
constexpr float kSpareHeight = 3; // below the letters of the ruler's labels

} // namespace

UI_EditNumber::UI_EditNumber() {
    SetWantsKeyboardFocus(true);
    fRulers.SetBounds(GetMinValue(), GetMaxValue());
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
    return TextWidth(*this, GetLabel(), {fFontSize});
}

void UI_EditNumber::SetDescription1(std::u16string_view text) {
    if (text == fDescription1) return;
    fDescription1 = text;
    LayoutChanged();
}

void UI_EditNumber::SetDescription2(std::u16string_view text) {
    if (text == fDescription2) return;
    fDescription2 = text;
    LayoutChanged();
}

void UI_EditNumber::SetFontSize(float size) {
    if (!(size > 0) || size == fFontSize) return;
    fFontSize = size;
    LayoutChanged();
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

void UI_EditNumber::SetHotTextScaleRange(double low, double high) {
    const bool isUsable = low > 0 && high > low && std::isfinite(high);
    fHotTextRange = isUsable ? HotTextRange{low, high} : HotTextRange{};
}

void UI_EditNumber::SetUseSlider(bool use) {
    fUseSlider = use;
    LayoutChanged();
}

void UI_EditNumber::SetVertical(bool vertical) {
    fVertical = vertical;
    LayoutChanged();
}

void UI_EditNumber::SetSliderKnob(SliderLook::Knob knob) {
    fKnob = knob;
    UI_Invalidate();
}

void UI_EditNumber::SetSliderArrow(SliderLook::Arrow arrow) {
    fArrow = arrow;
    UI_Invalidate();
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
    if (ruler && !label.empty()) ruler->SetLabel1(label);
    fRulers.Give(std::move(ruler), placement + 1, textPlacement);
    LayoutChanged();
}

void UI_EditNumber::SetRulerSettings(const RulerSettings& settings) {
    boost::intrusive_ptr<RulerBase> ruler;
    if (settings.type != RulerSettings::kNone) ruler = settings.MakeRuler();
    if (ruler) ruler->SetVertical(IsVertical());
    fRulers.Give(std::move(ruler), settings.placement, settings.textPlacement);
    LayoutChanged();
}

void UI_EditNumber::SetSecondRulerSettings(const RulerSettings& settings) {
    fRulers.SetSecond(settings.type != RulerSettings::kNone ? settings.MakeRuler() : nullptr);
    LayoutChanged();
}

const boost::intrusive_ptr<UI_EditNumber::RulerBase>& UI_EditNumber::GetRuler() {
    return fRulers.First();
}

void UI_EditNumber::SetArchiveRuler(const RulerSettings& settings) {
    if (!settings.IsFinite()) return;
    RulerSettings bounded = settings;
    bounded.value1 = GetMinValue();
    bounded.value2 = GetMaxValue();
    fRulers.SetSettings(bounded);
    LayoutChanged();
}

void UI_EditNumber::SetLabelReference(std::string_view reference) {
    fLabel.SetReference(reference);
    LayoutChanged();
}

void UI_EditNumber::SetUnitLabelReference(std::string_view reference) {
    fUnitLabel.SetReference(reference);
    LayoutChanged();
}

void UI_EditNumber::RecalcLayout() {
    LayoutChanged();
    if (UI_IsAttached()) TakeNaturalSize();
}

Size UI_EditNumber::NaturalSize() const {
    return EditNumberLayout::Natural(Needs());
}

float UI_EditNumber::UI_GetBaseline() const {
    return EditNumberLayout::NaturalRowTop(Needs()) +
           kroui::controls::CentredBaseline(*this, kroui::controls::kRowHeight, {fFontSize});
}

bool UI_EditNumber::IsVertical() const {
    return fVertical || fRulers.IsGivenVertical();
}

void UI_EditNumber::LayoutChanged() {
    fPlaced.reset();
    fRulers.SetVertical(IsVertical());
    UI_Invalidate();
}

UI_EditNumber::Placed UI_EditNumber::Place() const {
    const Size size{UI_GetFrame().width, UI_GetFrame().height};
    EditNumberLayout::Needs needs = Needs();
    const bool rulerFits = needs.isVertical || size.height + kSpareHeight >= EditNumberLayout::Natural(needs).height;
    if (!rulerFits) needs.rulerBefore = needs.rulerBehind = 0;
    return {EditNumberLayout::In(size, needs), rulerFits};
}

// Without a supplier widths are only estimates.
void UI_EditNumber::KeepPlaces() {
    if (!fPlaced && UI_GetDrawSupplier()) fPlaced = Place();
}

EditNumberLayout::Needs UI_EditNumber::Needs() const {
    const Font font{fFontSize};
    const SliderRuler ruler = Ruler();
    const SliderRuler second = SecondRuler();
    EditNumberLayout::Needs needs;
    const bool hasLabel = fUseLabel && (fLabelWidth > 0 || !GetLabel().empty());
    if (hasLabel) needs.labelWidth = fLabelWidth > 0 ? fLabelWidth : TextWidth(*this, GetLabel(), font);
    needs.numberWidth = DigitsWidth(*this, fDigits, font);
    needs.unitWidth = TextWidth(*this, GetUnitLabel(), font);
    if (fUnitLabelLength > 0) needs.unitWidth = DigitsWidth(*this, fUnitLabelLength, font);
    if (fUseSlider) needs.sliderLength = fSliderLength > 0 ? fSliderLength : kUsualSliderLength;
    needs.rulerBefore = std::max(ruler.ReachBefore(), second.ReachBefore());
    needs.rulerBehind = std::max(ruler.ReachBehind(), second.ReachBehind());
    needs.hasRuler = ruler.ruler != nullptr || second.ruler != nullptr;
    const Font smallest{kSmallestDescription};
    needs.description1Width = TextWidth(*this, fDescription1, smallest);
    needs.description2Width = TextWidth(*this, fDescription2, smallest);
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
