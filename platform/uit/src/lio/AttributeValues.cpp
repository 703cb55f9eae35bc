#include "uit/lio/AttributeValues.h"

#include "krocore/Localizer.h"
#include "krocore/NumberFormat.h"
#include "orrin/error.h"
#include "uit/controls/UI_RulerSliderContainer.h"

#include <algorithm>
#include <cmath>

namespace uit::lio {

using controls::RulerSettings;
using orrin::any_regular_t;
using orrin::dictionary_t;
using TextPlacement = controls::UI_RulerSliderContainer::RulerTextPlacement;

namespace {

constexpr float kLongest = 10000; // view units
constexpr double kFinestStep = 4; // pixels between the labels of a ruler
constexpr double kCoarsestStep = 10000;
constexpr double kLeastLogStep = 1.01; // a smaller ratio marks every pixel

constexpr NamedMeaning<int> kTextPlacements[] = {
    {"left_top", TextPlacement::kTextLeftTop},
    {"right_bottom", TextPlacement::kTextRightBottom},
    {"both", TextPlacement::kTextBoth},
};

constexpr std::string_view kRulerEntries[] = {
    "type",   "position", "text_placement", "step_factor",        "value1", "value2", "label1",
    "label2", "log_seed", "log_step",       "abbreviate_numbers",
};

// A whole number without a point, others as they are.
std::string NumberText(double value) {
    return std::string(std::string_view(krocore::ToUTF8(
        krocore::FormatNumber(value, 6, krocore::kFormatNoTrailingZeros | krocore::kFormatNoLocalization))));
}

std::string RangeText(double low, double high) {
    return " from " + NumberText(low) + " to " + NumberText(high);
}

} // namespace

double NumberOf(const any_regular_t& value) {
    const double number = value.get<double>();
    if (std::isnan(number)) throw std::invalid_argument("needs a number, not the result of an undefined operation");
    return number;
}

double FiniteNumberOf(const any_regular_t& value) {
    const double number = NumberOf(value);
    if (!std::isfinite(number)) throw std::invalid_argument("needs a number that is not infinite");
    return number;
}

double NumberWithin(const any_regular_t& value, double low, double high) {
    const double number = value.get<double>();
    if (!(number >= low && number <= high)) throw std::invalid_argument("needs a number" + RangeText(low, high));
    return number;
}

int WholeNumberWithin(const any_regular_t& value, int low, int high) {
    const double number = value.get<double>();
    if (!(number >= low && number <= high) || number != std::trunc(number))
        throw std::invalid_argument("needs a whole number" + RangeText(low, high));
    return static_cast<int>(number);
}

float LengthOf(const any_regular_t& value) {
    return static_cast<float>(NumberWithin(value, 0, kLongest));
}

bool BoolOf(const any_regular_t& value) {
    return value.get<bool>();
}

krocore::string16 TextOf(const any_regular_t& value) {
    const std::string& text = value.get<std::string>();
    return text.starts_with("$$$/") ? krocore::Localize(text) : krocore::ToUTF16(text);
}

bool EndsWithColon(std::u16string_view text) {
    return text.ends_with(u':') || text.ends_with(u'\uFF1A'); // the full-width colon of East Asian texts
}

Bounds BoundsOf(const any_regular_t& value) {
    static constexpr std::string_view kEntries[] = {"min_value", "max_value"};
    const auto& dictionary = value.get<dictionary_t>();
    CheckEntries(dictionary, kEntries);
    if (dictionary.size() != 2) throw std::invalid_argument("needs both min_value and max_value");
    Bounds bounds;
    ReadEntry(dictionary, "min_value", [&](const any_regular_t& entry) { bounds.low = NumberOf(entry); });
    ReadEntry(dictionary, "max_value", [&](const any_regular_t& entry) { bounds.high = NumberOf(entry); });
    if (bounds.low > bounds.high) std::swap(bounds.low, bounds.high);
    return {std::clamp(bounds.low, -kFarthestBound, kFarthestBound),
            std::clamp(bounds.high, -kFarthestBound, kFarthestBound)};
}

RulerSettings RulerSettingsOf(const any_regular_t& value, const RulerSettings& otherwise) {
    const auto& dictionary = value.get<dictionary_t>();
    CheckEntries(dictionary, kRulerEntries);
    RulerSettings settings = otherwise;
    settings.type = dictionary.empty() ? RulerSettings::kNone : RulerSettings::kLinear;
    const auto read = [&](std::string_view key, const auto& take) { ReadEntry(dictionary, key, take); };
    read("type", [&](const any_regular_t& entry) { settings.type = RulerTypeOf(entry); });
    // The side that the ruler is on is the side of its texts, unless they say something of their own.
    read("position", [&](const any_regular_t& entry) { settings.textPlacement = WholeNumberWithin(entry, 0, 1); });
    read("text_placement",
         [&](const any_regular_t& entry) { settings.textPlacement = MeaningOf(entry, kTextPlacements); });
    read("step_factor", [&](const any_regular_t& entry) { settings.stepFactor = StepFactorOf(entry); });
    read("value1", [&](const any_regular_t& entry) { settings.value1 = FiniteNumberOf(entry); });
    read("value2", [&](const any_regular_t& entry) { settings.value2 = FiniteNumberOf(entry); });
    read("label1", [&](const any_regular_t& entry) { settings.label1.SetText(TextOf(entry)); });
    read("label2", [&](const any_regular_t& entry) { settings.label2.SetText(TextOf(entry)); });
    read("log_seed", [&](const any_regular_t& entry) { settings.logSeed = LogSeedOf(entry); });
    read("log_step", [&](const any_regular_t& entry) { settings.logStep = LogStepOf(entry); });
    read("abbreviate_numbers", [&](const any_regular_t& entry) { settings.abbreviateNumbers = BoolOf(entry); });
    return settings;
}

int RulerTypeOf(const any_regular_t& value) {
    return WholeNumberWithin(value, RulerSettings::kNone, RulerSettings::kFader);
}

double StepFactorOf(const any_regular_t& value) {
    return NumberWithin(value, kFinestStep, kCoarsestStep);
}

double LogSeedOf(const any_regular_t& value) {
    const double seed = FiniteNumberOf(value);
    if (!(seed > 0)) throw std::invalid_argument("needs a number above 0");
    return seed;
}

double LogStepOf(const any_regular_t& value) {
    return NumberWithin(value, kLeastLogStep, kFarthestBound);
}

void RefuseName(std::span<const std::string_view> known) {
    std::string names;
    for (std::size_t i = 0; i < known.size(); ++i) {
        if (i > 0) names += i + 1 < known.size() ? ", @" : " or @";
        names += known[i];
    }
    throw std::invalid_argument("needs @" + names);
}

void CheckEntries(const dictionary_t& dictionary, std::span<const std::string_view> known) {
    for (const auto& [key, value] : dictionary)
        if (std::ranges::find(known, key.text()) == known.end())
            throw std::invalid_argument("has an entry '" + std::string(key.text()) + "' that is not known");
}

} // namespace uit::lio
