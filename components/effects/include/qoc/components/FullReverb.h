#pragma once

#include "qoc/components/RoomReverb.h"
#include "qoc/dsp/delay/CrossfadedDelay.h"
#include "qoc/dsp/filters/GlidingSections.h"
#include "qoc/dsp/stream/SmoothedValue.h"

#include <array>
#include <span>
#include <vector>

namespace qoc::components {

// A room that is described: its size, its shape and where in it the sound stands. The early reflections follow from
// that, and diffusion scatters them; after the pre-delay the reverberation decays by 60 dB in the decay time, in every
// octave. Pre-delay and decay time may be those that the room would have. An equaliser of three bands shapes
// reflections and reverberation. The direct sound may be heard as it comes in or, included in the room, from its place.
// Without reflections and reverberation the sound comes out bit by bit as it went in. The last parameters tell what
// follows from the room.
//
// Response curve 0: the equaliser in decibels, over the logarithmic axis from kCurveStart to kCurveEnd (or half the
// sample rate).
class FullReverb : public RoomReverb {
public:
    static constexpr double kCurveStart = 20; // hertz
    static constexpr double kCurveEnd = 20000;

    FullReverb();

    // Until the reverberation has decayed by 90 dB and the last reflection has come.
    std::size_t Tail() const noexcept override;
    bool GetResponseCurve(int index, std::size_t size, std::vector<float>& values) const override;

protected:
    ~FullReverb() override;

    void OnParametersChanged(ParameterIndices changed) override;
    void PrepareProcessing(std::size_t maximumBlock) override;
    void ResetProcessing() noexcept override;
    void ReadParameters(bool settle) noexcept override;
    void Reverberate(std::span<SoundPiece> sound, std::size_t frames) noexcept override;
    void Mix(std::span<SoundPiece> wet, std::span<const SoundPiece> direct, std::span<const SoundPiece> reflected,
             std::size_t frames) noexcept override;

private:
    using Equaliser = std::array<BiquadCoefficients, 3>;

    void TellRoom() noexcept;
    Room RoomOfParameters() const noexcept;
    RoomPlace SourceIn(const Room& room) const noexcept;
    double Decay() const noexcept;
    double Predelay() const noexcept;
    Equaliser EqualiserOfParameters() const noexcept;
    // Hertz, below half of the sample rate.
    void ReadLevels(bool settle) noexcept;
    void ReadRoom(bool settle) noexcept;

    CrossfadedDelay fPredelay;
    GlidingSections fHighPass;
    GlidingSections fEqualiser;
    SmoothedValue fReverberation;
};

} // namespace qoc::components
