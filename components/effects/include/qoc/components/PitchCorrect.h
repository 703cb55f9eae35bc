#pragma once

#include "qoc/components/ComponentBase.h"
#include "qoc/dsp/delay/HistoryBuffer.h"
#include "qoc/dsp/pitch/PitchCorrector.h"
#include "qoc/dsp/pitch/PitchDetector.h"
#include "qoc/dsp/pitch/PitchTrack.h"
#include "qoc/dsp/pitch/PsolaShifter.h"

#include <array>

namespace qoc::components {

// Automatic pitch correction: finds the pitch of one voice in one channel and pulls it, in all channels alike, to the
// notes of a scale. What sensitivity and attack mean is said at PitchCorrector. Sound without a clear pitch comes
// out as it went in.
//
// The FFT size is the length of the analysed frame in samples: a larger one finds lower pitches (down to twice the
// sample rate over the size: 43 Hz for 2048 at 44.1 kHz) and follows them more slowly. It decides the latency too,
// which makes the sound wait for the frame that surrounds it. The latency stays as it was when the effect was prepared;
// with a size that was chosen since, the correction works but comes late or the sound waits longer than needed.
class PitchCorrect : public ComponentBase {
public:
    PitchCorrect();

    // Three quarters of the frame: half of it and a hop.
    std::size_t Latency() const noexcept override { return fLatency; }
    // A grain may come later than its place by half a period, or by one where the latency leaves no room.
    std::size_t Tail() const noexcept override;

protected:
    ~PitchCorrect() override;

    void PrepareProcessing(std::size_t maximumBlock) override;
    void ResetProcessing() noexcept override;
    void ReadParameters(bool settle) noexcept override;
    void ProcessBlock(const kroaudiofilterhost::AudioFilterBlock& block) noexcept override;

private:
    // Of a parameter that is chosen by equal parts of 0...1.
    std::size_t Part(int index, std::size_t parts) const noexcept;
    const PitchDetector& Detector() const noexcept { return fDetectors[fSize]; }
    std::size_t Hop() const noexcept;
    std::size_t FramesUntilAnalysis() const noexcept;
    void Analyse() noexcept;
    void StartGrain() noexcept;
    void StoreCorrection() noexcept;

    HistoryBuffer fHistory;
    std::array<PitchDetector, 3> fDetectors;
    PitchTrack fTrack;
    PitchCorrector fCorrector;
    PsolaShifter fShifter;
    std::size_t fLatency;
    std::size_t fChannel = 0;
    std::size_t fSize = 1; // of fDetectors
    double fCalibration = 440;
    double fCorrection = 0;       // cents
    double fStoredCorrection = 0; // cents; what the parameter shows
};

} // namespace qoc::components
