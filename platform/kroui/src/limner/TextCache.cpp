#include "TextCache.h"

namespace kroui::limner {

namespace {

constexpr std::size_t kMostTexts = 4096;
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
    if (fEntries.size() >= kMostTexts) {
        fIndex.erase({fEntries.back().text, fEntries.back().style});
        fEntries.pop_back();
    }
    fEntries.push_front({std::u16string(key.text), key.style, fShaper.Shape(key.text, key.style)});
    fIndex.emplace(Key{fEntries.front().text, key.style}, fEntries.begin());
    return fEntries.front().shaped;
}

const ShapedText& TextCache::FindLong(const Key& key) {
    if (fLong.text != key.text || fLong.style != key.style) {
        fLong = {std::u16string(key.text), key.style, fShaper.Shape(key.text, key.style)};
    }
    return fLong.shaped;
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
