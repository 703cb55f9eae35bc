#include "kroui/ui/UI_NodeWriter.h"

#include "ArchiveFormat.h"
#include "ArchiveText.h"

#include "kroui/ui/UI_SubView.h"

#include <algorithm>
#include <numeric>

namespace kroui::ui {

namespace {

// The numbers 0 ... count - 1 in the byte order of their decimal texts: 0, 1, 10, 11, 2.
std::vector<std::size_t> InByteOrder(std::size_t count) {
    std::vector<std::size_t> numbers(count);
    std::iota(numbers.begin(), numbers.end(), std::size_t{0});
    std::ranges::sort(numbers, {}, [](std::size_t number) { return std::to_string(number); });
    return numbers;
}

class NodeWriter {
public:
    std::string Write(const UI_Node& root);

private:
    // A pair around the value that `value` writes.
    template <class Value>
    void Pair(std::string_view key, const Value& value);
    template <class Content>
    void List(const Content& content);

    void Node(const UI_Node& node);
    void Sections(const UI_Node& node, const PropertyTable& mostDerived);
    void Section(const UI_Node& node, const PropertyTable& table, bool isMostDerived);
    void Children(const UI_Node& node);
    void Property(const PropertyRow& row, const PropertyValue& value);
    void Record(std::int32_t type);
    void RectRecord(const Rect& rect);
    void EnumerationRecord(const PropertyRow& row, std::int32_t selected);
    template <class Texts>
    void TextArray(const Texts& texts);

    ArchiveText fText;
};

std::string NodeWriter::Write(const UI_Node& root) {
    fText.Open(format::kMap, " version='4'");
    List([&] {
        Pair(format::kArchiveVersionKey, [&] { fText.Unsigned(format::kArchiveVersion); });
        Pair(format::kRoot, [&] { Node(root); });
    });
    fText.Close(format::kMap);
    return fText.Take();
}

template <class Value>
void NodeWriter::Pair(std::string_view key, const Value& value) {
    fText.Open(format::kPair);
    fText.Text(format::kKey, key);
    value();
    fText.Close(format::kPair);
}

template <class Content>
void NodeWriter::List(const Content& content) {
    fText.Open(format::kList);
    content();
    fText.Close(format::kList);
}

void NodeWriter::Node(const UI_Node& node) {
    // A custom node is made by whoever reads the archive: only its place is recorded.
    const auto& className = node.UI_GetArchiveClassName();
    const auto& table = className.empty() ? node.UI_GetPropertyTable() : UI_SubView::PropertiesOfSubView();
    List([&] {
        Pair(format::kAdapter, [&] { fText.Text(format::kUnicodeText, table.className); });
        if (!className.empty()) Pair(format::kClassName, [&] { fText.Text(format::kUnicodeText, className); });
        Pair(format::kSections, [&] { Sections(node, table); });
    });
}

void NodeWriter::Sections(const UI_Node& node, const PropertyTable& mostDerived) {
    std::vector<const PropertyTable*> chain;
    for (const auto* table = &mostDerived; table != nullptr; table = table->base) {
        chain.push_back(table);
    }
    List([&] {
        Pair(format::kCount, [&] { fText.Unsigned(static_cast<std::uint32_t>(chain.size())); });
        for (const auto number : InByteOrder(chain.size())) {
            Pair(format::kSectionPrefix + std::to_string(number), [&] { Section(node, *chain[number], number == 0); });
        }
    });
}

void NodeWriter::Section(const UI_Node& node, const PropertyTable& table, bool isMostDerived) {
    const auto& rows = table.rows;
    auto row = rows.begin();
    const auto writeRowsBefore = [&](std::string_view key) {
        for (; row != rows.end() && row->key < key; ++row) {
            Pair(row->key, [&] { Property(*row, row->get(node)); });
        }
    };
    List([&] {
        writeRowsBefore(format::kChildren);
        if (isMostDerived && table.holdsChildren) Pair(format::kChildren, [&] { Children(node); });
        writeRowsBefore(format::kSectionName);
        Pair(format::kSectionName, [&] { fText.Text(format::kUnicodeText, table.className); });
        writeRowsBefore("\xFF");
    });
}

void NodeWriter::Children(const UI_Node& node) {
    const auto children =
        node.UI_GetArchiveClassName().empty() ? node.Children() : std::span<const boost::intrusive_ptr<UI_Node>>();
    List([&] {
        for (const auto number : InByteOrder(children.size())) {
            Pair(format::kChildPrefix + std::to_string(number), [&] { Node(*children[number]); });
        }
        Pair(format::kCount, [&] { fText.Unsigned(static_cast<std::uint32_t>(children.size())); });
    });
}

void NodeWriter::Property(const PropertyRow& row, const PropertyValue& value) {
    switch (row.type) {
    case PropertyType::kBool: fText.Empty(std::get<bool>(value) ? format::kTrue : format::kFalse); break;
    case PropertyType::kInt: fText.Int(std::get<std::int32_t>(value)); break;
    case PropertyType::kUnsigned: fText.Unsigned(std::get<std::uint32_t>(value)); break;
    case PropertyType::kFloat: fText.Float(std::get<float>(value)); break;
    case PropertyType::kDouble: fText.Double(std::get<double>(value)); break;
    case PropertyType::kUnicode: fText.Text(format::kUnicodeText, std::get<krocore::string8>(value)); break;
    case PropertyType::kBytes: fText.Text(format::kByteText, std::get<krocore::string8>(value)); break;
    case PropertyType::kRect: RectRecord(std::get<Rect>(value)); break;
    case PropertyType::kEnumeration: EnumerationRecord(row, std::get<std::int32_t>(value)); break;
    case PropertyType::kConstraints:
        List([&] {
            Record(format::kConstraintsRecord);
            Pair(format::kConstraints, [&] { fText.Unsigned(std::get<std::uint32_t>(value)); });
        });
        break;
    case PropertyType::kTextList: TextArray(std::get<std::vector<krocore::string8>>(value)); break;
    }
}

void NodeWriter::Record(std::int32_t type) {
    Pair(format::kRecordType, [&] { fText.Int(type); });
}

void NodeWriter::RectRecord(const Rect& rect) {
    List([&] {
        Record(format::kRectRecord);
        Pair("height", [&] { fText.Float(rect.height); });
        Pair("left", [&] { fText.Float(rect.left); });
        Pair("top", [&] { fText.Float(rect.top); });
        Pair("width", [&] { fText.Float(rect.width); });
    });
}

void NodeWriter::EnumerationRecord(const PropertyRow& row, std::int32_t selected) {
    List([&] {
        Record(format::kEnumerationRecord);
        if (!row.itemNames.empty()) Pair(format::kItems, [&] { TextArray(row.itemNames); });
        Pair(format::kSelected, [&] { fText.Int(selected); });
    });
}

template <class Texts>
void NodeWriter::TextArray(const Texts& texts) {
    fText.Open(format::kArray);
    fText.Open(format::kArrayType);
    fText.Empty(format::kUnicodeText);
    fText.Close(format::kArrayType);
    for (const auto& text : texts) {
        fText.Text(format::kUnicodeText, text);
    }
    fText.Close(format::kArray);
}

} // namespace

std::string WriteArchive(const UI_Node& root) {
    return NodeWriter().Write(root);
}

} // namespace kroui::ui
