#include "EditNumberAdapter.h"

#include "AttributeTable.h"

#include "krocore/NumberFormat.h"

#include <algorithm>
#include <cmath>

namespace uit::lio {

using controls::RulerSettings;
using controls::UI_EditNumber;
using orrin::any_regular_t;
using Direction = UI_EditNumber::DragDirection;
using Knob = UI_EditNumber::SliderLook::Knob;
using Arrow = UI_EditNumber::SliderLook::Arrow;

namespace {

constexpr int kMostDigits = 40;
constexpr int kMostDecimalPlaces = 15;

// "hotttext_scale_log" is how the name has come to be spelled; the other spelling means the same.
constexpr NamedMeaning<int> kScales[] = {
    {"hottext_scale_linear", UI_EditNumber::kLinear},
    {"hotttext_scale_log", UI_EditNumber::kLogarithmic},
    {"hottext_scale_log", UI_EditNumber::kLogarithmic},
};

constexpr NamedMeaning<Knob> kKnobs[] = {
    {"knob_default", Knob::kByDirection},
    {"knob_round", Knob::kDisc},
    {"knob_cap", Knob::kCap},
};

constexpr NamedMeaning<Arrow> kArrows[] = {
    {"arrow_none", Arrow::kNone},
    {"arrow_up_left", Arrow::kUpLeft},
    {"arrow_down_right", Arrow::kDownRight},
};

} // namespace

struct EditNumberAdapter::Table {
    using A = EditNumberAdapter;
    using V = any_regular_t;
    static constexpr AttributeKind kFollows = AttributeKind::kFollows;

    static constexpr Attribute<A> kAttributes[] = {
        {{"horizontal"},
         [](A& a, const V& v) {
             a.fIsVertical = !BoolOf(v);
             a.fEdit->SetVertical(a.fIsVertical);
         }},
        {{"width"}, [](A& a, const V& v) { a.fWidth = LengthOf(v); }},
        {{"name", kFollows}, [](A& a, const V& v) { a.fEdit->SetLabel(TextOf(v)); }},
        {{"unit_label", kFollows}, [](A& a, const V& v) { a.fEdit->SetUnitLabel(TextOf(v)); }},
        {{"description1", kFollows}, [](A& a, const V& v) { a.fEdit->SetDescription1(TextOf(v)); }},
        {{"description2", kFollows}, [](A& a, const V& v) { a.fEdit->SetDescription2(TextOf(v)); }},
        {{"use_inline"}, [](A& a, const V& v) { a.fEdit->SetUseInline(BoolOf(v)); }},
        {{"min_max_filter", kFollows}, [](A& a, const V& v) { a.SetBounds(BoundsOf(v)); }},
        {{"digits"},
         [](A& a, const V& v) {
             a.fEdit->SetDigits(static_cast<std::uint32_t>(WholeNumberWithin(v, 0, kMostDigits)));
             a.fHasDigits = true;
         }},
        {{"max_digits"}, [](A& a, const V& v) { a.fEdit->SetMaxDigits(WholeNumberWithin(v, 0, kMostDigits)); }},
        {{"decimal_places", kFollows},
         [](A& a, const V& v) { a.fEdit->SetDecimalPlaces(WholeNumberWithin(v, 0, kMostDecimalPlaces)); }},
        {{"trailing_zeroes"}, [](A& a, const V& v) { a.SetFormatFlag(krocore::kFormatNoTrailingZeros, !BoolOf(v)); }},
        {{"always_show_sign"}, [](A& a, const V& v) { a.SetFormatFlag(krocore::kFormatAlwaysSign, BoolOf(v)); }},
        {{"increment", kFollows}, [](A& a, const V& v) { a.fEdit->SetIncrement(NumberWithin(v, 0, kFarthestBound)); }},
        {{"hottext_scale"}, [](A& a, const V& v) { a.fEdit->SetHotTextScale(MeaningOf(v, kScales)); }},
        {{"hottext_scale_range", kFollows}, [](A& a, const V& v) { a.SetHotTextScaleRange(BoundsOf(v)); }},
        {{"horizontal_direction"},
         [](A& a, const V& v) {
             a.fEdit->SetNumberDragDirection(BoolOf(v) ? Direction::kHorizontal : Direction::kVertical);
         }},
        {{"use_slider"}, [](A& a, const V& v) { a.fEdit->SetUseSlider(BoolOf(v)); }},
        {{"min_slider_width"}, [](A& a, const V& v) { a.fEdit->SetSliderLength(LengthOf(v)); }},
        {{"slider_knob"}, [](A& a, const V& v) { a.fEdit->SetSliderKnob(MeaningOf(v, kKnobs)); }},
        {{"slider_arrow"}, [](A& a, const V& v) { a.fEdit->SetSliderArrow(MeaningOf(v, kArrows)); }},
        {{"invert_slider"}, [](A& a, const V& v) { a.fEdit->SetInvertSlider(BoolOf(v)); }},
        {{"logarithmic"}, [](A& a, const V& v) { a.fEdit->SetLogarithmic(BoolOf(v)); }},
        {{"ruler_type"}, [](A& a, const V& v) { a.fRulerType = RulerTypeOf(v); }},
        {{"log_step"}, [](A& a, const V& v) { a.fLogStep = LogStepOf(v); }},
        {{"ruler_label1", kFollows}, [](A& a, const V& v) { a.fRulerLabel1 = TextOf(v); }},
        {{"ruler_settings", kFollows}, [](A& a, const V& v) { a.SetRuler(v); }},
        {{"first_ruler_settings", kFollows}, [](A& a, const V& v) { a.SetSecondRuler(v); }},
        {{"bind", AttributeKind::kBound}, [](A& a, const V& v) { a.SetBoundValue(NumberOf(v)); }},
    };
    static constexpr auto kRows = RowsOf(kAttributes);
    static constexpr int kBind = RowOf(kAttributes, "bind");
};

constinit const WidgetClass EditNumberAdapter::kClass{"aud_edit_number", Table::kRows,
                                                      &CreateAdapter<EditNumberAdapter>};

EditNumberAdapter::EditNumberAdapter(const WidgetContext& context)
    : EditNumberAdapter(context, boost::intrusive_ptr<UI_EditNumber>(new UI_EditNumber)) {
}

EditNumberAdapter::EditNumberAdapter(const WidgetContext& context, const boost::intrusive_ptr<UI_EditNumber>& edit)
    : NumberAdapter(context, edit, Table::kBind), fEdit(edit) {
}

void EditNumberAdapter::SetAttribute(int row, const any_regular_t& value) {
    Table::kAttributes[row].set(*this, value);
    if (row == Table::kBind || !IsComplete()) return;
    UpdateDigits();
    UpdateRulers();
    LayoutChanged();
}

void EditNumberAdapter::Complete() {
    UpdateDigits();
    UpdateRulers();
    ControlAdapter::Complete();
}

WidgetExtent EditNumberAdapter::Measure(std::optional<float> width) {
    WidgetExtent extent = ControlAdapter::Measure(width);
    if (fWidth > 0) extent.size.width = fWidth;
    const bool isBeside = fEdit->UseInline() && !fIsVertical;
    if (isBeside && EndsWithColon(fEdit->GetLabel())) extent.colon = std::ceil(fEdit->MeasureLabelWidth());
    return extent;
}

void EditNumberAdapter::SetFormatFlag(std::uint32_t flag, bool on) {
    const std::uint32_t others = fEdit->GetFormatFlags() & ~flag;
    fEdit->SetFormatFlags(on ? others | flag : others);
}

void EditNumberAdapter::SetHotTextScaleRange(const Bounds& range) {
    if (!(range.low > 0 && range.high > range.low)) throw std::invalid_argument("needs different bounds above 0");
    fEdit->SetHotTextScaleRange(range.low, range.high);
}

void EditNumberAdapter::SetRuler(const any_regular_t& settings) {
    RulerSettingsOf(settings, {});
    fRuler = settings;
}

void EditNumberAdapter::SetSecondRuler(const any_regular_t& settings) {
    RulerSettingsOf(settings, {});
    fSecondRuler = settings;
}

void EditNumberAdapter::UpdateRulers() {
    RulerSettings first = RulerDefaults();
    first.type = fRulerType;
    if (!fRuler.empty()) first = RulerSettingsOf(fRuler, first);
    if (first != fShownRuler) fEdit->SetRulerSettings(fShownRuler = first);
    RulerSettings second = RulerDefaults();
    second.type = RulerSettings::kNone;
    if (!fSecondRuler.empty()) second = RulerSettingsOf(fSecondRuler, second);
    if (second != fShownSecondRuler) fEdit->SetSecondRulerSettings(fShownSecondRuler = second);
}

// Room for the longest number, if the script does not say how much.
void EditNumberAdapter::UpdateDigits() {
    if (fHasDigits) return;
    const std::size_t longest =
        std::max(fEdit->FormatOf(fEdit->GetMinValue()).size(), fEdit->FormatOf(fEdit->GetMaxValue()).size());
    const auto digits = static_cast<std::uint32_t>(longest);
    if (digits != fEdit->GetDigits()) fEdit->SetDigits(digits);
}

RulerSettings EditNumberAdapter::RulerDefaults() const {
    RulerSettings settings;
    settings.value1 = fEdit->GetMinValue();
    settings.value2 = fEdit->GetMaxValue();
    settings.label1.SetText(fRulerLabel1);
    if (fLogStep) settings.logStep = *fLogStep;
    return settings;
}

} // namespace uit::lio
