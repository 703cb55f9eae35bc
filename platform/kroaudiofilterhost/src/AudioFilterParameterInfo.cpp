#include "kroaudiofilterhost/AudioFilterParameterInfo.h"

#include "krocore/Localizer.h"
#include "krocore/NumberFormat.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <span>

namespace kroaudiofilterhost {

namespace {

constexpr float kSwitchThreshold = 0.5F;
constexpr const char* kOnKey = "$$$/kroaudiofilterhost/Switch/On=On";
constexpr const char* kOffKey = "$$$/kroaudiofilterhost/Switch/Off=Off";

constexpr std::array<std::string_view, 4> kOnWords = {"on", "yes", "true", "1"};
constexpr std::array<std::string_view, 4> kOffWords = {"off", "no", "false", "0"};

std::u16string_view Trimmed(std::u16string_view text) {
    constexpr std::u16string_view kSpaces = u" \t\u00A0";
    const std::size_t first = text.find_first_not_of(kSpaces);
    if (first == std::u16string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(kSpaces) - first + 1);
}

bool IsSame(std::string_view a, std::u16string_view b) {
    return krocore::EqualsIgnoringCase(a, krocore::ToUTF8(b));
}

bool IsOneOf(std::string_view text, std::span<const std::string_view> words) {
    return std::ranges::any_of(words, [&](auto word) { return krocore::EqualsIgnoringCase(text, word); });
}

} // namespace

AudioFilterParameterInfo::~AudioFilterParameterInfo() = default;

krocore::string16 AudioFilterParameterInfo::GetItemName(int /*item*/) const {
    return {};
}

int AudioFilterParameterInfo::ToItem(float /*normalised*/) const {
    return 0;
}

float AudioFilterParameterInfo::FromItem(int /*item*/) const {
    return 0.0F;
}

krocore::string16 AudioFilterParameterInfo::ToText(float normalised) const {
    switch (GetKind()) {
    case Kind::kSwitch: return krocore::Localize(normalised >= kSwitchThreshold ? kOnKey : kOffKey);
    case Kind::kChoice: return GetItemName(ToItem(normalised));
    case Kind::kNumber: break;
    }
    krocore::string16 text =
        krocore::FormatNumber(ToNatural(normalised), GetDecimalPlaces(), krocore::kFormatNoTrailingZeros);
    const krocore::string16 unit = GetUnit();
    if (!unit.empty()) text += u" " + unit;
    return text;
}

std::optional<float> AudioFilterParameterInfo::FromText(std::u16string_view text) const {
    text = Trimmed(text);
    switch (GetKind()) {
    case Kind::kSwitch: return SwitchFromText(krocore::ToStdString(text));
    case Kind::kChoice: return ChoiceFromText(krocore::ToStdString(text));
    case Kind::kNumber: break;
    }
    return NumberFromText(text);
}

std::optional<float> AudioFilterParameterInfo::SwitchFromText(std::string_view text) const {
    if (IsOneOf(text, kOnWords) || IsSame(text, krocore::Localize(kOnKey))) return 1.0F;
    if (IsOneOf(text, kOffWords) || IsSame(text, krocore::Localize(kOffKey))) return 0.0F;
    return std::nullopt;
}

std::optional<float> AudioFilterParameterInfo::ChoiceFromText(std::string_view text) const {
    for (int item = 0; item < GetItemCount(); ++item) {
        if (IsSame(text, GetItemName(item))) return FromItem(item);
    }
    return std::nullopt;
}

std::optional<float> AudioFilterParameterInfo::NumberFromText(std::u16string_view text) const {
    const std::optional<double> number = krocore::ParseTypedNumber(text, GetUnit());
    if (!number) return std::nullopt;
    if (*number == -std::numeric_limits<double>::infinity()) return ToNatural(0) <= ToNatural(1) ? 0.0F : 1.0F;
    const float normalised = ToNormalised(static_cast<float>(*number));
    if (!std::isfinite(normalised)) return std::nullopt;
    return normalised;
}

} // namespace kroaudiofilterhost
