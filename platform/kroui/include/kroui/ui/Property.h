#pragma once

#include "krocore/String.h"
#include "kroui/Geometry.h"

#include <cstdint>
#include <span>
#include <string_view>
#include <type_traits>
#include <variant>
#include <vector>

namespace kroui::ui {

class UI_Node;

// How a property stands in an archive.
enum class PropertyType : std::uint8_t {
    kBool,        // <true/>, <false/>
    kInt,         // <int type='signed' size='32'>
    kUnsigned,    // <int type='unsigned' size='32'>
    kFloat,       // <float>
    kDouble,      // <double>
    kUnicode,     // <ustring>
    kBytes,       // <string>
    kRect,        // record of type 1
    kEnumeration, // record of type 2: the chosen index (signed)
    kConstraints, // record of type 4: a mask (unsigned)
    kTextList,    // <array> of ustring
};

// kInt and kEnumeration: int32. kUnsigned and kConstraints: uint32. kUnicode and kBytes: UTF-8 text as archives have it
// (a reference to a localised text stays one). kTextList: such texts.
using PropertyValue = std::variant<bool, std::int32_t, std::uint32_t, float, double, krocore::string8, Rect,
                                   std::vector<krocore::string8>>;

// One property of a class: the only description of it. Loading, saving, inspecting and tests all go through rows.
struct PropertyRow {
    std::string_view key;
    PropertyType type;
    PropertyValue (*get)(const UI_Node& node);
    void (*set)(UI_Node& node, const PropertyValue& value); // the value holds what `type` says
    std::span<const std::string_view> itemNames = {};       // kEnumeration: names written beside the index, if any
};

// The properties that one class adds, rows ascending by key in byte order, and the table of its base.
struct PropertyTable {
    std::string_view className; // as archives write it: "kroui::controls::UI_Checkbox"
    std::span<const PropertyRow> rows;
    const PropertyTable* base = nullptr;
    bool holdsChildren = false; // archives write the children of a node of this class in this section

    const PropertyRow* Find(std::string_view key) const;
};

// A row from a getter and a setter of a node class, for use in the sources of such classes:
//   MakeProperty<PropertyType::kInt, &UI_Checkbox::CheckSize, &UI_Checkbox::SetCheckSize>("checkSize")
// Getters return, and setters take, a type that converts to and from what the property's type holds.
template <PropertyType Type, auto Getter, auto Setter>
constexpr PropertyRow MakeProperty(std::string_view key, std::span<const std::string_view> itemNames = {});

} // namespace kroui::ui

#include "kroui/ui/PropertyDetail.h"
