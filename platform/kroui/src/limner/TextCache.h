#pragma once

#include "ShapedText.h"
#include "TextShaper.h"

#include <list>
#include <string>
#include <string_view>
#include <unordered_map>

namespace kroui::limner {

// The texts that were shaped lately; the one unused for the longest time gives way. Finding a text that is there
// allocates nothing.
class TextCache {
public:
    explicit TextCache(TextShaper& shaper) : fShaper(shaper) {}

    // Valid until the next call.
    const ShapedText& Find(std::u16string_view text, const TextStyle& style);

private:
    struct Key {
        std::u16string_view text;
        TextStyle style;
        friend bool operator==(const Key&, const Key&) = default;
    };
    struct KeyHash {
        std::size_t operator()(const Key& key) const noexcept;
    };
    struct Entry {
        std::u16string text;
        TextStyle style;
        ShapedText shaped;
    };
    const ShapedText& Add(const Key& key);
    const ShapedText& FindLong(const Key& key);

    TextShaper& fShaper;
    std::list<Entry> fEntries; // latest use first
    // Keys look into the entries' own texts.
    std::unordered_map<Key, std::list<Entry>::iterator, KeyHash> fIndex;
    Entry fLong;
};

} // namespace kroui::limner
