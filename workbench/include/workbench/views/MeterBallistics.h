#pragma once

namespace workbench {

// How one level bar moves: up at once, down slowly, with a mark that stays at the highest level for a while. A value.
class MeterBallistics {
public:
    static constexpr float kFloor = -100;              // dB; stands for silence
    static constexpr float kFallPerSecond = 20 / 1.7F; // dB; return time of IEC 60268-10, type I
    static constexpr float kHoldSeconds = 1.5F;

    // The largest absolute sample of the last `seconds`. True if anything is another now.
    bool Feed(float peak, float seconds);

    float Level() const { return fLevel; } // dB below full scale
    float Mark() const { return fMark; }   // dB below full scale
    bool IsAtRest() const { return fMark <= kFloor; }

private:
    float fLevel = kFloor;
    float fMark = kFloor;
    float fMarkAge = 0; // seconds
};

} // namespace workbench
