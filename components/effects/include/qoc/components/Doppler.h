#pragma once

#include "qoc/components/ComponentBase.h"
#include "qoc/dsp/delay/DopplerPath.h"
#include "qoc/dsp/delay/SampleInterpolator.h"

#include <cstdint>
#include <vector>

namespace qoc::components {

// A sound source that moves past or around the listener. What it sounds at a moment arrives as much later as its
// distance from the listener is greater than at the nearest point of its path: from there sound comes at once, so that
// nothing is ever needed before it is there, and the start of a sound that begins farther off is awaited in silence.
// The pitch follows from that delay alone: f * c / (c + v) for a radial velocity v, with c of 343 m/s.
//
// Time runs from the start of the sound, and the path's end, behind which no nearest point is looked for, is the
// sound's duration; kLongestDelay seconds when that is not known. A delay is held within 0 and kLongestDelay (or the
// duration, if that is less), and the velocity below that of sound.
//
// With volume by distance, the gain is that of the inverse distance law: 1 at the nearest point, distances below a
// metre counting as one. With volume by direction, left and right channels are panned by the angle at constant power:
// both have a gain of 1 for a source in front and behind, 3 dB more and silence for one at a side. Channels that are
// neither left nor right (and a mono sound) keep their level. A change of the path or of the volume is a crossfade.
class Doppler : public ComponentBase {
public:
    static constexpr double kLongestDelay = 30; // seconds: 10.29 km

    Doppler();

    // What the widest interpolator needs beyond the place that it reads.
    std::size_t Latency() const noexcept override { return SampleInterpolator::kLargestHalfWidth; }
    // Until what the source sounded at the sound's end has arrived.
    std::size_t Tail() const noexcept override;

protected:
    ~Doppler() override;

    void PrepareProcessing(std::size_t maximumBlock) override;
    void ResetProcessing() noexcept override;
    void ReadParameters(bool settle) noexcept override;
    void ProcessBlock(const kroaudiofilterhost::AudioFilterBlock& block) noexcept override;

private:
    // What is heard of one set of parameters.
    struct Scene {
        DopplerPath path;
        SampleInterpolator::Kind kind = SampleInterpolator::Kind::kLinear;
        bool adjustsDistance = false;
        bool adjustsDirection = false;
        double nearest = 0;     // metres
        double emitted = 0;     // seconds: when the source sounded what is heard now
        double speed = 1;       // by which `emitted` runs
        bool isStarted = false; // `emitted` is known from the sample before
        float gain = 1;
        float leftGain = 1;
        float rightGain = 1;

        bool SoundsLike(const Scene& other) const noexcept;
    };
    enum class Side : std::uint8_t { kNone, kLeft, kRight };

    Scene ReadScene() const noexcept;
    void TakeDuration() noexcept;
    void AdvanceFade() noexcept;
    void FindEmission(Scene& scene) const noexcept;
    double Arrival(const Scene& scene, const DopplerPath::Position& position, double emitted) const noexcept;
    void SetGains(Scene& scene, const DopplerPath::Position& position) const noexcept;
    void ComputeWeights(const Scene& scene) noexcept;
    void AddScene(Scene& scene, float level, float* const* outputs, std::size_t frame) noexcept;
    float Read(const std::vector<float>& line) const noexcept;
    void StoreInput(const kroaudiofilterhost::AudioFilterBlock& block, std::size_t frame) noexcept;

    SampleInterpolator fInterpolator;
    SampleInterpolator::Weights fWeights;
    std::int64_t fWeightsAt = 0;            // the sample that they begin with
    std::vector<std::vector<float>> fLines; // the sound so far, a ring a channel
    std::vector<Side> fSides;
    std::size_t fMask = 0;
    double fSampleRate = 44100;
    double fDuration = kLongestDelay; // seconds
    double fLongestDelay = 0;         // seconds, that the lines have room for
    std::int64_t fPosition = 0;       // samples since the start of the sound
    Scene fScene;
    Scene fNextScene;    // fades in
    Scene fPendingScene; // waits for the fade to end
    std::size_t fFadeLength = 1;
    std::size_t fFadeRemaining = 0;
    bool fHasPending = false;
};

} // namespace qoc::components
