#pragma once

#include "krocore/String.h"

#include <cstddef>
#include <filesystem>
#include <functional>
#include <initializer_list>
#include <string>
#include <string_view>
#include <unordered_map>

namespace krocore {

// Finds the text that a user sees. A key is "$$$/Group/Entry=Default text"; the part before "=" names the entry, the
// part after it is shown when no dictionary has the entry. User-interface thread only.
class Localizer {
public:
    // The one localiser of the process.
    static Localizer& Get();

    // The text for a key; a key without "=" that no dictionary has is shown itself. Text that is not a key ("$$$/" in
    // front) comes back as it is, apart from its escapes: "#{deg}" is the degree sign, "#{cubed}" a raised 3, "#{endl}"
    // a line end, "#{hash}" a "#"; an escape that is not known stays as written.
    string16 Localize(std::string_view key) const;

    // An archive's reference to a text: a key in parentheses is localised, anything else is taken as it stands.
    string16 LocalizeReference(std::string_view reference) const;

    // Adds the entries of a dictionary file: UTF-8, a line an entry, "$$$/Group/Entry=Text"; empty lines and lines that
    // begin with "//" are passed over; "\n" in a text is a line end. A later dictionary wins over an earlier one.
    // Throws krocore::config::Error naming file and line when the file can't be read or a line is no entry; nothing of
    // that file is kept then.
    void LoadDictionary(const std::filesystem::path& file);
    void LoadDictionaryText(std::string_view text, std::string_view nameForMessages);

    // Forgets all dictionaries: defaults again.
    void Clear();

private:
    // Lets a lookup go without a copy of the name.
    struct NameHash {
        using is_transparent = void;
        std::size_t operator()(std::string_view name) const noexcept { return std::hash<std::string_view>()(name); }
    };
    using Entries = std::unordered_map<std::string, string8, NameHash, std::equal_to<>>;

    Entries fEntries;
};

// Short for Localizer::Get().Localize(key).
string16 Localize(std::string_view key);

// Replaces "@0" ... "@9" in a text. A number with no replacement stays; "@@" is one "@".
string16 ReplacePlaceholders(std::u16string_view text, std::initializer_list<std::u16string_view> replacements);

} // namespace krocore
