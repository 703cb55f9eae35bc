#pragma once

#include "kroaudiofilterhost/AudioFilter.h"

#include <cstddef>
#include <vector>

namespace qolv2 {

// The ports of a plug-in behind its audio inputs and outputs, in this order; those of parameters follow.
enum FixedPort : std::size_t {
    kLatencyPort,   // out
    kEnabledPort,   // in
    kFreeWheelPort, // in: rendering, faster or slower than it plays
    kControlPort,   // in, events: where the host is, what the panel sets
    kNotifyPort,    // out, events: for the panel
    kFixedPorts,
};

// A parameter that is a port: every described one but those of curves, which are one value each in the state. A port
// has the natural value: 0 and 1 for a switch, the number of the item for a choice.
struct ParameterPort {
    int parameter = 0; // index
    const kroaudiofilterhost::AudioFilterParameterInfo* info = nullptr;

    float Minimum() const;
    float Maximum() const;
    float Default() const;
    // From and to the stored value. Any thread.
    float FromStored(float stored) const noexcept;
    float ToStored(float value) const noexcept;
};

// Which ports a plug-in has. The effect is prepared for its channels, since those may decide how many parameters there
// are, and outlives this.
class PluginPorts {
public:
    explicit PluginPorts(const kroaudiofilterhost::AudioFilter& filter);

    std::size_t Inputs() const noexcept { return fInputs; }
    std::size_t Outputs() const noexcept { return fOutputs; }
    std::size_t IndexOf(FixedPort port) const noexcept { return fInputs + fOutputs + port; }
    std::size_t FirstParameterPort() const noexcept { return IndexOf(kFixedPorts); }
    const std::vector<ParameterPort>& Parameters() const noexcept { return fParameters; }
    std::size_t Count() const noexcept { return FirstParameterPort() + fParameters.size(); }

private:
    std::size_t fInputs;
    std::size_t fOutputs;
    std::vector<ParameterPort> fParameters;
};

} // namespace qolv2
