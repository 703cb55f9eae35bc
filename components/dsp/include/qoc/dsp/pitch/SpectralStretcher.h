#pragma once

#include "qoc/dsp/delay/HistoryBuffer.h"
#include "qoc/dsp/pitch/SpectralSplice.h"
#include "qoc/dsp/pitch/TimeMap.h"
#include "qoc/dsp/spectrum/RealFFT.h"

#include <complex>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace qoc::dsp {

// Makes a sound longer or shorter without changing its pitch, tones that share no period too: a phase vocoder that
// follows a TimeMap. Frames of the sound, windowed, are put to the positions that the map has for them; each peak of a
// frame is turned as a whole so that it goes on where the frame before has brought it (SpectralSplice). It begins as a
// copy of the sound and ends when it is stopped. The work of a frame is done in steps that are spread over the time in
// which it falls due. Positions, as lengths, are in samples of the stretched sound. Owned by the stretcher that mixes
// it. Everything but Prepare is real time safe.
class SpectralStretcher {
public:
    // `margin`: of the stretched sound around the position that is read. Allocates, and resets.
    void Prepare(std::size_t channels, double sampleRate, std::size_t margin);
    void Reset() noexcept;

    // How far ahead of the frame that is due the map and the history have to be; more lets it use longer frames.
    void SetReach(std::size_t reach) noexcept { fReach = static_cast<std::int64_t>(reach); }
    std::size_t LeastReach() const noexcept;

    // How long frames are at most, if not shorter than all that there are, when it starts, and how many overlap.
    void SetFrames(double longest, double overlap) noexcept;
    // What no frame may reach beyond: where hits begin. Of the frames that are still to begin.
    void SetBounds(std::int64_t first, std::int64_t last) noexcept;
    // Begins, with frames as long as the reach and the next hit allow and at most `longest`, with the sound at `offset`
    // from its positions, so that both go on together. False if it doesn't, or if such frames reach into the last hit
    // yet.
    bool Start(std::int64_t frame, double offset, double longest, const TimeMap& map) noexcept;
    void Stop() noexcept;
    // Does what is due at `frame`.
    void Advance(std::int64_t frame, const TimeMap& map, const HistoryBuffer& history) noexcept;

    // The stretched sound, in which a position has the time TimeOf().
    const HistoryBuffer& Stretched() const noexcept { return fStretched; }
    double TimeOf(double position) const noexcept { return position - static_cast<double>(fBase); }
    // From 0, at its start, to 1, when all frames are there that belong to the position.
    float ShareAt(double position) const noexcept;

private:
    using Spectrum = std::vector<std::complex<float>>;

    struct Size {
        std::int64_t half; // of a frame
        RealFFT transform;
        std::vector<float> window;
    };
    struct Channel {
        Spectrum present;
        Spectrum before;  // a hop before
        Spectrum sounded; // the last frame, as it was turned
        std::vector<float> sum;
    };

    // Of a frame's work, each in kSteps steps for one channel after the other; kTurn in as many for all of them.
    enum class Stage { kCopy, kPresent, kBefore, kTurn, kSynthesis, kDone };
    static constexpr std::size_t kSteps = 2;

    enum class Fit { kNot, kNotYet, kNow };
    Fit FitOf(const Size& size, std::int64_t frame, double offset, const TimeMap& map) const noexcept;
    const Size* SizeFor(std::int64_t frame, double offset, double longest, const TimeMap& map) const noexcept;
    std::int64_t Lead(std::int64_t frame, const TimeMap& map) const noexcept;
    std::int64_t LatestTime(std::int64_t frame) const noexcept;
    bool IsDue(std::int64_t frame, const TimeMap& map) const noexcept;
    void Begin(std::int64_t frame, Stage first, const TimeMap& map) noexcept;
    void RunStep(const HistoryBuffer& history) noexcept;
    void Analyse(const HistoryBuffer& history, std::int64_t centre, Spectrum& spectrum) noexcept;
    void ShiftByFraction(Spectrum& spectrum) const noexcept;
    void Turn() noexcept;
    void Synthesise(Channel& channel) noexcept;
    bool IsLastOfChannel() const noexcept { return fStageStep % kSteps == kSteps - 1; }
    RealFFT::Part TransformPart() const noexcept { return {fStageStep % kSteps, kSteps}; }
    void Finish() noexcept;
    std::size_t Slot(std::int64_t position) const noexcept {
        return static_cast<std::size_t>(position) & (fWeights.size() - 1);
    }

    std::int64_t fReach = 0;
    std::int64_t fMargin = 0;
    double fLongest = 0;
    double fFrames = 4;
    std::int64_t fMostLate = 0;
    std::int64_t fSlack = 0;  // frames over which the work of one is spread
    std::vector<Size> fSizes; // from short to long
    const Size* fSize = nullptr;
    std::vector<float> fScratch;
    std::vector<Channel> fChannels;
    std::vector<SpectralSplice::Channel> fTurned;
    SpectralSplice fSplice;
    std::vector<float> fWeights; // a ring, as the sums: what the windows add up to
    HistoryBuffer fStretched;    // of all channels and, last, the shares
    std::vector<std::vector<float>> fFinished;
    std::vector<const float*> fFinishedChannels;

    bool fRuns = false;
    std::int64_t fBase = 0;  // position of the stretched sound's time 0
    std::int64_t fBegin = 0; // time of its first sample since the start
    std::int64_t fFinal = 0; // positions before it are finished
    std::int64_t fFirstBound = 0;
    std::int64_t fLastBound = 0;
    std::int64_t fCentre = 0; // position of the frame at work or, between frames, of the next
    std::int64_t fSoundedCentre = 0;
    std::int64_t fTime = 0;     // of the frame's sound
    std::int64_t fCopyTime = 0; // of the sound that has been heard before the start, and what it is more than that
    double fFraction = 0;
    double fHop = 1; // to the next frame
    Stage fStage = Stage::kDone;
    std::size_t fStageStep = 0;
    std::int64_t fStepsBegin = 0; // the frame at which the first step is due
    double fBetweenSteps = 0;
    std::size_t fStepsDone = 0;
};

} // namespace qoc::dsp
