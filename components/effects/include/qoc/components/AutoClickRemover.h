#pragma once

#include "qoc/components/ComponentBase.h"
#include "qoc/dsp/restoration/AutoregressiveInterpolator.h"
#include "qoc/dsp/restoration/ClickDetector.h"
#include "qoc/dsp/restoration/LinearPrediction.h"
#include "qoc/dsp/restoration/RepairStream.h"

#include <vector>

namespace qoc::components {

// Takes clicks and crackle away, as of old records: what a linear prediction of the sound around does not expect is
// found and filled in by it. The other samples come out bit by bit as they went in, later by two hops.
//
// The threshold says how far a click must stand out: low finds more, high leaves more alone. The complexity says how
// much is put into it: how fine the model of the sound is, and how long a click may be.
class AutoClickRemover : public ComponentBase, private FrameRepairer {
public:
    AutoClickRemover();

    std::size_t Latency() const noexcept override { return fStream.Latency(); }
    std::size_t Tail() const noexcept override;

protected:
    ~AutoClickRemover() override;

    void PrepareProcessing(std::size_t maximumBlock) override;
    void ResetProcessing() noexcept override;
    void ReadParameters(bool settle) noexcept override;
    void ProcessBlock(const kroaudiofilterhost::AudioFilterBlock& block) noexcept override;

private:
    void Repair(std::size_t channel, std::span<const float> original, std::span<float> repaired) noexcept override;
    std::span<const double> Middle() const noexcept;
    void AddClick(const ClickDetector::Click& click, std::size_t guard) noexcept;
    void Restore() noexcept;
    void TakeOver(std::span<float> repaired) noexcept;
    void StoreRepairs() noexcept;

    RepairStream fStream;
    RepairStream::Layout fLayout;
    LinearPrediction fModel;
    LinearPrediction fFineModel;
    ClickDetector fDetector;
    AutoregressiveInterpolator fInterpolator;
    ClickDetector::Settings fSettings;
    std::size_t fOrder = 0;
    std::vector<double> fSound;        // the frame
    std::vector<double> fRestored;     // with its clicks filled in
    std::vector<std::size_t> fUnknown; // places, ascending
    std::size_t fRepairs = 0;          // since Reset
    std::size_t fStoredRepairs = 0;
};

} // namespace qoc::components
