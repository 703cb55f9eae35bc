#include "ArchiveReader.h"

#include "ArchiveFormat.h"

#include "kroui/ui/AdapterRegistry.h"

#include <charconv>

namespace kroui::ui {

namespace {

constexpr std::size_t kMostRows = 64; // bits of the masks below

// The number behind a prefix ("child-12": 12), written without leading zeros.
std::optional<std::uint32_t> NumberOf(std::string_view key, std::string_view prefix) {
    if (!key.starts_with(prefix)) return {};
    key.remove_prefix(prefix.size());
    if (key.size() > 1 && key.front() == '0') return {};
    std::uint32_t number = 0;
    const auto [end, error] = std::from_chars(key.data(), key.data() + key.size(), number);
    if (error != std::errc() || end != key.data() + key.size()) return {};
    return number;
}

// The row of a key: the one at `next` if pairs and rows stand in the same order.
const PropertyRow* FindRow(const PropertyTable& table, std::string_view key, std::size_t next) {
    if (next < table.rows.size() && table.rows[next].key == key) return &table.rows[next];
    return table.Find(key);
}

std::string KeysOf(const PropertyTable& table) {
    std::string keys = table.holdsChildren ? "children, " : "";
    for (const auto& row : table.rows) {
        keys.append(row.key).append(", ");
    }
    return keys + "sectionName";
}

std::string ClassesOf(const PropertyTable* table) {
    std::string names;
    for (; table != nullptr; table = table->base) {
        names.append(names.empty() ? "" : ", ").append(table->className);
    }
    return names;
}

// Sets the bit; false if it was set already.
bool Mark(std::uint64_t& mask, std::size_t bit) {
    const auto before = mask;
    mask |= std::uint64_t{1} << bit % kMostRows;
    return mask != before;
}

} // namespace

boost::intrusive_ptr<UI_Node> ArchiveReader::Read(pugi::xml_node map) {
    if (map.attribute("version").value() != std::string_view(format::kMapVersion)) {
        fDocument.ReportAt(map, {"another version of <prop.map>, expected version='4'"});
        return {};
    }
    const auto first = FirstElement(map);
    const ArchivePair list{format::kMap, map, first, first.name()};
    if (!list.value || !fValues.CheckList(list)) {
        if (!list.value) fDocument.ReportAt(map, {"<prop.map> is empty, expected <prop.list>"});
        return {};
    }
    ArchivePair version;
    ArchivePair root;
    const auto firstPair = PushPairs(list);
    for (auto at = firstPair; at < fPairs.size(); ++at) {
        const auto& pair = fPairs[at];
        if (pair.key == format::kArchiveVersionKey) {
            version = pair;
        } else if (pair.key == format::kRoot) {
            root = pair;
        } else {
            ReportUnknownKey(pair, "an archive", "UINodeArchive, root");
        }
    }
    fPairs.resize(firstPair);
    if (!version.value || !root.value) {
        fDocument.ReportAt(list.value,
                           {"the archive has no \"", (version.value ? format::kRoot : format::kArchiveVersionKey),
                            "\", expected UINodeArchive, root"});
        return {};
    }
    const auto number = fValues.ReadUnsigned(version);
    if (number && *number != format::kArchiveVersion) {
        fDocument.ReportAtText(version.value, {"archive version ", std::to_string(*number), ", expected 1"});
    }
    return number == format::kArchiveVersion ? ReadNode(root, 1) : nullptr;
}

boost::intrusive_ptr<UI_Node> ArchiveReader::ReadNode(const ArchivePair& pair, int depth) {
    if (!fValues.CheckList(pair)) return {};
    if (depth > UI_NodeBuilder::kDeepestNode) {
        fDocument.ReportAt(pair.value, {"nodes are nested too deeply, expected at most ",
                                        std::to_string(UI_NodeBuilder::kDeepestNode), " levels"});
        return {};
    }
    if (++fNodeCount > UI_NodeBuilder::kMostNodes) {
        if (fNodeCount == UI_NodeBuilder::kMostNodes + 1) {
            fDocument.ReportAt(pair.value,
                               {"too many nodes, expected at most ", std::to_string(UI_NodeBuilder::kMostNodes)});
        }
        return {};
    }
    NodeParts parts;
    if (!ReadNodeParts(pair.value, parts)) return {};
    auto node = CreateNode(pair.value, parts);
    if (!node) return {};

    const auto firstList = fChildLists.size();
    ReadSections(*node, parts);
    for (auto at = firstList; at < fChildLists.size(); ++at) {
        const auto children = fChildLists[at];
        ReadChildren(*node, children, depth + 1);
    }
    fChildLists.resize(firstList);
    return node;
}

bool ArchiveReader::ReadNodeParts(pugi::xml_node list, NodeParts& parts) {
    const auto first = PushPairs({format::kRoot, list, list, format::kList});
    for (auto at = first; at < fPairs.size(); ++at) {
        const auto& pair = fPairs[at];
        if (pair.key == format::kAdapter) {
            parts.adapter = pair;
        } else if (pair.key == format::kClassName) {
            parts.className = pair;
        } else if (pair.key == format::kSections) {
            parts.sections = pair;
        } else {
            ReportUnknownKey(pair, "a node", "adapter, className, sections");
        }
    }
    fPairs.resize(first);
    if (!parts.adapter.value && !parts.className.value) {
        fDocument.ReportAt(list, {"the node has no \"adapter\", expected the name of a node class"});
        return false;
    }
    return true;
}

boost::intrusive_ptr<UI_Node> ArchiveReader::CreateNode(pugi::xml_node list, const NodeParts& parts) {
    const auto& named = parts.className.value ? parts.className : parts.adapter;
    const auto name = fValues.ReadText(named, format::kUnicodeText);
    if (name.data() == nullptr) return {};
    if (parts.className.value) {
        auto node = fCustomNodeFactory ? fCustomNodeFactory(krocore::ToUTF16(name)) : nullptr;
        if (node) node->UI_SetArchiveClassName(name);
        return node;
    }
    auto node = AdapterRegistry::Get().Create(name);
    if (!node) {
        fDocument.ReportAtText(named.value, {"unknown adapter ", name, ", expected the name of a node class"});
    }
    if (node && !parts.sections.value) {
        fDocument.ReportAt(
            list, {"the node has no \"sections\", expected one for each of ", ClassesOf(&node->UI_GetPropertyTable())});
    }
    return node;
}

void ArchiveReader::ReadSections(UI_Node& node, const NodeParts& parts) {
    if (!parts.sections.value || !fValues.CheckList(parts.sections)) return;
    const auto first = PushNumbered(parts.sections, format::kSectionPrefix);
    const auto* table = &node.UI_GetPropertyTable();
    Chain chain{table, table, 0, false};
    for (auto at = first; at < fNumbered.size(); ++at) {
        ReadSection(node, fNumbered[at].pair, chain);
    }
    fNumbered.resize(first);
    ReportMissingSections(chain, parts);
}

void ArchiveReader::ReadSection(UI_Node& node, const ArchivePair& section, Chain& chain) {
    if (!fValues.CheckList(section)) return;
    const auto first = PushPairs(section);
    SortPairs(first);
    const PropertyTable* table = nullptr;
    bool isNamed = false;
    for (auto at = first; at < fPairs.size(); ++at) {
        if (fPairs[at].key == format::kChildren) fChildLists.push_back(fPairs[at]);
        if (fPairs[at].key != format::kSectionName) continue;
        isNamed = true;
        table = FindTable(fPairs[at], chain);
    }
    if (!isNamed) {
        chain.hasUnknown = true;
        fDocument.ReportAt(section.value,
                           {"the section has no \"sectionName\", expected one of ", ClassesOf(chain.first)});
    }
    if (table != nullptr) ApplyPairs(node, *table, first);
    if (table != nullptr && table->base == nullptr) RecordNode(node, first);
    fPairs.resize(first);
}

const PropertyTable* ArchiveReader::FindTable(const ArchivePair& sectionName, Chain& chain) {
    const auto name = fValues.ReadText(sectionName, format::kUnicodeText);
    if (name.data() == nullptr) return nullptr;
    const auto* table = chain.expected;
    if (table == nullptr || table->className != name) {
        table = chain.first;
        while (table != nullptr && table->className != name) {
            table = table->base;
        }
    }
    if (table == nullptr) {
        chain.hasUnknown = true;
        fDocument.ReportAtText(sectionName.value,
                               {name, " is no class of this node, expected one of ", ClassesOf(chain.first)});
        return nullptr;
    }
    std::size_t bit = 0;
    for (const auto* before = chain.first; before != table; before = before->base) {
        ++bit;
    }
    if (!Mark(chain.seen, bit)) {
        fDocument.ReportAtText(sectionName.value, {"a second section for ", name, ", expected one a class"});
        return nullptr;
    }
    chain.expected = table->base;
    return table;
}

void ArchiveReader::ApplyPairs(UI_Node& node, const PropertyTable& table, std::size_t firstPair) {
    std::uint64_t seen = 0;
    std::size_t next = 0;
    for (auto at = firstPair; at < fPairs.size(); ++at) {
        const auto& pair = fPairs[at];
        const auto* row = FindRow(table, pair.key, next);
        if (row == nullptr) {
            if (pair.key != format::kSectionName && pair.key != format::kChildren) {
                ReportUnknownKey(pair, table.className, KeysOf(table));
            }
            continue;
        }
        const auto index = static_cast<std::size_t>(row - table.rows.data());
        next = index + 1;
        if (!Mark(seen, index)) {
            fDocument.ReportAtText(pair.keyElement, {Quoted(pair.key), " stands twice, expected it once"});
        } else if (fValues.Read(*row, pair, fValue)) {
            row->set(node, fValue);
        }
    }
}

void ArchiveReader::ReportMissingSections(const Chain& chain, const NodeParts& parts) {
    if (chain.hasUnknown) return;
    // A custom node may be of any class; its placeholder records the sections of the adapter only.
    const auto* table = chain.first;
    std::size_t bit = 0;
    if (parts.className.value) {
        for (; table != nullptr && table->className != parts.adapter.value.child_value(); table = table->base) {
            ++bit;
        }
    }
    for (; table != nullptr; table = table->base, ++bit) {
        if ((chain.seen >> bit % kMostRows & 1U) != 0) continue;
        fDocument.ReportAt(parts.sections.value,
                           {"the node has no section for ", table->className, ", expected one a class"});
    }
}

void ArchiveReader::RecordNode(UI_Node& node, std::size_t firstPair) {
    const auto& id = node.UI_GetID();
    if (id.empty() || fNamed.try_emplace(id, &node).second) return;
    const auto pair = std::find_if(fPairs.begin() + static_cast<std::ptrdiff_t>(firstPair), fPairs.end(),
                                   [](const ArchivePair& p) { return p.key == "id"; });
    if (pair == fPairs.end()) return;
    fDocument.ReportAtText(pair->value, {"another node has the id ", Quoted(id), ", expected one of its own"});
}

void ArchiveReader::ReadChildren(UI_Node& node, const ArchivePair& children, int depth) {
    if (!fValues.CheckList(children)) return;
    const auto first = PushNumbered(children, format::kChildPrefix);
    const auto end = fNumbered.size();
    for (auto at = first; at < end; ++at) {
        const auto child = fNumbered[at].pair;
        node.ChildPushBack(ReadNode(child, depth));
    }
    fNumbered.resize(first);
}

std::size_t ArchiveReader::PushPairs(const ArchivePair& list) {
    const auto first = fPairs.size();
    ArchivePair pair;
    auto next = list.value.first_child();
    while (fValues.NextPair(next, pair)) {
        fPairs.push_back(pair);
    }
    return first;
}

void ArchiveReader::SortPairs(std::size_t first) {
    const auto pairs = std::span(fPairs).subspan(first);
    if (!std::ranges::is_sorted(pairs, {}, &ArchivePair::key)) std::ranges::stable_sort(pairs, {}, &ArchivePair::key);
}

std::size_t ArchiveReader::PushNumbered(const ArchivePair& list, std::string_view prefix) {
    const auto first = fNumbered.size();
    const auto firstPair = PushPairs(list);
    ArchivePair count;
    for (auto at = firstPair; at < fPairs.size(); ++at) {
        const auto& pair = fPairs[at];
        if (pair.key == format::kCount) {
            count = pair;
        } else if (const auto number = NumberOf(pair.key, prefix)) {
            fNumbered.push_back({*number, pair});
        } else {
            fDocument.ReportAtText(pair.keyElement, {"unknown key ", Quoted(pair.key), " in ", Quoted(list.key),
                                                     ", expected count, ", prefix, "NUMBER"});
        }
    }
    fPairs.resize(firstPair);
    RemoveDuplicates(first);
    CheckCount(list, count, prefix, first);
    return first;
}

void ArchiveReader::RemoveDuplicates(std::size_t first) {
    const auto begin = fNumbered.begin() + static_cast<std::ptrdiff_t>(first);
    const auto isBefore = [](const auto& a, const auto& b) { return a.number < b.number; };
    if (!std::is_sorted(begin, fNumbered.end(), isBefore)) std::stable_sort(begin, fNumbered.end(), isBefore);
    auto kept = first;
    for (auto at = first; at < fNumbered.size(); ++at) {
        const auto& entry = fNumbered[at];
        if (kept > first && fNumbered[kept - 1].number == entry.number) {
            fDocument.ReportAtText(entry.pair.keyElement, {Quoted(entry.pair.key), " stands twice, expected it once"});
        } else {
            fNumbered[kept++] = entry;
        }
    }
    fNumbered.resize(kept);
}

void ArchiveReader::CheckCount(const ArchivePair& list, const ArchivePair& count, std::string_view prefix,
                               std::size_t first) {
    if (!count.value) {
        fDocument.ReportAt(list.value, {Quoted(list.key), " has no \"count\", expected one"});
        return;
    }
    const auto wanted = fValues.ReadUnsigned(count);
    if (!wanted) return;
    const auto found = fNumbered.size() - first;
    const bool isGapless = found == 0 || fNumbered.back().number + std::size_t{1} == found;
    if (*wanted != found || !isGapless) {
        fDocument.ReportAtText(count.value,
                               {Quoted(list.key), " holds ", std::to_string(found), " of ", std::to_string(*wanted),
                                ", expected ", prefix, "0 to ", prefix, "<count - 1>"});
    }
    while (fNumbered.size() > first && fNumbered.back().number >= *wanted) {
        fNumbered.pop_back();
    }
}

void ArchiveReader::ReportUnknownKey(const ArchivePair& pair, std::string_view where, std::string_view expected) {
    fDocument.ReportAtText(pair.keyElement, {"unknown key ", Quoted(pair.key), " in ", where, ", expected ", expected});
}

} // namespace kroui::ui
