#pragma once

// The glue between typed getters and setters and PropertyValue; included by Property.h only.
#include "kroui/ui/Property.h"

namespace kroui::ui {
namespace detail {

template <class T, PropertyType Type>
PropertyValue MakeValue(const T& value) {
    if constexpr (std::is_same_v<T, Rect> || std::is_same_v<T, std::vector<krocore::string8>>) {
        return value;
    } else if constexpr (Type == PropertyType::kUnicode || Type == PropertyType::kBytes) {
        return krocore::string8(std::string_view(value));
    } else if constexpr (Type == PropertyType::kBool) {
        return static_cast<bool>(value);
    } else if constexpr (Type == PropertyType::kInt || Type == PropertyType::kEnumeration) {
        return static_cast<std::int32_t>(value);
    } else if constexpr (Type == PropertyType::kUnsigned || Type == PropertyType::kConstraints) {
        return static_cast<std::uint32_t>(value);
    } else if constexpr (Type == PropertyType::kFloat) {
        return static_cast<float>(value);
    } else {
        return static_cast<double>(value);
    }
}

template <class T, PropertyType Type>
T TakeValue(const PropertyValue& value) {
    if constexpr (std::is_same_v<T, Rect> || std::is_same_v<T, std::vector<krocore::string8>>) {
        return std::get<T>(value);
    } else if constexpr (Type == PropertyType::kUnicode || Type == PropertyType::kBytes) {
        return T(std::string_view(std::get<krocore::string8>(value)));
    } else if constexpr (Type == PropertyType::kBool) {
        return static_cast<T>(std::get<bool>(value));
    } else if constexpr (Type == PropertyType::kInt || Type == PropertyType::kEnumeration) {
        return static_cast<T>(std::get<std::int32_t>(value));
    } else if constexpr (Type == PropertyType::kUnsigned || Type == PropertyType::kConstraints) {
        return static_cast<T>(std::get<std::uint32_t>(value));
    } else if constexpr (Type == PropertyType::kFloat) {
        return static_cast<T>(std::get<float>(value));
    } else {
        return static_cast<T>(std::get<double>(value));
    }
}

template <class>
struct GetterTraits;
template <class R, class C>
struct GetterTraits<R (C::*)() const> {
    using Class = C;
    using Result = std::remove_cvref_t<R>;
};
template <class>
struct SetterTraits;
template <class R, class C, class A>
struct SetterTraits<R (C::*)(A)> {
    using Class = C;
    using Argument = std::remove_cvref_t<A>;
};

} // namespace detail

template <PropertyType Type, auto Getter, auto Setter>
constexpr PropertyRow MakeProperty(std::string_view key, std::span<const std::string_view> itemNames) {
    using Get = detail::GetterTraits<decltype(Getter)>;
    using Set = detail::SetterTraits<decltype(Setter)>;
    return {key, Type,
            [](const UI_Node& node) {
                return detail::MakeValue<typename Get::Result, Type>(
                    (static_cast<const typename Get::Class&>(node).*Getter)());
            },
            [](UI_Node& node, const PropertyValue& value) {
                (static_cast<typename Set::Class&>(node).*
                 Setter)(detail::TakeValue<typename Set::Argument, Type>(value));
            },
            itemNames};
}

} // namespace kroui::ui
