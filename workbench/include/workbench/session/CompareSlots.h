#pragma once

#include "host/Preset.h"

#include <array>
#include <cstdint>
#include <optional>

namespace workbench {

// Two sets of settings of one effect, A and B, between which a user goes to and fro. The filter has those of the slot
// in use; the other keeps what it had when it was left.
class CompareSlots {
public:
    enum class Slot : std::uint8_t { kA, kB };

    Slot Current() const { return fCurrent; }
    // Keeps the filter's settings in the slot in use and goes to the other one. Returns the settings that the filter is
    // to get; nothing the first time, when the other slot begins as a copy.
    std::optional<qohost::Preset> Switch(const kroaudiofilterhost::AudioFilter& filter);

private:
    std::array<std::optional<qohost::Preset>, 2> fKept; // by slot
    Slot fCurrent = Slot::kA;
};

} // namespace workbench
