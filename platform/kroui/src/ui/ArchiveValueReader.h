#pragma once

#include "ArchiveDocument.h"

#include "kroui/ui/Property.h"

#include <optional>

namespace kroui::ui {

// A key of a dictionary and its value, an element each.
struct ArchivePair {
    std::string_view key;
    pugi::xml_node keyElement;
    pugi::xml_node value;
    const char* valueName = ""; // the value's element name
};

// The first or next element among siblings: comments and stray texts do not count.
pugi::xml_node FirstElement(pugi::xml_node parent);
pugi::xml_node NextElement(pugi::xml_node element);

// Reads the values of properties. What is no value of the wanted type is reported and gives nothing.
class ArchiveValueReader {
public:
    explicit ArchiveValueReader(ArchiveDocument& document) : fDocument(document) {}

    // False, after a report, if the value is not what the row wants.
    bool Read(const PropertyRow& row, const ArchivePair& pair, PropertyValue& value);

    std::optional<std::uint32_t> ReadUnsigned(const ArchivePair& pair);
    // The text of a <ustring> or <string>; null data after a report if the element is another one.
    std::string_view ReadText(const ArchivePair& pair, const char* elementName);

    // Reads the first pair from `element` on and moves `element` behind it; false at the list's end. Starts with the
    // list's first child. Pairs that are malformed are reported and passed over.
    bool NextPair(pugi::xml_node& element, ArchivePair& pair);
    // Whether the element is a <prop.list>; reports if not.
    bool CheckList(const ArchivePair& pair);

private:
    template <class Number>
    std::optional<Number> ReadInt(const ArchivePair& pair, const char* type);
    template <class Number>
    std::optional<Number> ReadNumber(const ArchivePair& pair);
    template <class Number>
    std::optional<Number> ReadReal(const ArchivePair& pair, const char* elementName);
    std::optional<bool> ReadBool(const ArchivePair& pair);
    std::optional<Rect> ReadRect(const ArchivePair& rect);
    std::optional<std::int32_t> ReadEnumeration(const ArchivePair& enumeration, std::size_t itemCount);
    std::optional<std::uint32_t> ReadConstraints(const ArchivePair& constraints);
    bool ReadTextList(const ArchivePair& array, std::vector<krocore::string8>& texts);

    // Calls `field(pair)` for each key of a record other than ".aptype", which has to be `type`; the field reports and
    // answers false for a bad value.
    template <class Field>
    bool ReadRecord(const ArchivePair& record, std::int32_t type, const Field& field);
    bool ReadPair(pugi::xml_node element, const char* elementName, ArchivePair& pair);
    bool ReadUnusualPair(pugi::xml_node element, ArchivePair& pair);
    bool ReportUnknownKey(const ArchivePair& pair, std::string_view expected);
    void ReportElement(const ArchivePair& pair, std::string_view expected);

    ArchiveDocument& fDocument;
};

} // namespace kroui::ui
