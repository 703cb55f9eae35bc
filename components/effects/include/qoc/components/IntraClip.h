#pragma once

#include "qoc/components/ComponentBase.h"
#include "qoc/dsp/restoration/AutoregressiveInterpolator.h"
#include "qoc/dsp/restoration/ClipDetector.h"
#include "qoc/dsp/restoration/LinearPrediction.h"
#include "qoc/dsp/restoration/RepairStream.h"
#include "qoc/dsp/stream/SmoothedValue.h"

#include <vector>

namespace qoc::components {

// Gives clipped peaks back what was cut off. A curve through the samples on both sides does it (cubic), or an
// autoregressive model of the spectrum around, found by FFT, with what is known of a clipped sample: that it was no
// lower than it is. What was not clipped comes out as it went in, but for the gain, which makes room for the peaks;
// later by three quarters of the FFT size.
//
// The FFT size is taken when the effect is prepared.
class IntraClip : public ComponentBase, private FrameRepairer {
public:
    IntraClip();

    std::size_t Latency() const noexcept override { return fStream.Latency(); }

protected:
    ~IntraClip() override;

    void PrepareProcessing(std::size_t maximumBlock) override;
    void ResetProcessing() noexcept override;
    void ReadParameters(bool settle) noexcept override;
    void ProcessBlock(const kroaudiofilterhost::AudioFilterBlock& block) noexcept override;

private:
    void Repair(std::size_t channel, std::span<const float> original, std::span<float> repaired) noexcept override;
    void FillWithCurves(std::span<const float> original, std::span<const ClipDetector::Run> runs) noexcept;
    void CollectUnknown(std::span<const ClipDetector::Run> runs) noexcept;
    void FitToSpectrum(std::span<const float> original) noexcept;
    bool KeepAboveClipping(std::span<const float> original) noexcept;

    RepairStream fStream;
    RepairStream::Layout fLayout;
    ClipDetector fDetector;
    std::vector<ClipDetector::Levels> fLevels; // by channel
    LinearPrediction fModel;
    AutoregressiveInterpolator fInterpolator;
    ClipDetector::Settings fSettings;
    bool fUsesSpectrum = true;
    std::size_t fOrder = 1;
    SmoothedValue fGain;
    std::vector<double> fSound;
    std::vector<std::size_t> fClipped;
    std::vector<std::size_t> fUnknown; // of those, the ones that are not held at the clipping
};

} // namespace qoc::components
