#include "ArchiveValueReader.h"

#include "ArchiveFormat.h"

#include <charconv>
#include <cmath>
#include <cstring>

namespace kroui::ui {

namespace {

constexpr float kLargestCoordinate = 1e6F; // view units

// Whether a name from the document is the word. Comparing a fixed number of bytes at once is safe: where the first one
// is that of a word, the end tag of the root, which no word is longer than, still follows in the buffer.
template <std::size_t Size>
bool Is(const char* name, const char (&word)[Size]) {
    static_assert(Size <= sizeof("</prop.map>"));
    return name[0] == word[0] && std::memcmp(name, word, Size) == 0;
}

std::string Tag(std::string_view name, std::string_view attributes = {}) {
    return std::string("<").append(name).append(attributes).append(">");
}

std::string IntElement(std::string_view type) {
    return Tag(format::kInt, std::string(" type='").append(type).append("' size='32'"));
}

template <class Value>
bool Take(std::optional<Value>&& read, PropertyValue& value) {
    if (!read) return false;
    value = std::move(*read);
    return true;
}

} // namespace

// Elements have names, texts have none; null nodes neither.
pugi::xml_node FirstElement(pugi::xml_node parent) {
    const auto first = parent.first_child();
    return *first.name() != 0 || !first ? first : NextElement(first);
}

pugi::xml_node NextElement(pugi::xml_node element) {
    do {
        element = element.next_sibling();
    } while (*element.name() == 0 && element);
    return element;
}

bool ArchiveValueReader::Read(const PropertyRow& row, const ArchivePair& pair, PropertyValue& value) {
    switch (row.type) {
    case PropertyType::kBool: return Take(ReadBool(pair), value);
    case PropertyType::kInt: return Take(ReadInt<std::int32_t>(pair, format::kSigned), value);
    case PropertyType::kUnsigned: return Take(ReadUnsigned(pair), value);
    case PropertyType::kFloat: return Take(ReadReal<float>(pair, format::kFloat), value);
    case PropertyType::kDouble: return Take(ReadReal<double>(pair, format::kDouble), value);
    case PropertyType::kRect: return Take(ReadRect(pair), value);
    case PropertyType::kEnumeration: return Take(ReadEnumeration(pair, row.itemNames.size()), value);
    case PropertyType::kConstraints: return Take(ReadConstraints(pair), value);
    case PropertyType::kTextList: return ReadTextList(pair, value.emplace<std::vector<krocore::string8>>());
    case PropertyType::kUnicode:
    case PropertyType::kBytes: break;
    }
    const auto text = ReadText(pair, row.type == PropertyType::kUnicode ? format::kUnicodeText : format::kByteText);
    if (text.data() != nullptr) value.emplace<krocore::string8>(text);
    return text.data() != nullptr;
}

std::optional<std::uint32_t> ArchiveValueReader::ReadUnsigned(const ArchivePair& pair) {
    return ReadInt<std::uint32_t>(pair, format::kUnsigned);
}

std::string_view ArchiveValueReader::ReadText(const ArchivePair& pair, const char* elementName) {
    if (std::strcmp(pair.valueName, elementName) == 0) return pair.value.child_value();
    ReportElement(pair, Tag(elementName));
    return {};
}

bool ArchiveValueReader::NextPair(pugi::xml_node& element, ArchivePair& pair) {
    while (true) {
        const auto current = element;
        const auto* name = current.name();
        if (*name == 0 && !current) return false;
        element = element.next_sibling();
        if (*name != 0 && ReadPair(current, name, pair)) return true;
    }
}

bool ArchiveValueReader::ReadPair(pugi::xml_node element, const char* elementName, ArchivePair& pair) {
    if (!Is(elementName, format::kPair)) {
        fDocument.ReportAt(element, {"<", elementName, "> in a list, expected <prop.pair>"});
        return false;
    }
    pair.keyElement = element.first_child();
    if (!Is(pair.keyElement.name(), format::kKey)) return ReadUnusualPair(element, pair);
    pair.key = pair.keyElement.child_value();
    pair.value = pair.keyElement.next_sibling();
    pair.valueName = pair.value.name();
    if (*pair.valueName == 0 || pair.value.next_sibling()) return ReadUnusualPair(element, pair);
    return true;
}

// A pair with texts between its elements, or a malformed one.
bool ArchiveValueReader::ReadUnusualPair(pugi::xml_node element, ArchivePair& pair) {
    pair.keyElement = FirstElement(element);
    if (!Is(pair.keyElement.name(), format::kKey)) {
        fDocument.ReportAt(element, {"the pair does not begin with its key, expected <key>"});
        return false;
    }
    pair.key = pair.keyElement.child_value();
    pair.value = NextElement(pair.keyElement);
    pair.valueName = pair.value.name();
    if (!pair.value || NextElement(pair.value)) {
        fDocument.ReportAt(element, {Quoted(pair.key), pair.value ? " has more than one value" : " has no value",
                                     ", expected exactly one element behind the key"});
        return false;
    }
    return true;
}

bool ArchiveValueReader::CheckList(const ArchivePair& pair) {
    if (Is(pair.valueName, format::kList)) return true;
    ReportElement(pair, "<prop.list>");
    return false;
}

template <class Number>
std::optional<Number> ArchiveValueReader::ReadInt(const ArchivePair& pair, const char* type) {
    if (!Is(pair.valueName, format::kInt)) {
        ReportElement(pair, IntElement(type));
        return {};
    }
    const auto element = pair.value;
    if (std::strcmp(element.attribute("type").value(), type) != 0 ||
        std::strcmp(element.attribute("size").value(), "32") != 0) {
        fDocument.ReportAt(element, {Quoted(pair.key), " is an integer of another type, expected ", IntElement(type)});
        return {};
    }
    return ReadNumber<Number>(pair);
}

template <class Number>
std::optional<Number> ArchiveValueReader::ReadNumber(const ArchivePair& pair) {
    const std::string_view text = pair.value.child_value();
    Number number{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    const bool isComplete = end == text.data() + text.size();
    if constexpr (std::is_floating_point_v<Number>) {
        if (error == std::errc() && isComplete && std::isfinite(number)) return number;
    } else {
        if (error == std::errc() && isComplete) return number;
    }
    constexpr auto kWanted = std::is_floating_point_v<Number> ? "a decimal number" : "a decimal integer";
    const bool isOutOfRange =
        error == std::errc::result_out_of_range || (std::is_unsigned_v<Number> && text.starts_with('-'));
    fDocument.ReportAtText(pair.value, {Quoted(pair.key), " is ", Quoted(text),
                                        isOutOfRange ? ", which is out of range, expected " : ", expected ", kWanted});
    return {};
}

template <class Number>
std::optional<Number> ArchiveValueReader::ReadReal(const ArchivePair& pair, const char* elementName) {
    if (std::strcmp(pair.valueName, elementName) == 0) return ReadNumber<Number>(pair);
    ReportElement(pair, Tag(elementName));
    return {};
}

std::optional<bool> ArchiveValueReader::ReadBool(const ArchivePair& pair) {
    if (Is(pair.valueName, format::kTrue)) return true;
    if (Is(pair.valueName, format::kFalse)) return false;
    ReportElement(pair, "<true/> or <false/>");
    return {};
}

template <class Field>
bool ArchiveValueReader::ReadRecord(const ArchivePair& record, std::int32_t type, const Field& field) {
    if (!CheckList(record)) return false;
    bool hasType = false;
    ArchivePair pair;
    auto next = record.value.first_child();
    while (NextPair(next, pair)) {
        if (pair.key != format::kRecordType) {
            if (!field(pair)) return false;
            continue;
        }
        const auto found = ReadInt<std::int32_t>(pair, format::kSigned);
        if (!found) return false;
        if (*found != type) {
            fDocument.ReportAtText(pair.value, {Quoted(record.key), " is a record of type ", std::to_string(*found),
                                                ", expected type ", std::to_string(type)});
            return false;
        }
        hasType = true;
    }
    if (!hasType) {
        fDocument.ReportAt(record.value, {Quoted(record.key), " is no record, expected the key \".aptype\""});
    }
    return hasType;
}

std::optional<Rect> ArchiveValueReader::ReadRect(const ArchivePair& rect) {
    constexpr std::string_view kKeys[] = {"height", "left", "top", "width"};
    std::optional<float> edges[4];
    const auto readEdge = [&](const ArchivePair& pair) {
        const auto at = static_cast<std::size_t>(std::ranges::find(kKeys, pair.key) - std::begin(kKeys));
        if (at == std::size(kKeys)) return ReportUnknownKey(pair, "height, left, top, width");
        edges[at] = ReadReal<float>(pair, format::kFloat);
        const bool isSize = at == 0 || at == 3;
        if (edges[at] && (std::abs(*edges[at]) > kLargestCoordinate || (isSize && *edges[at] < 0))) {
            fDocument.ReportAtText(pair.value, {Quoted(pair.key), " is out of range, expected ",
                                                isSize ? "0 to 1000000" : "-1000000 to 1000000"});
            return false;
        }
        return edges[at].has_value();
    };
    if (!ReadRecord(rect, format::kRectRecord, readEdge)) return {};
    for (std::size_t i = 0; i < std::size(kKeys); ++i) {
        if (edges[i]) continue;
        fDocument.ReportAt(rect.value,
                           {Quoted(rect.key), " has no ", Quoted(kKeys[i]), ", expected height, left, top, width"});
        return {};
    }
    return Rect{*edges[1], *edges[2], *edges[3], *edges[0]};
}

std::optional<std::int32_t> ArchiveValueReader::ReadEnumeration(const ArchivePair& enumeration, std::size_t itemCount) {
    std::optional<std::int32_t> selected;
    const auto readKey = [&](const ArchivePair& pair) {
        if (pair.key == format::kItems) {
            std::vector<krocore::string8> items;
            return ReadTextList(pair, items);
        }
        if (pair.key != format::kSelected) return ReportUnknownKey(pair, "items, selected");
        selected = ReadInt<std::int32_t>(pair, format::kSigned);
        const bool isTooLarge = selected && itemCount > 0 && std::cmp_greater_equal(*selected, itemCount);
        if (selected && (*selected < 0 || isTooLarge)) {
            const auto last = itemCount > 0 ? std::to_string(itemCount - 1) : "";
            fDocument.ReportAtText(pair.value, {Quoted(enumeration.key), " is ", std::to_string(*selected),
                                                ", expected 0 ", itemCount > 0 ? "to " : "or more", last});
            return false;
        }
        return selected.has_value();
    };
    if (!ReadRecord(enumeration, format::kEnumerationRecord, readKey)) return {};
    if (!selected) {
        fDocument.ReportAt(enumeration.value,
                           {Quoted(enumeration.key), " has no value, expected the key \"selected\""});
    }
    return selected;
}

std::optional<std::uint32_t> ArchiveValueReader::ReadConstraints(const ArchivePair& constraints) {
    std::optional<std::uint32_t> mask;
    const auto readMask = [&](const ArchivePair& pair) {
        if (pair.key != format::kConstraints) return ReportUnknownKey(pair, format::kConstraints);
        mask = ReadUnsigned(pair);
        return mask.has_value();
    };
    if (!ReadRecord(constraints, format::kConstraintsRecord, readMask)) return {};
    if (!mask) {
        fDocument.ReportAt(constraints.value,
                           {Quoted(constraints.key), " has no mask, expected the key \"constraints\""});
    }
    return mask;
}

bool ArchiveValueReader::ReadTextList(const ArchivePair& array, std::vector<krocore::string8>& texts) {
    if (!Is(array.valueName, format::kArray)) {
        ReportElement(array, "<array>");
        return false;
    }
    const auto prototype = FirstElement(array.value);
    if (!Is(prototype.name(), format::kArrayType) || !Is(FirstElement(prototype).name(), format::kUnicodeText)) {
        fDocument.ReportAt(array.value, {Quoted(array.key), " does not tell the type of its items, expected "
                                                            "<array.type> with an empty <ustring>"});
        return false;
    }
    for (auto item = NextElement(prototype); item; item = NextElement(item)) {
        const auto text = ReadText({array.key, {}, item, item.name()}, format::kUnicodeText);
        if (text.data() == nullptr) return false;
        texts.emplace_back(text);
    }
    return true;
}

bool ArchiveValueReader::ReportUnknownKey(const ArchivePair& pair, std::string_view expected) {
    fDocument.ReportAtText(pair.keyElement, {"unknown key ", Quoted(pair.key), ", expected ", expected});
    return false;
}

void ArchiveValueReader::ReportElement(const ArchivePair& pair, std::string_view expected) {
    fDocument.ReportAt(pair.value, {Quoted(pair.key), " is <", pair.valueName, ">, expected ", expected});
}

} // namespace kroui::ui
