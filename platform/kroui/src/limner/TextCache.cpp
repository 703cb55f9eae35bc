#include "TextCache.h"

namespace kroui::limner {

namespace {

// In glyphs: twice what a screen of 7680 x 4320 shows in the smallest readable size, 6 x 12 pixels a letter.
constexpr std::size_t kMostRoom = std::size_t{1} << 20;
// What an entry takes besides its glyphs, in glyphs.
constexpr std::size_t kRoomOfEntry = 16;
// Beyond this a text has a place of its own, so that the cache's size stays bounded.
constexpr std::size_t kLongestKept = 1024;

// Keys must equal themselves, which a size or width that is no number does not.
TextStyle Usable(TextStyle style) {
    if (!(style.font.size > 0)) style.font.size = 1;
    if (!(style.width > 0)) style.width = 0;
    return style;
}

} // namespace

const ShapedText& TextCache::Find(std::u16string_view text, const TextStyle& style) {
    const Key key{text, Usable(style)};
    if (text.size() > kLongestKept) return FindLong(key);
    const auto found = fIndex.find(key);
    if (found == fIndex.end()) return Add(key);
    fEntries.splice(fEntries.begin(), fEntries, found->second);
    return found->second->shaped;
}

const ShapedText& TextCache::Add(const Key& key) {
    fEntries.push_front({std::u16string(key.text), key.style, Shape(key)});
    fIndex.emplace(Key{fEntries.front().text, key.style}, fEntries.begin());
    fRoom += RoomOf(fEntries.front());
    while (fRoom > kMostRoom)
        DropOldest();
    return fEntries.front().shaped;
}

void TextCache::DropOldest() {
    fRoom -= RoomOf(fEntries.back());
    fIndex.erase({fEntries.back().text, fEntries.back().style});
    fEntries.pop_back();
}

// A text that is shortened has fewer glyphs than letters, one of marks has more.
std::size_t TextCache::RoomOf(const Entry& entry) {
    return kRoomOfEntry + entry.text.size() + entry.shaped.glyphs.size();
}

const ShapedText& TextCache::FindLong(const Key& key) {
    if (fLong.text != key.text || fLong.style != key.style) fLong = {std::u16string(key.text), key.style, Shape(key)};
    return fLong.shaped;
}

ShapedText TextCache::Shape(const Key& key) {
    ++fShapedCount;
    return fShaper.Shape(key.text, key.style);
}

std::size_t TextCache::KeyHash::operator()(const Key& key) const noexcept {
    constexpr std::size_t kMix = 0x9E3779B97F4A7C15ULL;
    std::size_t hash = std::hash<std::u16string_view>()(key.text);
    hash = (hash ^ std::hash<float>()(key.style.font.size)) * kMix;
    hash = (hash ^ std::hash<float>()(key.style.width)) * kMix;
    hash += static_cast<std::size_t>(key.style.form) << 1 | static_cast<std::size_t>(key.style.font.bold);
    return hash ^ hash >> 32;
}

} // namespace kroui::limner
