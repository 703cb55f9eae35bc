#include "qoc/dsp/restoration/ClipDetector.h"

#include <algorithm>

namespace qoc::dsp {

namespace {

constexpr double kQuietest = 1e-3; // nothing is clipped at -60 dB
// The shortest run that tells a flat top from a round one, and how many the evidence needs.
constexpr std::size_t kShortestEvidence = 3;
constexpr std::size_t kClearEvidence = 5;
constexpr std::size_t kEvidence = 2;
constexpr double kShoulder = 4; // tolerances

// Calls for every run of samples at or above the level.
template <typename Call>
void ForEveryRun(std::span<const float> sound, float sign, double level, const Call& call) {
    for (std::size_t i = 0; i < sound.size(); ++i) {
        if (sign * sound[i] < level) continue;
        std::size_t end = i + 1;
        while (end < sound.size() && sign * sound[end] >= level)
            ++end;
        call(i, end);
        i = end;
    }
}

} // namespace

void ClipDetector::Prepare(std::size_t frame) {
    fRuns.clear();
    fRuns.reserve(frame);
}

std::span<const ClipDetector::Run> ClipDetector::Find(std::span<const float> sound, const Settings& settings,
                                                      Levels& levels) noexcept {
    fRuns.clear();
    levels.above = settings.findsLevel ? FindLevel(sound, 1, settings, levels.above) : settings.level;
    levels.below = settings.findsLevel ? FindLevel(sound, -1, settings, levels.below) : settings.level;
    if (levels.above > 0) Collect(sound, 1, levels.above, settings);
    if (levels.below > 0) Collect(sound, -1, levels.below, settings);
    std::ranges::sort(fRuns, {}, &Run::begin);
    return fRuns;
}

// A level is known until the sound rises above it.
double ClipDetector::FindLevel(std::span<const float> sound, float sign, const Settings& settings,
                               double known) noexcept {
    double peak = 0;
    for (const float sample : sound)
        peak = std::max<double>(peak, sign * sample);
    if (peak < kQuietest || peak <= known) return known;
    const double shoulder = peak * (1 - kShoulder * settings.tolerance);
    std::size_t evidence = 0;
    ForEveryRun(sound, sign, peak * (1 - settings.tolerance), [&](std::size_t begin, std::size_t end) {
        const std::size_t size = end - begin;
        if (size < kShortestEvidence) return;
        std::size_t first = begin;
        while (first > 0 && sign * sound[first - 1] >= shoulder)
            --first;
        std::size_t last = end;
        while (last < sound.size() && sign * sound[last] >= shoulder)
            ++last;
        if (first == 0 || last == sound.size()) return; // only a part of it is seen
        const std::size_t around = last - first - size;
        if (2 * around <= size) evidence += size >= kClearEvidence ? kEvidence : 1;
    });
    if (evidence >= kEvidence) return peak;
    return peak > known * (1 + settings.tolerance) ? 0 : known;
}

void ClipDetector::Collect(std::span<const float> sound, float sign, double level, const Settings& settings) noexcept {
    ForEveryRun(sound, sign, level * (1 - settings.tolerance), [&](std::size_t begin, std::size_t end) {
        if (end - begin >= settings.minimumSize) fRuns.push_back({begin, end, sign < 0});
    });
}

} // namespace qoc::dsp
