#pragma once

namespace qocui::controls {

// A switch is stored as 0 or 1, and on from here.
inline constexpr float kSwitchThreshold = 0.5F;

constexpr bool IsSwitchOn(float stored) noexcept {
    return stored >= kSwitchThreshold;
}

constexpr float StoredSwitch(bool on) noexcept {
    return on ? 1.0F : 0.0F;
}

} // namespace qocui::controls
