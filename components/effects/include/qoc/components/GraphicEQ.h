#pragma once

#include "qoc/components/ComponentBase.h"
#include "qoc/components/ParameterIndices.h"
#include "qoc/dsp/filters/Biquad.h"
#include "qoc/dsp/filters/GlidingSections.h"
#include "qoc/dsp/filters/GraphicEQDesign.h"
#include "qoc/dsp/stream/HandOver.h"
#include "qoc/dsp/stream/SmoothedValue.h"

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace qoc::components {

// A graphic equaliser: a slider a band, on octaves from 31.25 Hz (10 bands), half octaves up to 16 kHz (20) or the
// third octaves from 25 Hz to 20 kHz (30). The response meets the sliders at the bands' centres; see GraphicEQDesign
// for how. Bands too near half the sample rate are not there.
//
// The gains are stored on one scale; the range says how much of it may be used, half of the range to either side of
// 0 dB, and holds sliders beyond that at its end. The accuracy is the number of passes of the solver. The last
// parameter tells the highest gain of the resulting response, master gain included: what is left of the headroom.
// With all gains at 0 dB the sound comes out bit by bit as it went in.
//
// The setters solve, on the user-interface thread; the sound thread glides from the old coefficients to the new.
class GraphicEQ : public ComponentBase {
public:
    enum class Bands : std::uint8_t { kOctave, kHalfOctave, kThirdOctave };

    explicit GraphicEQ(Bands bands);

    // In hertz, ascending.
    static std::span<const double> Centres(Bands bands);

    // Until the slowest section has decayed by 100 dB.
    std::size_t Tail() const noexcept override;
    bool GetMagnitudeResponse(std::size_t count, const kroaudiofilterhost::FrequencyAxis& axis,
                              std::vector<float>& decibels) const override;

protected:
    ~GraphicEQ() override;

    void OnParametersChanged(ParameterIndices changed) override;
    void PrepareProcessing(std::size_t maximumBlock) override;
    void ResetProcessing() noexcept override;
    void ReadParameters(bool settle) noexcept override;
    void ProcessBlock(const kroaudiofilterhost::AudioFilterBlock& block) noexcept override;

private:
    using Sections = std::vector<BiquadCoefficients>;

    int HighestGainIndex() const noexcept { return kGraphicEQFirstGain + static_cast<int>(fCentres.size()); }
    void Redesign();
    void StoreHighestGain();
    double DecibelsAt(double hertz) const noexcept;
    double MasterGain() const noexcept;

    void TakeSections(bool settle) noexcept;

    std::span<const double> fCentres;
    // User-interface thread.
    std::unique_ptr<GraphicEQDesign> fDesign;
    Sections fDesigned;
    HandOver<Sections> fHandOver;
    // Sound thread.
    std::unique_ptr<Sections> fTarget;
    GlidingSections fBands;
    SmoothedValue fMaster;
};

} // namespace qoc::components
