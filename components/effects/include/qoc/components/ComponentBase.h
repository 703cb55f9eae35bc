#pragma once

#include "krocore/Units.h"
#include "qoc/components/MultiChannelComponentBase.h"
#include "qoc/components/ParameterTable.h"

namespace qoc::dsp {}

namespace qoc::components {

// An effect is made of building blocks, and what it says is about them.
using namespace dsp;
using krocore::FractionOfPercent;
using krocore::MillisecondsOfSeconds;
using krocore::SecondsOfMilliseconds;

// Base of the effects: an effect adds its parameter table and its processing to it.
//
// On the sound thread the order is: ReadParameters when a parameter has changed since the last block, then
// ProcessBlock. What an effect computes from parameters (gains, coefficients) it computes in ReadParameters. To give
// the same output however the sound is cut into blocks, all smoothing counts samples, never blocks.
class ComponentBase : public MultiChannelComponentBase {
public:
    krocore::string16 GetComponentID() const override { return fComponentID; }
    int GetParameterCount() const override { return fTable.Size(); }
    const GenericParameterInfo* GetParameterInfo(int index) const override;

    std::span<const kroaudiofilterhost::AudioFilterCurve> GetCurves() const final { return fTable.Curves(); }

protected:
    // `componentID` is one of ComponentIDs.h. Every parameter starts at its default.
    ComponentBase(const char16_t* componentID, ParameterTable table);
    ~ComponentBase() override;

    // Allocates what the processing needs at the present sample rate and channels; Reset follows. User-interface
    // thread.
    virtual void PrepareProcessing(std::size_t maximumBlock);
    // Forgets all sound. ReadParameters(true) follows.
    virtual void ResetProcessing() noexcept;
    // Takes the parameters over; `settle` when smoothed values are to jump there, because no sound has gone before.
    virtual void ReadParameters(bool settle) noexcept = 0;
    // Frames up to the prepared maximum; denormal numbers count as zero meanwhile.
    virtual void ProcessBlock(const kroaudiofilterhost::AudioFilterBlock& block) noexcept = 0;

    // The parameter as the processing wants it: natural and inside its range, the number of the item, on or off.
    // `index` must be one that the table describes. Any thread.
    float Natural(int index) const noexcept;
    int Item(int index) const noexcept;
    bool IsOn(int index) const noexcept;

    // Stores what the effect tells in a read-only parameter, held to its range. Any thread.
    void TellParameter(int index, double natural) noexcept;

    // For effects whose ranges follow the channels.
    GenericParameterInfo* MutableInfo(int index) noexcept { return fTable.Find(index); }

private:
    void OnSampleRateChanged() final;
    void OnPrepare(std::size_t maximumBlock) final;
    void OnProcess(const kroaudiofilterhost::AudioFilterBlock& block) noexcept final;
    void OnReset() noexcept final;

    krocore::string16 fComponentID;
    ParameterTable fTable;
    std::int32_t fSeenDirtyCount = 0; // sound thread
    bool fIsPrepared = false;
};

} // namespace qoc::components
