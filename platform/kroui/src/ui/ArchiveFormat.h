#pragma once

#include <cstdint>

// The words of the layout archive format, for reading and writing: an XML document of dictionaries (prop.list) whose
// pairs stand in ascending byte order of their keys.
namespace kroui::ui::format {

inline constexpr char kMap[] = "prop.map";
inline constexpr char kList[] = "prop.list";
inline constexpr char kPair[] = "prop.pair";
inline constexpr char kKey[] = "key";
inline constexpr char kInt[] = "int";
inline constexpr char kSigned[] = "signed";
inline constexpr char kUnsigned[] = "unsigned";
inline constexpr char kFloat[] = "float";
inline constexpr char kDouble[] = "double";
inline constexpr char kTrue[] = "true";
inline constexpr char kFalse[] = "false";
inline constexpr char kUnicodeText[] = "ustring";
inline constexpr char kByteText[] = "string";
inline constexpr char kArray[] = "array";
inline constexpr char kArrayType[] = "array.type";

inline constexpr char kMapVersion[] = "4";
inline constexpr std::uint32_t kArchiveVersion = 1;
inline constexpr char kArchiveVersionKey[] = "UINodeArchive";
inline constexpr char kRoot[] = "root";
inline constexpr char kAdapter[] = "adapter";
inline constexpr char kClassName[] = "className";
inline constexpr char kSections[] = "sections";
inline constexpr char kSectionPrefix[] = "section-";
inline constexpr char kSectionName[] = "sectionName";
inline constexpr char kChildren[] = "children";
inline constexpr char kChildPrefix[] = "child-";
inline constexpr char kCount[] = "count";

// Records: lists whose key ".aptype" tells what they are.
inline constexpr char kRecordType[] = ".aptype";
inline constexpr std::int32_t kRectRecord = 1;
inline constexpr std::int32_t kEnumerationRecord = 2;
inline constexpr std::int32_t kConstraintsRecord = 4;
inline constexpr char kItems[] = "items";
inline constexpr char kSelected[] = "selected";
inline constexpr char kConstraints[] = "constraints";

} // namespace kroui::ui::format
