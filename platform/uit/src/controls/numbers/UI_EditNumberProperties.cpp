// The properties that archives give an edit number.

#include "uit/controls/UI_EditNumber.h"

namespace uit::controls {

using kroui::controls::MakeValueProperty;
using kroui::ui::MakeProperty;
using kroui::ui::PropertyRow;
using kroui::ui::PropertyTable;
using kroui::ui::PropertyType;
using kroui::ui::PropertyValue;
using kroui::ui::UI_Node;
using kroui::ui::detail::MakeValue;
using kroui::ui::detail::TakeValue;

namespace {

using Edit = UI_EditNumber;

constexpr std::string_view kRulerTypes[] = {"None", "Linear", "Logarithmic", "DB", "FaderDB"};
constexpr std::string_view kRulerPlacements[] = {"None", "Left/Top", "Right/Bottom"};
constexpr std::string_view kRulerTextPlacements[] = {"Left/Top", "Right/Bottom", "Both"};

// A row for a number or switch of the ruler's settings.
template <PropertyType Type, auto Member>
constexpr PropertyRow MakeRulerProperty(std::string_view key, std::span<const std::string_view> itemNames = {}) {
    using Value = std::remove_cvref_t<decltype(std::declval<RulerSettings&>().*Member)>;
    return {key, Type,
            [](const UI_Node& node) {
                return MakeValue<Value, Type>(static_cast<const Edit&>(node).GetArchiveRuler().*Member);
            },
            [](UI_Node& node, const PropertyValue& value) {
                RulerSettings settings = static_cast<Edit&>(node).GetArchiveRuler();
                settings.*Member = TakeValue<Value, Type>(value);
                static_cast<Edit&>(node).SetArchiveRuler(settings);
            },
            itemNames};
}

// A row for one of its texts.
template <auto Member>
constexpr PropertyRow MakeRulerTextProperty(std::string_view key) {
    return {key, PropertyType::kUnicode,
            [](const UI_Node& node) -> PropertyValue {
                return (static_cast<const Edit&>(node).GetArchiveRuler().*Member).Reference();
            },
            [](UI_Node& node, const PropertyValue& value) {
                RulerSettings settings = static_cast<Edit&>(node).GetArchiveRuler();
                (settings.*Member).SetReference(std::get<krocore::string8>(value));
                static_cast<Edit&>(node).SetArchiveRuler(settings);
            }};
}

constexpr PropertyRow kRows[] = {
    MakeRulerProperty<PropertyType::kBool, &RulerSettings::abbreviateNumbers>("abbreviateNumbers"),
    MakeValueProperty<Edit, PropertyType::kUnsigned, &Edit::GetDecimalPlaces, &Edit::SetDecimalPlaces>("decimalPlaces"),
    MakeProperty<PropertyType::kUnsigned, &Edit::GetDigits, &Edit::SetDigits>("digits"),
    MakeValueProperty<Edit, PropertyType::kDouble, &Edit::GetIncrement, &Edit::SetIncrement>("increment"),
    MakeProperty<PropertyType::kUnicode, &Edit::LabelReference, &Edit::SetLabelReference>("label"),
    MakeRulerProperty<PropertyType::kDouble, &RulerSettings::logSeed>("logSeed"),
    MakeRulerProperty<PropertyType::kDouble, &RulerSettings::logStep>("logStep"),
    MakeProperty<PropertyType::kBool, &Edit::IsLogarithmic, &Edit::SetLogarithmic>("logarithmic"),
    MakeValueProperty<Edit, PropertyType::kDouble, &Edit::GetMaxValue, &Edit::SetMaxValue>("maxValue"),
    MakeValueProperty<Edit, PropertyType::kDouble, &Edit::GetMinValue, &Edit::SetMinValue>("minValue"),
    MakeRulerTextProperty<&RulerSettings::label1>("rulerLabel1"),
    MakeRulerTextProperty<&RulerSettings::label2>("rulerLabel2"),
    MakeRulerProperty<PropertyType::kEnumeration, &RulerSettings::placement>("rulerPlacement", kRulerPlacements),
    MakeRulerProperty<PropertyType::kEnumeration, &RulerSettings::textPlacement>("rulerTextPlacement",
                                                                                 kRulerTextPlacements),
    MakeRulerProperty<PropertyType::kEnumeration, &RulerSettings::type>("rulerType", kRulerTypes),
    MakeRulerProperty<PropertyType::kDouble, &RulerSettings::stepFactor>("stepFactor"),
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
