#include "qoc/dsp/reverb/Room.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace qoc::dsp {

namespace {

constexpr double kHeightShare = 0.6;      // of the cube's height that has the same volume
constexpr double kSabine = 0.161;         // seconds per metre
constexpr double kMostAbsorption = 0.95;  // nothing is wholly silent
constexpr double kListenerDepth = 0.7;    // of the depth
constexpr double kListenerHeight = 1.2;   // metres, sitting
constexpr double kSourceHeight = 1.5;     // metres
constexpr double kMostHeightShare = 0.45; // of the room's height
constexpr double kWall = 0.05;            // of the room's width, depth and height: as near as that to a wall

// The image of a coordinate in a row of mirrored rooms: `reflections` to the right when positive.
double Mirrored(double coordinate, double size, int reflections) noexcept {
    return reflections % 2 == 0 ? coordinate + reflections * size : (reflections + 1) * size - coordinate;
}

} // namespace

double RoomPlace::DistanceTo(const RoomPlace& other) const noexcept {
    return std::hypot(x - other.x, y - other.y, z - other.z);
}

Room Room::OfVolume(double volume, double ratio) noexcept {
    const double height = kHeightShare * std::cbrt(volume);
    const double area = volume / height;
    return {std::sqrt(area * ratio), std::sqrt(area / ratio), height};
}

double Room::DecayTime(double absorption) const noexcept {
    return kSabine * Volume() / (Surface() * absorption);
}

double Room::Absorption(double decay) const noexcept {
    return std::min(kSabine * Volume() / (Surface() * decay), kMostAbsorption);
}

RoomPlace Room::Listener() const noexcept {
    return {width / 2, kListenerDepth * depth, std::min(kListenerHeight, kMostHeightShare * height)};
}

RoomPlace Room::Source(double location, double distance) const noexcept {
    return Inside({width / 2 * (1 + location), kListenerDepth * depth * (1 - distance),
                   std::min(kSourceHeight, kMostHeightShare * height)});
}

RoomPlace Room::Inside(const RoomPlace& place) const noexcept {
    const auto within = [](double coordinate, double size) {
        return std::clamp(coordinate, kWall * size, (1 - kWall) * size);
    };
    return {within(place.x, width), within(place.y, depth), within(place.z, height)};
}

std::array<RoomImage, Room::kImages> Room::Images(const RoomPlace& source) const noexcept {
    constexpr int kOrder = 2;
    std::array<RoomImage, kImages> images;
    images[0] = {source, 0};
    std::size_t count = 1;
    for (int order = 1; order <= kOrder; ++order) {
        for (int i = -order; i <= order; ++i) {
            for (int j = -order; j <= order; ++j) {
                for (int k = -order; k <= order; ++k) {
                    if (std::abs(i) + std::abs(j) + std::abs(k) != order) continue;
                    images[count++] = {
                        {Mirrored(source.x, width, i), Mirrored(source.y, depth, j), Mirrored(source.z, height, k)},
                        order};
                }
            }
        }
    }
    return images;
}

} // namespace qoc::dsp
