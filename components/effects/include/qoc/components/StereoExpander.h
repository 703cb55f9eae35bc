#pragma once

#include "qoc/components/ComponentBase.h"
#include "qoc/dsp/stream/SmoothedValue.h"

namespace qoc::components {

// Moves the middle of a stereo sound (what both channels share) to the left or right at equal power, and makes its
// sides (what they differ in) louder or softer. At the defaults, once ramps have settled, the sound comes out bit by
// bit as it went in; an expansion of 0 with the centre in the middle makes it mono. Sounds that are not stereo pass
// through.
class StereoExpander : public ComponentBase {
public:
    StereoExpander();

protected:
    ~StereoExpander() override;

    void PrepareProcessing(std::size_t maximumBlock) override;
    void ReadParameters(bool settle) noexcept override;
    void ProcessBlock(const kroaudiofilterhost::AudioFilterBlock& block) noexcept override;

private:
    bool IsSettled() const noexcept;
    bool IsNeutral() const noexcept;

    SmoothedValue fMidToLeft; // gains
    SmoothedValue fMidToRight;
    SmoothedValue fSide;
};

} // namespace qoc::components
