#pragma once

#include "ProcessSound.h"

#include <array>
#include <cmath>

namespace test {

// Integrated loudness of sound at 48 kHz in LUFS, all channels alike, after ITU-R BS.1770-4: its filters, and its two
// gates over blocks of 400 ms that overlap by three quarters. -infinity for silence.
inline double Loudness(const Channels& sound) {
    struct Section {
        double b0, b1, b2, a1, a2;
    };
    constexpr std::array<Section, 2> kWeighting = {
        {{1.53512485958697, -2.69169618940638, 1.19839281085285, -1.69065929318241, 0.73248077421585},
         {1, -2, 1, -1.99004745483398, 0.99007225036621}}};
    constexpr std::size_t kHop = 4800; // 100 ms
    constexpr std::size_t kHops = 4;
    std::vector<double> hops(sound.front().size() / kHop);
    for (const std::vector<float>& channel : sound) {
        std::array<std::array<double, 2>, 2> memories{};
        for (std::size_t i = 0; i < hops.size() * kHop; ++i) {
            double value = channel[i];
            for (std::size_t stage = 0; stage < kWeighting.size(); ++stage) {
                const Section& s = kWeighting[stage];
                auto& [first, second] = memories[stage];
                const double output = s.b0 * value + first;
                first = s.b1 * value - s.a1 * output + second;
                second = s.b2 * value - s.a2 * output;
                value = output;
            }
            hops[i / kHop] += value * value / kHop;
        }
    }
    const auto toLUFS = [](double power) { return -0.691 + 10 * std::log10(power); };
    const auto meanAbove = [&](double gate) {
        double sum = 0;
        std::size_t count = 0;
        for (std::size_t first = 0; first + kHops <= hops.size(); ++first) {
            const double power = (hops[first] + hops[first + 1] + hops[first + 2] + hops[first + 3]) / kHops;
            if (toLUFS(power) <= gate) continue;
            sum += power;
            ++count;
        }
        return count > 0 ? toLUFS(sum / static_cast<double>(count)) : -HUGE_VAL;
    };
    return meanAbove(std::max(-70.0, meanAbove(-70) - 10));
}

} // namespace test
