#pragma once

#include <cstdint>

namespace qoc::dsp {

enum class MusicalScale : std::uint8_t { kMajor, kMinor, kChromatic };

// Says which note of a scale a pitch belongs to. Pitches and notes are in semitones: 69 is the calibration's A, 60 the
// C below it. Minor is the natural minor scale; the chromatic scale has no key.
class ScaleQuantizer {
public:
    // `key` counts semitones up from C, 0...11.
    void SetScale(MusicalScale scale, int key) noexcept;

    bool Contains(int note) const noexcept;
    // The note of the scale that is nearest to the pitch, the lower of two.
    int Nearest(double pitch) const noexcept;

private:
    std::uint16_t fNotes = 0xFFF; // bit n: the note n semitones above a C belongs to the scale
};

} // namespace qoc::dsp
