#pragma once

#include "qoc/components/ComponentBase.h"
#include "qoc/dsp/restoration/ClickRepairer.h"
#include "qoc/dsp/restoration/RepairStream.h"

#include <vector>

namespace qoc::components {

// Takes clicks and crackle away, as of old records: what a linear prediction of the sound around does not expect is
// found and filled in by it. The other samples come out bit by bit as they went in, later by three hops.
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
    void Begin(std::span<const Frame> frames) noexcept override;
    void Step(std::size_t step) noexcept override;
    void Look(std::size_t stepsLeft) noexcept;
    void Repair(std::size_t stepsLeft) noexcept;
    void StoreRepairs() noexcept;

    RepairStream fStream;
    std::size_t fSteps = 1;
    std::size_t fLookingSteps = 0; // of those, until it is known whether there are clicks
    ClickRepairer::Filler fFiller;
    std::vector<ClickRepairer> fRepairers; // by channel
    ClickRepairer::Settings fSettings;
    std::size_t fRepairs = 0; // since Reset
    std::size_t fStoredRepairs = 0;
};

} // namespace qoc::components
