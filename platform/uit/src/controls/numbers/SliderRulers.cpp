#include "uit/controls/SliderRulers.h"

#include <utility>

namespace uit::controls {

using TextPlacement = SliderRuler::TextPlacement;

void SliderRulers::SetSettings(const RulerSettings& settings) {
    const int typeBefore = std::exchange(fSettings, settings).type;
    if (fIsGiven) return;
    if (settings.type != typeBefore) fFirst.reset();
    if (fFirst) {
        settings.Configure(*fFirst);
    } else if (settings.HasKnownType()) {
        MakeFirst();
    }
}

void SliderRulers::SetBounds(double low, double high) {
    if (low == fSettings.value1 && high == fSettings.value2) return;
    fSettings.value1 = low;
    fSettings.value2 = high;
    if (fFirst && !fIsGiven) fFirst->SetValueRange(low, high);
}

void SliderRulers::Give(RulerPtr ruler, int placement, int textPlacement) {
    fSettings.placement = placement;
    fSettings.textPlacement = textPlacement;
    fFirst = std::move(ruler);
    fIsGiven = fFirst != nullptr;
    if (!fFirst && fSettings.HasKnownType()) MakeFirst();
}

void SliderRulers::SetVertical(bool vertical) {
    fIsVertical = vertical;
    for (const RulerPtr& ruler : {fFirst, fSecond})
        if (ruler) ruler->SetVertical(vertical);
}

const SliderRulers::RulerPtr& SliderRulers::First() {
    if (!fFirst) MakeFirst();
    return fFirst;
}

void SliderRulers::MakeFirst() {
    fFirst = fSettings.MakeRuler();
    fFirst->SetVertical(fIsVertical);
}

bool SliderRulers::IsFirstShown() const {
    return fSettings.placement > RulerSettings::kNowhere && (fIsGiven || fSettings.HasKnownType());
}

SliderRuler SliderRulers::ShownFirst() const {
    if (!IsFirstShown()) return {};
    const bool isKnown =
        fSettings.textPlacement == TextPlacement::kTextLeftTop || fSettings.textPlacement == TextPlacement::kTextBoth;
    const auto texts = static_cast<TextPlacement>(fSettings.textPlacement);
    return {fFirst.get(), isKnown ? texts : TextPlacement::kTextRightBottom};
}

// None if the first one has marks on both sides.
SliderRuler SliderRulers::ShownSecond() const {
    const SliderRuler first = ShownFirst();
    if (first.ruler && first.textPlacement == TextPlacement::kTextBoth) return {};
    const bool isFirstBehind = !first.ruler || first.textPlacement == TextPlacement::kTextRightBottom;
    return {fSecond.get(), isFirstBehind ? TextPlacement::kTextLeftTop : TextPlacement::kTextRightBottom};
}

void SliderRulers::AlignTo(const kroui::controls::SliderLook& look) {
    for (const RulerPtr& ruler : {fFirst, fSecond}) {
        if (!ruler) continue;
        const double first = SliderRuler{ruler.get()}.IsAscending() ? 0 : 1;
        ruler->SetPixelRange(look.PixelAt(first), look.PixelAt(1 - first));
    }
}

} // namespace uit::controls
