#pragma once

#include "ArchiveValueReader.h"

namespace kroui::ui {

// Builds the node tree that a parsed archive describes. Pairs are expected in the order in which archives are written,
// which makes matching them with a class's property rows a walk through both; any other order reads the same.
class ArchiveReader {
public:
    // Both live longer than the reader.
    ArchiveReader(ArchiveDocument& document, const CustomNodeFactory& customNodeFactory)
        : fDocument(document), fValues(document), fCustomNodeFactory(customNodeFactory) {
        fPairs.reserve(kUsualPairs);
    }

    // The tree below the document's root element; null, after a report, if this is no archive of the known version.
    boost::intrusive_ptr<UI_Node> Read(pugi::xml_node map);

    // The nodes with an id, of the tree that has been read.
    NamedNodes& Named() { return fNamed; }

private:
    static constexpr std::size_t kUsualPairs = 64; // on the stack at a time

    struct Numbered {
        std::uint32_t number;
        ArchivePair pair;
    };
    struct NodeParts {
        ArchivePair adapter;
        ArchivePair className;
        ArchivePair sections;
    };
    // Which class's part a section is for, and which classes have had theirs: a bit a class of the chain.
    struct Chain {
        const PropertyTable* first;
        const PropertyTable* expected;
        std::uint64_t seen;
        bool hasUnknown = false; // a section that could not be told whose it is
    };

    boost::intrusive_ptr<UI_Node> ReadNode(const ArchivePair& pair, int depth);
    bool ReadNodeParts(pugi::xml_node list, NodeParts& parts);
    boost::intrusive_ptr<UI_Node> CreateNode(pugi::xml_node list, const NodeParts& parts);
    void ReadSections(UI_Node& node, const NodeParts& parts);
    void ReadSection(UI_Node& node, const ArchivePair& section, Chain& chain);
    const PropertyTable* FindTable(const ArchivePair& sectionName, Chain& chain);
    void ApplyPairs(UI_Node& node, const PropertyTable& table, std::size_t firstPair);
    void ReportMissingSections(const Chain& chain, const NodeParts& parts);
    void RecordNode(UI_Node& node, std::size_t firstPair);
    void ReadChildren(UI_Node& node, const ArchivePair& children, int depth);

    // Appends a list's pairs to fPairs and returns where they begin.
    std::size_t PushPairs(const ArchivePair& list);
    // Puts the pairs from `first` on into the order in which archives are written: a value is held within the bounds
    // that are set before it.
    void SortPairs(std::size_t first);
    // Appends the values of PREFIX-0 ... PREFIX-<count - 1> to fNumbered in ascending order and returns where they
    // begin.
    std::size_t PushNumbered(const ArchivePair& list, std::string_view prefix);
    void RemoveDuplicates(std::size_t first);
    void CheckCount(const ArchivePair& list, const ArchivePair& count, std::string_view prefix, std::size_t first);
    void ReportUnknownKey(const ArchivePair& pair, std::string_view where, std::string_view expected);

    ArchiveDocument& fDocument;
    ArchiveValueReader fValues;
    const CustomNodeFactory& fCustomNodeFactory;
    NamedNodes fNamed;
    int fNodeCount = 0;
    PropertyValue fValue;

    // Stacks: each nested list uses what is behind the lists around it.
    std::vector<ArchivePair> fPairs;
    std::vector<Numbered> fNumbered;
    std::vector<ArchivePair> fChildLists;
};

} // namespace kroui::ui
