#pragma once

#include "qoc/components/ComponentBase.h"
#include "qoc/dsp/filters/GlidingSections.h"
#include "qoc/dsp/filters/ParametricEQDesign.h"
#include "qoc/dsp/stream/SmoothedValue.h"

#include <vector>

namespace qoc::components {

// A parametric equaliser: high pass, low shelf, five peaks, high shelf and low pass, each with its switch, and a master
// gain. Peaks are as wide as their Q says or, with constant width, as many hertz as their width says, wherever they are
// moved. Headroom takes the highest gain of the bands off the output, so that no frequency gets louder than it came in,
// the master gain aside. With all bands off or at 0 dB the sound comes out bit by bit. Settings glide.
//
// Response curve 0: the response in decibels, master gain and headroom included, along a logarithmic axis from 20 Hz to
// 20 kHz, or to half the sample rate if that is less.
class ParametricEQ : public ComponentBase {
public:
    static constexpr int kBands = 9;

    ParametricEQ();

    // Until the slowest section has decayed by 100 dB.
    std::size_t Tail() const noexcept override;
    bool GetMagnitudeResponse(std::size_t count, const kroaudiofilterhost::FrequencyAxis& axis,
                              std::vector<float>& decibels) const override;
    bool GetResponseCurve(int index, std::size_t size, std::vector<float>& values) const override;

protected:
    ~ParametricEQ() override;

    void OnParametersChanged(ParameterIndices changed) override;
    void PrepareProcessing(std::size_t maximumBlock) override;
    void ResetProcessing() noexcept override;
    void ReadParameters(bool settle) noexcept override;
    void ProcessBlock(const kroaudiofilterhost::AudioFilterBlock& block) noexcept override;

private:
    using Sections = ParametricEQDesign::Sections;

    ParametricEQDesign::Settings SettingsOfParameters() const noexcept;
    double GainOf(int band) const noexcept;
    double OutputDecibels() const noexcept;
    void StoreHighestGain();

    ParametricEQDesign fToldDesign; // user-interface thread
    // Sound thread.
    ParametricEQDesign fDesign;
    GlidingSections fBands;
    SmoothedValue fGain;
};

} // namespace qoc::components
