#pragma once

#include "krocore/String.h"
#include "orrin/any_regular.h"
#include "orrin/dictionary.h"
#include "uit/controls/RulerSettings.h"

#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

// What the values of attributes mean. Each throws a standard exception whose text continues the attribute's name
// ("needs a number, not a string") for a value that it cannot use.
namespace uit::lio {

// A number that is one; infinity is.
double NumberOf(const orrin::any_regular_t& value);
double FiniteNumberOf(const orrin::any_regular_t& value);
// Within bounds, both included.
double NumberWithin(const orrin::any_regular_t& value, double low, double high);
int WholeNumberWithin(const orrin::any_regular_t& value, int low, int high);
// In view units.
float LengthOf(const orrin::any_regular_t& value);
bool BoolOf(const orrin::any_regular_t& value);
// A localisation key's text, or the text itself.
krocore::string16 TextOf(const orrin::any_regular_t& value);
// Whether a text is a label whose colon is to be aligned with those of its neighbours.
bool EndsWithColon(std::u16string_view text);

// { min_value: a, max_value: b } in either order. Held within +-kFarthestBound, so that their distance is a number.
struct Bounds {
    double low = 0;
    double high = 0;
};
constexpr double kFarthestBound = 1e12;
Bounds BoundsOf(const orrin::any_regular_t& value);

// { type, position, text_placement, step_factor, value1, value2, label1, label2, log_seed, log_step,
// abbreviate_numbers }: what is missing is as in `otherwise`. An empty dictionary is no ruler.
controls::RulerSettings RulerSettingsOf(const orrin::any_regular_t& value, const controls::RulerSettings& otherwise);
// One by one: the type (controls::RulerSettings::Type), the distance of labels in pixels, a power's value and ratio.
int RulerTypeOf(const orrin::any_regular_t& value);
double StepFactorOf(const orrin::any_regular_t& value);
double LogSeedOf(const orrin::any_regular_t& value);
double LogStepOf(const orrin::any_regular_t& value);

// A name that stands for something: "@arrow_up_left".
template <class Meaning>
struct NamedMeaning {
    std::string_view name;
    Meaning meaning;
};
[[noreturn]] void RefuseName(std::span<const std::string_view> known);

template <class Meaning, std::size_t N>
Meaning MeaningOf(const orrin::any_regular_t& value, const NamedMeaning<Meaning> (&meanings)[N]) {
    const orrin::name_t* const name = value.get_if<orrin::name_t>();
    for (const auto& row : meanings)
        if (name && name->text() == row.name) return row.meaning;
    std::string_view known[N];
    for (std::size_t i = 0; i < N; ++i)
        known[i] = meanings[i].name;
    RefuseName(known);
}

// Reads an entry of a dictionary if it is there. A refusal names the entry.
template <class Read>
void ReadEntry(const orrin::dictionary_t& dictionary, std::string_view key, const Read& read) {
    const orrin::any_regular_t* const value = dictionary.find(orrin::name_t(key));
    if (!value) return;
    try {
        read(*value);
    } catch (const std::exception& refusal) {
        throw std::invalid_argument("has an entry '" + std::string(key) + "' that " + refusal.what());
    }
}
// Refuses a dictionary with an entry that is not among the known ones.
void CheckEntries(const orrin::dictionary_t& dictionary, std::span<const std::string_view> known);

} // namespace uit::lio
