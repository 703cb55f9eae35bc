#include "ArchiveTestNodes.h"

namespace kroui::ui::test {

namespace {

const AdapterRegistrar<EveryType> sRegistrar("test::EveryType");

constexpr std::string_view kChoices[] = {"Left/Top", "Right/Bottom", "Both"};

} // namespace

const PropertyTable& EveryType::UI_GetPropertyTable() const {
    using T = EveryType;
    static constexpr PropertyRow kRows[] = {
        MakeProperty<PropertyType::kRect, &T::Area, &T::SetArea>("area"),
        MakeProperty<PropertyType::kEnumeration, &T::Choice, &T::SetChoice>("choice", kChoices),
        MakeProperty<PropertyType::kInt, &T::Count, &T::SetCount>("countOf"),
        MakeProperty<PropertyType::kBytes, &T::Image, &T::SetImage>("image"),
        MakeProperty<PropertyType::kTextList, &T::Items, &T::SetItems>("items"),
        MakeProperty<PropertyType::kDouble, &T::Level, &T::SetLevel>("level"),
        MakeProperty<PropertyType::kUnsigned, &T::Mask, &T::SetMask>("mask"),
        MakeProperty<PropertyType::kBool, &T::On, &T::SetOn>("on"),
        MakeProperty<PropertyType::kFloat, &T::Size, &T::SetSize>("size"),
        MakeProperty<PropertyType::kUnicode, &T::Text, &T::SetText>("text"),
    };
    static const PropertyTable sTable{"test::EveryType", kRows, &PropertiesOfSubView(), true};
    return sTable;
}

} // namespace kroui::ui::test
