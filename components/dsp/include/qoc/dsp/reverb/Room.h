#pragma once

#include <array>
#include <cstddef>

namespace qoc::dsp {

// A place in a room, in metres: from its left wall, from its front wall, and from the floor.
struct RoomPlace {
    double x = 0;
    double y = 0;
    double z = 0;

    double DistanceTo(const RoomPlace& other) const noexcept;
    bool operator==(const RoomPlace&) const = default;
};

// What a wall, or two, show of a source: a source behind them.
struct RoomImage {
    RoomPlace place;
    int reflections = 0;
};

// A room of right angles and its acoustics. A value; real time safe.
struct Room {
    static constexpr double kSpeedOfSound = 343; // metres per second
    // The source itself, 6 images of the first order and 18 of the second.
    static constexpr std::size_t kImages = 25;

    double width = 1; // metres
    double depth = 1;
    double height = 1;

    // In cubic metres; `ratio`: width by depth. The height follows from the volume.
    static Room OfVolume(double volume, double ratio) noexcept;

    double Volume() const noexcept { return width * depth * height; }
    double Surface() const noexcept { return 2 * (width * depth + width * height + depth * height); }
    // Seconds in which sound decays by 60 dB when the walls take that share of its energy, and the share that belongs
    // to a decay, below 1 (W. C. Sabine).
    double DecayTime(double absorption) const noexcept;
    double Absorption(double decay) const noexcept;
    // Mean seconds from wall to wall (H. Kuttruff, Room Acoustics).
    double MeanFreeTime() const noexcept { return 4 * Volume() / (Surface() * kSpeedOfSound); }

    // Where people listen, and where a source stands: `location` -1 at the left wall, 1 at the right one; `distance` 0
    // at the listener, 1 at the front wall.
    RoomPlace Listener() const noexcept;
    RoomPlace Source(double location, double distance) const noexcept;
    // The nearest place that is not in a wall.
    RoomPlace Inside(const RoomPlace& place) const noexcept;

    // The image sources of up to two reflections (J. B. Allen, D. A. Berkley, "Image method for efficiently simulating
    // small-room acoustics", JASA 65, 1979), the source itself first.
    std::array<RoomImage, kImages> Images(const RoomPlace& source) const noexcept;

    bool operator==(const Room&) const = default;
};

} // namespace qoc::dsp
