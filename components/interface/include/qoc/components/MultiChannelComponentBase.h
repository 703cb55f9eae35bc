#pragma once

#include "kroaudiofilterhost/AudioFilter.h"

namespace qoc::components {

// Base of the effects that work on any number of channels. A view reaches it by a checked cast from the filter, to
// learn what to show for a parameter whose stored value does not fit the channels at hand.
class MultiChannelComponentBase : public kroaudiofilterhost::AudioFilter {
public:
    // True with `value` replaced (normalised) when the effect wants another value shown for the parameter than the
    // stored one. User-interface thread.
    virtual bool GetDisplayParameterValue(int index, float& value);

protected:
    using AudioFilter::AudioFilter;
    ~MultiChannelComponentBase() override;
};

} // namespace qoc::components
