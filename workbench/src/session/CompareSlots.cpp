#include "workbench/session/CompareSlots.h"

#include <utility>

namespace workbench {

std::optional<qohost::Preset> CompareSlots::Switch(const kroaudiofilterhost::AudioFilter& filter) {
    fKept[static_cast<std::size_t>(fCurrent)] = qohost::CapturePreset(filter, {});
    fCurrent = fCurrent == Slot::kA ? Slot::kB : Slot::kA;
    return std::exchange(fKept[static_cast<std::size_t>(fCurrent)], std::nullopt);
}

} // namespace workbench
