#include "qoc/dsp/pitch/ScaleQuantizer.h"

#include <cmath>
#include <initializer_list>

namespace qoc::dsp {

namespace {

constexpr int kNotesPerOctave = 12;

constexpr std::uint16_t Notes(std::initializer_list<int> steps) {
    std::uint16_t notes = 0;
    for (const int step : steps)
        notes = static_cast<std::uint16_t>(notes | (1U << step));
    return notes;
}

// Semitones above the key, in the order of MusicalScale.
constexpr std::uint16_t kScales[] = {
    Notes({0, 2, 4, 5, 7, 9, 11}),
    Notes({0, 2, 3, 5, 7, 8, 10}),
    Notes({0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11}),
};

int InOctave(int note) {
    return (note % kNotesPerOctave + kNotesPerOctave) % kNotesPerOctave;
}

} // namespace

void ScaleQuantizer::SetScale(MusicalScale scale, int key) noexcept {
    const std::uint16_t steps = kScales[static_cast<std::size_t>(scale)];
    fNotes = 0;
    for (int step = 0; step < kNotesPerOctave; ++step) {
        if ((steps >> step & 1U) != 0) fNotes = static_cast<std::uint16_t>(fNotes | 1U << InOctave(key + step));
    }
}

bool ScaleQuantizer::Contains(int note) const noexcept {
    return (fNotes >> InOctave(note) & 1U) != 0;
}

int ScaleQuantizer::Nearest(double pitch) const noexcept {
    int below = static_cast<int>(std::floor(pitch));
    int above = below + 1;
    while (!Contains(below))
        --below;
    while (!Contains(above))
        ++above;
    return pitch - below <= above - pitch ? below : above;
}

} // namespace qoc::dsp
