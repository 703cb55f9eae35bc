#include "ArchiveDocument.h"

#include <algorithm>
#include <cstring>

namespace kroui::ui {

namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr std::string_view kSpace = " \t\r\n";
constexpr std::size_t kLongestPart = 1000; // of a message, whatever names the document makes up
constexpr std::string_view kRootElement = "prop.map";

// Texts keep their spaces, and a text is found in the element itself.
constexpr unsigned kParseFlags =
    pugi::parse_escapes | pugi::parse_eol | pugi::parse_cdata | pugi::parse_ws_pcdata_single | pugi::parse_embed_pcdata;

// Tabs before a line: the writer indents a level of nodes by eight, and what is in it by less than twenty.
constexpr std::size_t kDeepestIndent = 8 * UI_NodeBuilder::kDeepestNode + 20;

// The offset behind the mark that closes what begins at `offset`; npos if it is never closed.
std::size_t SkipPast(std::string_view text, std::size_t offset, std::string_view closing) {
    const auto at = text.find(closing, offset);
    return at == text.npos ? text.npos : at + closing.size();
}

// The offset of the first element, behind byte order mark, declaration and comments; npos if anything else stands
// there.
std::size_t FindFirstElement(std::string_view text) {
    auto at = text.starts_with(kByteOrderMark) ? kByteOrderMark.size() : 0;
    while (true) {
        at = text.find_first_not_of(kSpace, at);
        if (at == text.npos || text[at] != '<') return text.npos;
        if (text.substr(at).starts_with("<?")) {
            at = SkipPast(text, at, "?>");
        } else if (text.substr(at).starts_with("<!--")) {
            at = SkipPast(text, at, "-->");
        } else {
            return at;
        }
        if (at == text.npos) return text.npos;
    }
}

std::string_view FaultText(pugi::xml_parse_status status) {
    switch (status) {
    case pugi::status_out_of_memory: return "there is not enough memory for the document";
    case pugi::status_bad_end_element:
    case pugi::status_end_element_mismatch: return "an end tag does not match the element that is open here";
    case pugi::status_bad_attribute: return "malformed attribute, expected NAME='VALUE'";
    case pugi::status_bad_start_element:
    case pugi::status_unrecognized_tag: return "malformed element, expected <NAME ...>";
    default: return "not well-formed XML";
    }
}

} // namespace

std::string Quoted(std::string_view text) {
    constexpr std::size_t kMostCharacters = 80;
    std::string quoted("\"");
    quoted.append(text.substr(0, kMostCharacters)).append(text.size() > kMostCharacters ? "...\"" : "\"");
    return quoted;
}

std::string Diagnostic::ToString() const {
    return file + ":" + std::to_string(line) + ":" + std::to_string(column) + ": " + message;
}

ArchiveDocument::ArchiveDocument(std::span<const std::byte> bytes, const std::string& name,
                                 std::vector<Diagnostic>& diagnostics)
    : fText(reinterpret_cast<const char*>(bytes.data()), bytes.size()), fName(name), fDiagnostics(diagnostics) {
}

pugi::xml_node ArchiveDocument::Parse() {
    if (!CheckStart()) return {};
    fCopy = std::make_unique_for_overwrite<char[]>(fText.size());
    std::memcpy(fCopy.get(), fText.data(), fText.size());
    const auto result = fDocument.load_buffer_inplace(fCopy.get(), fText.size(), kParseFlags, pugi::encoding_utf8);
    if (!result) {
        ReportParseFault(result);
        return {};
    }
    return fDocument.first_child();
}

bool ArchiveDocument::CheckStart() {
    const auto start = FindFirstElement(fText.substr(0, kLargestArchive));
    if (start == fText.npos) {
        Report(0, {"not an XML document, expected <?xml version='1.0'?> and <prop.map version='4'>"});
        return false;
    }
    const auto nameEnd = fText.find_first_of(" \t\r\n/>", start + 1);
    const auto length = nameEnd == fText.npos ? nameEnd : nameEnd - start - 1;
    if (fText.substr(start + 1, length) != kRootElement) {
        Report(start, {"not a layout archive, expected the root element <prop.map>"});
        return false;
    }
    if (IsTooLarge()) {
        Report(0, {"the document is larger than ", std::to_string(kLargestArchive >> 20U),
                   " MB without its indentation, expected a layout archive"});
        return false;
    }
    return true;
}

bool ArchiveDocument::IsTooLarge() const {
    std::size_t indented = 0;
    for (std::size_t line = 0; line < fText.size() && fText.size() - indented > kLargestArchive;) {
        const std::size_t content = std::min(fText.find_first_not_of('\t', line), fText.size());
        indented += std::min(content - line, kDeepestIndent);
        line = std::min(fText.find('\n', content), fText.size() - 1) + 1;
    }
    return fText.size() - indented > kLargestArchive;
}

void ArchiveDocument::ReportAt(pugi::xml_node element, MessageParts message) {
    Report(element ? OffsetOf(element.name()) - 1 : 0, message);
}

void ArchiveDocument::ReportAtText(pugi::xml_node element, MessageParts message) {
    const auto* text = element.child_value();
    if (*text == 0) {
        ReportAt(element, message);
    } else {
        Report(OffsetOf(text), message);
    }
}

void ArchiveDocument::ReportParseFault(const pugi::xml_parse_result& result) {
    const auto end = fText.find_last_not_of(kSpace) + 1;
    const auto offset = std::min(static_cast<std::size_t>(result.offset), end);
    // A tag that the document's end leaves open counts as cut off, whatever the parser thinks of its name.
    const bool isCutOff = offset + 1 >= end || fText.find('>', offset) == fText.npos;
    Report(isCutOff ? end : offset,
           {isCutOff ? "the document is cut off, expected </prop.map>" : FaultText(result.status)});
}

void ArchiveDocument::Report(std::size_t offset, MessageParts message) {
    if (fReported == UI_NodeBuilder::kMostDiagnostics) return;
    ++fReported;
    if (offset < fKnownOffset) {
        fKnownOffset = fKnownLineStart = 0;
        fKnownLine = 1;
    }
    for (auto at = fText.find('\n', fKnownOffset); at < offset; at = fText.find('\n', at + 1)) {
        ++fKnownLine;
        fKnownLineStart = at + 1;
    }
    fKnownOffset = offset;
    auto& diagnostic = fDiagnostics.emplace_back();
    diagnostic.file = fName;
    diagnostic.line = fKnownLine;
    diagnostic.column = static_cast<int>(offset - fKnownLineStart) + 1;
    for (const auto part : message) {
        diagnostic.message.append(part.substr(0, kLongestPart));
    }
}

} // namespace kroui::ui
