#pragma once

#include "krocore/SmallBlockAllocator.h"

#include <string>
#include <string_view>

namespace krocore {

// UTF-16 text: identifiers, labels and messages. UTF-8 text: node ids and anything that goes to files or fonts.
using string16 = std::basic_string<char16_t, std::char_traits<char16_t>, SmallBlockAllocator<char16_t>>;
using string8 = std::basic_string<char, std::char_traits<char>, SmallBlockAllocator<char>>;

// Conversions. Malformed input never fails: each maximal ill-formed part (overlong form, lone surrogate, cut-off
// sequence, value above U+10FFFF) becomes one U+FFFD, as the Unicode Standard recommends in section 3.9.
string16 ToUTF16(std::string_view utf8);
string8 ToUTF8(std::u16string_view utf16);

// The same into standard strings, for callers whose interfaces take those.
std::string ToStdString(std::u16string_view utf16);

// ASCII literals to UTF-16; bytes above 127 become U+FFFD.
string16 FromASCII(std::string_view ascii);

// Comparison without regard to the case of the ASCII letters.
bool EqualsIgnoringCase(std::string_view a, std::string_view b) noexcept;

} // namespace krocore
