#pragma once

#include "ShapedText.h"
#include "TextShaper.h"

#include <cstdint>
#include <list>
#include <string>
#include <string_view>
#include <unordered_map>

namespace kroui::limner {

// The texts that were shaped lately; those unused for the longest time give way. There is room for all that the largest
// screen can show at once, since a cache that is a little too small for what is painted again and again finds nothing.
// Finding a text that is there allocates nothing.
class TextCache {
public:
    explicit TextCache(TextShaper& shaper) : fShaper(shaper) {}

    // Valid until the next call.
    const ShapedText& Find(std::u16string_view text, const TextStyle& style);

    std::uint64_t ShapedCount() const { return fShapedCount; }

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
    static std::size_t RoomOf(const Entry& entry);
    ShapedText Shape(const Key& key);
    void DropOldest();
    const ShapedText& Add(const Key& key);
    const ShapedText& FindLong(const Key& key);

    TextShaper& fShaper;
    std::list<Entry> fEntries; // latest use first
    // Keys look into the entries' own texts.
    std::unordered_map<Key, std::list<Entry>::iterator, KeyHash> fIndex;
    std::size_t fRoom = 0; // taken
    Entry fLong;
    std::uint64_t fShapedCount = 0;
};

} // namespace kroui::limner
