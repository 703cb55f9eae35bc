// The properties that archives give an edit number.

#include "uit/controls/UI_EditNumber.h"

namespace uit::controls {

using kroui::controls::MakeValueProperty;
using kroui::ui::MakeProperty;
using kroui::ui::PropertyRow;
using kroui::ui::PropertyTable;
using kroui::ui::PropertyType;

namespace {

using Edit = UI_EditNumber;

constexpr std::string_view kRulerTypes[] = {"None", "Linear", "Logarithmic", "DB", "FaderDB"};
constexpr std::string_view kRulerPlacements[] = {"None", "Left/Top", "Right/Bottom"};
constexpr std::string_view kRulerTextPlacements[] = {"Left/Top", "Right/Bottom", "Both"};

constexpr PropertyRow kRows[] = {
    MakeProperty<PropertyType::kBool, &Edit::AbbreviateNumbers, &Edit::SetAbbreviateNumbers>("abbreviateNumbers"),
    MakeValueProperty<Edit, PropertyType::kUnsigned, &Edit::GetDecimalPlaces, &Edit::SetDecimalPlaces>("decimalPlaces"),
    MakeProperty<PropertyType::kUnsigned, &Edit::GetDigits, &Edit::SetDigits>("digits"),
    MakeValueProperty<Edit, PropertyType::kDouble, &Edit::GetIncrement, &Edit::SetIncrement>("increment"),
    MakeProperty<PropertyType::kUnicode, &Edit::LabelReference, &Edit::SetLabelReference>("label"),
    MakeProperty<PropertyType::kDouble, &Edit::LogSeed, &Edit::SetLogSeed>("logSeed"),
    MakeProperty<PropertyType::kDouble, &Edit::LogStep, &Edit::SetLogStep>("logStep"),
    MakeProperty<PropertyType::kBool, &Edit::IsLogarithmic, &Edit::SetLogarithmic>("logarithmic"),
    MakeValueProperty<Edit, PropertyType::kDouble, &Edit::GetMaxValue, &Edit::SetMaxValue>("maxValue"),
    MakeValueProperty<Edit, PropertyType::kDouble, &Edit::GetMinValue, &Edit::SetMinValue>("minValue"),
    MakeProperty<PropertyType::kUnicode, &Edit::RulerLabel1Reference, &Edit::SetRulerLabel1Reference>("rulerLabel1"),
    MakeProperty<PropertyType::kUnicode, &Edit::RulerLabel2Reference, &Edit::SetRulerLabel2Reference>("rulerLabel2"),
    MakeProperty<PropertyType::kEnumeration, &Edit::RulerPlacementIndex, &Edit::SetRulerPlacementIndex>(
        "rulerPlacement", kRulerPlacements),
    MakeProperty<PropertyType::kEnumeration, &Edit::GetRulerTextPlacement, &Edit::SetRulerTextPlacement>(
        "rulerTextPlacement", kRulerTextPlacements),
    MakeProperty<PropertyType::kEnumeration, &Edit::GetRulerType, &Edit::SetRulerType>("rulerType", kRulerTypes),
    MakeProperty<PropertyType::kDouble, &Edit::StepFactor, &Edit::SetStepFactor>("stepFactor"),
    MakeProperty<PropertyType::kUnicode, &Edit::UnitLabelReference, &Edit::SetUnitLabelReference>("unitLabel"),
    MakeProperty<PropertyType::kUnsigned, &Edit::UnitLabelLength, &Edit::SetUnitLabelLength>("unitLabelLength"),
    MakeProperty<PropertyType::kBool, &Edit::UseInline, &Edit::SetUseInline>("useInline"),
    MakeProperty<PropertyType::kBool, &Edit::UseLabel, &Edit::SetUseLabel>("useLabel"),
};

} // namespace

const PropertyTable& UI_EditNumber::UI_GetPropertyTable() const {
    return PropertiesOfEditNumber();
}

const PropertyTable& UI_EditNumber::PropertiesOfEditNumber() {
    static const PropertyTable sTable{"uit::controls::UI_EditNumber", kRows, &PropertiesOfInteractiveControlView()};
    return sTable;
}

} // namespace uit::controls
