#include "qoc/components/GenericParameterInfo.h"

#include "krocore/Localizer.h"

#include <algorithm>
#include <cmath>

namespace qoc::components {

namespace {

constexpr float kNyquistUntilPrepared = 22050.0F;

} // namespace

GenericParameterInfo::GenericParameterInfo(const ParameterRow& row, int number)
    : fRow(row), fNumber(number), fLo(row.lo), fHi(row.hi) {
    SetNyquist(kNyquistUntilPrepared);
}

GenericParameterInfo::~GenericParameterInfo() = default;

void GenericParameterInfo::SetNyquist(float hertz) noexcept {
    if (fRow.scale == ParameterScale::kNyquist) fHi = fLo + hertz;
}

float GenericParameterInfo::ToClampedNatural(float normalised) const noexcept {
    const float natural = ToNatural(normalised);
    if (std::isnan(natural)) return fLo;
    if (fRow.kind == ParameterKind::kChoice) return ItemValue(NearestItem(natural));
    return std::clamp(natural, std::min(fLo, fHi), std::max(fLo, fHi));
}

float GenericParameterInfo::ToNatural(float normalised) const {
    if (fRow.scale == ParameterScale::kLogarithmic) {
        return static_cast<float>(fLo * std::pow(static_cast<double>(fHi) / fLo, static_cast<double>(normalised)));
    }
    return fLo + (fHi - fLo) * normalised;
}

float GenericParameterInfo::ToNormalised(float natural) const {
    if (fRow.scale == ParameterScale::kLogarithmic) {
        // The logarithm of what is not positive would be no number: as far below the range as can be told instead.
        const double positive = std::max(static_cast<double>(natural), 1e-30);
        return static_cast<float>(std::log(positive / fLo) / std::log(static_cast<double>(fHi) / fLo));
    }
    return (natural - fLo) / (fHi - fLo);
}

std::string GenericParameterInfo::GetID() const {
    return fNumber == 0 ? std::string(fRow.id) : fRow.id + std::to_string(fNumber);
}

krocore::string16 GenericParameterInfo::GetName() const {
    return krocore::ReplacePlaceholders(krocore::Localize(fRow.name), {krocore::FromASCII(std::to_string(fNumber))});
}

krocore::string16 GenericParameterInfo::GetUnit() const {
    return krocore::Localize(fRow.unit);
}

float GenericParameterInfo::GetDefault() const {
    const bool isBounded = fRow.scale == ParameterScale::kNyquist;
    return ToNormalised(isBounded ? std::min(fRow.defaultValue, fHi) : fRow.defaultValue);
}

GenericParameterInfo::Kind GenericParameterInfo::GetKind() const {
    switch (fRow.kind) {
    case ParameterKind::kSwitch: return Kind::kSwitch;
    case ParameterKind::kChoice: return Kind::kChoice;
    case ParameterKind::kNumber: break;
    }
    return Kind::kNumber;
}

GenericParameterInfo::Scale GenericParameterInfo::GetScale() const {
    return fRow.scale == ParameterScale::kLogarithmic ? Scale::kLogarithmic : Scale::kLinear;
}

krocore::string16 GenericParameterInfo::GetItemName(int item) const {
    if (item < 0 || item >= GetItemCount()) return {};
    return krocore::Localize(fRow.items[static_cast<std::size_t>(item)]);
}

int GenericParameterInfo::ToItem(float normalised) const {
    return NearestItem(ToNatural(normalised));
}

float GenericParameterInfo::FromItem(int item) const {
    return GetItemCount() == 0 ? 0.0F : ToNormalised(ItemValue(std::clamp(item, 0, GetItemCount() - 1)));
}

float GenericParameterInfo::ItemValue(int item) const noexcept {
    const auto index = static_cast<std::size_t>(item);
    return index < fRow.itemValues.size() ? fRow.itemValues[index] : static_cast<float>(item);
}

// Half-way between two it is the later one, as a switch is on from the middle.
int GenericParameterInfo::NearestItem(float natural) const noexcept {
    int nearest = 0;
    for (int item = 1; item < static_cast<int>(fRow.items.size()); ++item) {
        if (std::abs(ItemValue(item) - natural) <= std::abs(ItemValue(nearest) - natural)) nearest = item;
    }
    return nearest;
}

} // namespace qoc::components
