#include "RoundStep.h"

#include "krocore/WholeNumber.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <initializer_list>

namespace kroui::utility {

namespace {

struct Mantissa {
    int tenths;
    bool isCommon; // fits any range; the others only where they meet the ends of it
    std::initializer_list<int> parts;
};

// Ascending. The uncommon ones serve ranges of semitones, decibels and degrees.
const std::array<Mantissa, 13>& Mantissas() {
    static const std::array<Mantissa, 13> sMantissas = {{
        {10, true, {10, 5, 2}},
        {12, false, {12, 6, 4, 2}},
        {15, false, {15, 5, 3}},
        {18, false, {18, 6, 2}},
        {20, true, {10, 4, 2}},
        {24, false, {24, 8, 4, 2}},
        {30, false, {6, 3}},
        {36, false, {6, 3}},
        {45, false, {9, 3}},
        {48, false, {8, 4, 2}},
        {50, true, {5}},
        {60, false, {6, 3, 2}},
        {90, false, {9, 3}},
    }};
    return sMantissas;
}

constexpr int kFarthestExponent = 305; // of the first of three, all of whose steps are numbers
constexpr double kLargestGrowth = 2.5; // of a step that meets the ends, over the wanted one

bool IsMultiple(double value, double step) {
    const double index = value / step;
    return std::abs(index - std::round(index)) < 1e-6;
}

// Steps like 0.12 would need labels longer than they are worth.
bool IsReadable(const Mantissa& mantissa, int exponent) {
    return mantissa.isCommon || (mantissa.tenths % 10 == 0 ? exponent >= 0 : exponent >= 1);
}

} // namespace

double RoundStep::Value() const {
    return Multiple(1);
}

double RoundStep::Multiple(double index) const {
    const double whole = index * mantissaTenths;
    const int power = exponent - 1;
    return power >= 0 ? whole * std::pow(10.0, power) : whole / std::pow(10.0, -power);
}

int RoundStep::Decimals() const {
    return std::max(0, (mantissaTenths % 10 == 0 ? 0 : 1) - exponent);
}

int RoundStep::Parts(double least) const {
    for (const Mantissa& mantissa : Mantissas()) {
        if (mantissa.tenths != mantissaTenths) continue;
        for (const int parts : mantissa.parts)
            if (Value() / parts >= least) return parts;
    }
    return 1;
}

RoundStep RoundStep::Choose(double low, double high, double least) {
    RoundStep common;
    bool hasCommon = false;
    const int start = krocore::TruncatedWithin(std::floor(std::log10(least)), -kFarthestExponent, kFarthestExponent);
    for (int exponent = start; exponent <= start + 2; ++exponent) {
        for (const Mantissa& mantissa : Mantissas()) {
            const RoundStep step{mantissa.tenths, exponent};
            const double value = step.Value();
            if (value < least * (1 - 1e-9) || !IsReadable(mantissa, exponent)) continue;
            if (hasCommon && value > least * kLargestGrowth) return common;
            if (mantissa.isCommon && !hasCommon) {
                common = step;
                hasCommon = true;
            }
            if (IsMultiple(low, value) && IsMultiple(high, value)) return step;
        }
    }
    return common;
}

} // namespace kroui::utility
