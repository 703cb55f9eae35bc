#pragma once

#include "qoc/components/ComponentBase.h"
#include "qoc/components/ResponseCache.h"
#include "qoc/dsp/filters/FilterSections.h"
#include "qoc/dsp/filters/SectionCascade.h"
#include "qoc/dsp/stream/SmoothedValue.h"

#include <vector>

namespace qoc::components {

// Bessel, Butterworth and Chebyshev filters of order 1 to 20 as low-pass, high-pass, band pass and band stop, with a
// master gain behind them. docs/scientific-filter.md defines the parameters.
//
// The sound thread designs the filter itself: that takes a few microseconds, allocates nothing, and makes the output a
// function of the parameters alone. A change is heard as a crossfade between the filter as it was and the new one,
// which has run along unheard for a while. Changes that come meanwhile wait for its end, and only the last of them
// counts.
class ScientificFilter : public ComponentBase {
public:
    // What GetResponseCurve tells: dB, degrees (-180...180), milliseconds.
    enum Curve : int { kMagnitudeCurve = 0, kPhaseCurve = 1, kGroupDelayCurve = 2 };
    static constexpr double kLowestShown = 20;  // hertz
    static constexpr float kLowestLevel = -300; // dB: what the curves tell of silence

    ScientificFilter();

    // Where the response is 0 between two places, the upper one tells of that, and where it has a peak the nearer one
    // does, so that a curve through few places still shows every zero and how loud a narrow band is.
    bool GetMagnitudeResponse(std::size_t count, const kroaudiofilterhost::FrequencyAxis& axis,
                              std::vector<float>& decibels) const override;
    // One of the curves above over the frequencies that the view parameters choose, linear or logarithmic as they say,
    // within kLowestShown and the Nyquist frequency. The master gain counts; where the response is 0 the phase is
    // whatever follows. Peaks of the group delay are shown like those of the magnitude.
    bool GetResponseCurve(int index, std::size_t size, std::vector<float>& values) const override;

    // Until an impulse has decayed by 120 dB, at most half a minute.
    std::size_t Tail() const noexcept override;

protected:
    ~ScientificFilter() override;

    void OnParametersChanged(ParameterIndices changed) override;
    void PrepareProcessing(std::size_t maximumBlock) override;
    void ReadParameters(bool settle) noexcept override;
    void ProcessBlock(const kroaudiofilterhost::AudioFilterBlock& block) noexcept override;

private:
    ScientificFilterSettings Settings() const noexcept;
    FilterSections Design() const noexcept;
    kroaudiofilterhost::FrequencyAxis ShownAxis() const noexcept;
    std::vector<float> ComputeMagnitude(std::size_t count, const kroaudiofilterhost::FrequencyAxis& axis) const;
    // Tells the transition bandwidth that the other parameters make.
    void StoreTransitionBandwidth() noexcept;

    bool IsFading() const noexcept { return fFadePosition < fFadeEnd; }
    void StartFade() noexcept;
    void EndFade() noexcept;
    // Fades and gains for the next frames, the same for all channels.
    void FillRamps(std::size_t frames) noexcept;
    void ProcessPiece(const kroaudiofilterhost::AudioFilterBlock& block, std::size_t begin,
                      std::size_t frames) noexcept;

    mutable ResponseCache fMagnitude;  // user-interface thread
    ScientificFilterSettings fWanted;  // by the parameters
    ScientificFilterSettings fPresent; // of fCascade, or while fading of fNextCascade
    SectionCascade fCascade;
    SectionCascade fNextCascade;
    SmoothedValue fGain;
    std::size_t fFadePosition = 0; // frames since a fade has begun, the time unheard included
    std::size_t fFadeStart = 0;    // when the new filter begins to be heard
    std::size_t fFadeEnd = 0;
    std::vector<double> fSound; // a piece of one channel
    std::vector<double> fNextSound;
    std::vector<double> fFades; // the new filter's part
    std::vector<float> fGains;
};

} // namespace qoc::components
