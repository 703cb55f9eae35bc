#include "workbench/views/EffectSearch.h"

#include "host/FactoryPresets.h"
#include "kroui/controls/TypeAhead.h"

#include <algorithm>
#include <utility>

namespace workbench {

using krocore::string16;
using kroui::controls::TypeAhead;
using qoc::components::EffectDescription;

namespace {

// They come with every effect that has settings, and name no use of it.
constexpr std::string_view kDefaultPreset = "Default";

std::vector<string16> WordsOf(std::u16string_view text) {
    std::vector<string16> words;
    for (std::size_t begin = 0; begin < text.size();) {
        const std::size_t end = std::min(text.find(u' ', begin), text.size());
        if (end > begin) words.emplace_back(text.substr(begin, end - begin));
        begin = end + 1;
    }
    return words;
}

bool HasWordThatBeginsWith(const string16& text, const string16& word) {
    return TypeAhead::Contains(u' ' + text, u' ' + word);
}

} // namespace

EffectSearch::EffectSearch(qohost::UserPresets presets) : fPresets(std::move(presets)) {
}

std::optional<EffectSearch::Hit> EffectSearch::Find(const EffectDescription& effect, std::u16string_view text) const {
    const string16 title = effect.DisplayName() + u' ' + qoc::components::CategoryName(effect.category);
    Hit hit;
    for (const string16& word : WordsOf(text)) {
        if (TypeAhead::Contains(title, word)) continue;
        const Texts& texts = TextsOf(effect);
        const auto found =
            std::ranges::find_if(texts, [&](const string16& each) { return HasWordThatBeginsWith(each, word); });
        if (found == texts.end()) return std::nullopt;
        if (hit.by.empty()) hit.by = *found;
    }
    return hit;
}

const EffectSearch::Texts& EffectSearch::TextsOf(const EffectDescription& effect) const {
    const auto [known, isNew] = fKnown.try_emplace(&effect);
    Texts& texts = known->second;
    if (!isNew) return texts;
    for (const qohost::Preset& preset : qohost::FactoryPresets(effect))
        if (preset.name != kDefaultPreset) texts.push_back(krocore::ToUTF16(preset.name));
    for (const std::string& name : fPresets.Names(effect.shortName))
        texts.push_back(krocore::ToUTF16(name));
    for (string16& word : WordsOf(effect.Keywords()))
        texts.push_back(std::move(word));
    return texts;
}

} // namespace workbench
