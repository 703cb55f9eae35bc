#pragma once

namespace qoc::dsp {

// The gains of two pieces of sound while one fades into the other: what they add up to keeps its level, whether they
// are alike or not, and a sound that dies away does not rise again where the second goes back in it. Times count
// samples. Owned by the stretcher. Real time safe.
class SpliceFade {
public:
    // Of the energy, where a piece goes back.
    static constexpr double kMostRise = 2;

    struct Pieces {
        double likeness = 1; // correlation
        double rise = 1;     // of the energy, from the first to the second
        bool goesBack = false;
    };

    void Prepare(double sampleRate) noexcept { fSampleRate = sampleRate; }
    // One piece at its full level, and nothing before it.
    void Reset() noexcept;

    void Begin(double position, double length, const Pieces& pieces) noexcept;
    // Goes on by a frame. Before a hit the level is back in no time.
    void Advance(double position, bool isHit) noexcept;

    double Gain() const noexcept { return fGain; }
    double FormerGain() const noexcept { return fFormerGain; }
    // Of the piece, apart from the fade.
    double Level() const noexcept { return fLevel; }

private:
    double fSampleRate = 44100;
    double fBegin = 0;
    double fLength = 1;
    double fLikeness = 1;
    double fLevel = 1;
    double fFormerLevel = 1;
    double fGain = 1;
    double fFormerGain = 0;
};

} // namespace qoc::dsp
