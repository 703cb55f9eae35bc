#pragma once

#include "kroui/ui/UI_NodeBuilder.h"

#include <pugixml.hpp>

#include <memory>
#include <string_view>

namespace kroui::ui {

// A text from the document in quotes, shortened if it is long.
std::string Quoted(std::string_view text);

// An archive's text, parsed, and the list of what is wrong with it. The parsed texts are pointers into a private copy
// of the bytes, which is how a position in the document is found when, and only when, there is something to report.
class ArchiveDocument {
public:
    // The bytes stay valid while the document lives; diagnostics are appended.
    ArchiveDocument(std::span<const std::byte> bytes, const std::string& name, std::vector<Diagnostic>& diagnostics);

    // The root element, or an empty node if this is no archive; why is reported.
    pugi::xml_node Parse();

    // What a message is composed of.
    using MessageParts = std::initializer_list<std::string_view>;

    // Reports a fault at an element's "<" or at the first character of a text.
    void ReportAt(pugi::xml_node element, MessageParts message);
    void ReportAtText(pugi::xml_node element, MessageParts message);

    // Room for the most nodes that there can be, of the kind that takes the most, indentation not counted: that grows
    // with the depth and costs nothing to read.
    static constexpr std::size_t kMostBytesOfNode = std::size_t{8} << 10;
    static constexpr std::size_t kLargestArchive = UI_NodeBuilder::kMostNodes * kMostBytesOfNode;

private:
    bool CheckStart();
    bool IsTooLarge() const;
    void Report(std::size_t offset, MessageParts message);
    std::size_t OffsetOf(const char* text) const { return static_cast<std::size_t>(text - fCopy.get()); }
    void ReportParseFault(const pugi::xml_parse_result& result);

    std::string_view fText;
    const std::string& fName;
    std::vector<Diagnostic>& fDiagnostics;
    std::unique_ptr<char[]> fCopy;
    pugi::xml_document fDocument;
    std::size_t fReported = 0;

    // Where the last position was computed, so that reports in reading order scan the text once.
    std::size_t fKnownOffset = 0;
    std::size_t fKnownLineStart = 0;
    int fKnownLine = 1;
};

} // namespace kroui::ui
