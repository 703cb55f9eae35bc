#pragma once

#include "kroaudiofilterhost/AudioFilter.h"

#include <cstdint>
#include <span>
#include <string_view>

namespace qoc::components {

enum class EffectCategory : std::uint8_t {
    kAmplitude,
    kDelay,
    kFilter,
    kModulation,
    kRestoration,
    kReverb,
    kStereo,
    kTimeAndPitch,
};

using EffectCreator = boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> (*)();

// One effect of the library. Constants: never change, live as long as the library.
struct EffectDescription {
    std::u16string_view componentID;
    std::string_view shortName; // for command lines: "graphiceq10bands"
    const char* nameKey;        // localisation key of the name that a user reads
    EffectCategory category;
    EffectCreator create; // null while the library has the panel of the effect but not its processing

    const char* keywordsKey = ""; // of Keywords

    krocore::string16 DisplayName() const;
    // Plain words that a user may look for it by: "hum buzz mains". In the user's language, with spaces between them.
    krocore::string16 Keywords() const;
};

// All effects, by short name.
std::span<const EffectDescription> AllEffects() noexcept;

// Null when there is none. Identifiers are compared exactly, short names without regard to case.
const EffectDescription* FindEffect(std::u16string_view componentID) noexcept;
const EffectDescription* FindEffectByShortName(std::string_view shortName) noexcept;

// A new instance, not yet prepared. Null for an identifier that is none and for an effect without processing.
boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> CreateEffect(std::u16string_view componentID);

// In the user's language: "Time and Pitch".
krocore::string16 CategoryName(EffectCategory category);

} // namespace qoc::components
