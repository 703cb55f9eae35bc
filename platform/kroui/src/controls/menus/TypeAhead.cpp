#include "kroui/controls/TypeAhead.h"

#include <algorithm>

namespace kroui::controls {

namespace {

// Lower case of the Latin-1, Greek and Cyrillic capitals that have their small letter at a fixed distance (Unicode
// CaseFolding.txt); others stay.
char16_t Folded(char16_t c) {
    struct Range {
        char16_t first;
        char16_t last;
        char16_t distance;
    };
    static constexpr Range kRanges[] = {
        {u'A', u'Z', 0x20},     {0x00C0, 0x00D6, 0x20}, {0x00D8, 0x00DE, 0x20}, {0x0391, 0x03A1, 0x20},
        {0x03A3, 0x03A9, 0x20}, {0x0400, 0x040F, 0x50}, {0x0410, 0x042F, 0x20},
    };
    for (const Range& range : kRanges)
        if (c >= range.first && c <= range.last) return static_cast<char16_t>(c + range.distance);
    return c;
}

bool BeginsWith(std::u16string_view text, std::u16string_view folded) {
    return text.size() >= folded.size() && std::equal(folded.begin(), folded.end(), text.begin(),
                                                      [](char16_t f, char16_t t) { return f == Folded(t); });
}

} // namespace

bool TypeAhead::Contains(std::u16string_view text, std::u16string_view part) {
    const auto isSame = [](char16_t a, char16_t b) { return Folded(a) == Folded(b); };
    return std::search(text.begin(), text.end(), part.begin(), part.end(), isSame) != text.end() || part.empty();
}

bool TypeAhead::IsOneLetterRepeated() const {
    return std::all_of(fTyped.begin(), fTyped.end(), [this](char16_t c) { return c == fTyped.front(); });
}

int TypeAhead::Type(std::u16string_view typed, double now, int current, int count, const TextOfItem& textOf) {
    if (!IsTyping(now)) fTyped.clear();
    for (const char16_t c : typed)
        fTyped.push_back(Folded(c));
    fLast = now;
    if (fTyped.empty() || count <= 0) return -1;

    // One letter moves on from the item shown; more letters may stay at it.
    const bool isCycling = IsOneLetterRepeated();
    const std::u16string_view wanted = std::u16string_view(fTyped).substr(0, isCycling ? 1 : fTyped.size());
    const int first = std::max(0, isCycling ? current + 1 : current);
    for (int i = 0; i < count; ++i) {
        const int item = (first + i) % count;
        if (BeginsWith(textOf(item), wanted)) return item;
    }
    return -1;
}

} // namespace kroui::controls
