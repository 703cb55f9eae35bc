#pragma once

#include "qoc/components/ComponentBase.h"
#include "qoc/components/CurveFilterRows.h"
#include "qoc/components/ResponseCache.h"
#include "qoc/dsp/filters/CurveFIR.h"
#include "qoc/dsp/filters/FilterPartitions.h"
#include "qoc/dsp/filters/FrequencyCurve.h"
#include "qoc/dsp/spectrum/OverlapAdd.h"
#include "qoc/dsp/stream/HandOver.h"

#include <complex>
#include <optional>
#include <span>
#include <vector>

namespace qoc::components {

// Base of the effects whose filter is drawn: a curve of points becomes an impulse response, which the sound is
// convolved with.
//
// The setters make the response, on the user-interface thread, and the sound thread takes it over at the next frame.
// Frames overlap by half under a Hann window of 10 ms or more, so that one filter fades into the next. While the
// parameter that marks a curve as being rewritten is on, the last complete curve stays; it is the setting of that
// parameter to off that makes the new one.
//
// The size, in samples, decides how finely the response can follow the curve, and the latency. The latency stays as it
// was when the effect was prepared: of a size chosen since, no more takes effect than the prepared one until the effect
// is prepared again.
class CurveFilter : public ComponentBase, private SpectrumProcessor {
public:
    std::size_t Latency() const noexcept override { return fStream.Latency() + fSize / 2; }
    std::size_t Tail() const noexcept override { return fSize / 2; }
    bool GetMagnitudeResponse(std::size_t count, const kroaudiofilterhost::FrequencyAxis& axis,
                              std::vector<float>& decibels) const override;

protected:
    struct Indices {
        int updating;   // marks a curve that is being rewritten
        int firstPoint; // frequency and value of the points by turns, up to the last parameter
    };
    static constexpr std::size_t kMostPoints = CurveFilterRows::kMostPoints;
    static constexpr double kLowestFrequency = 20; // hertz, where the axis begins

    // `first` and `others` describe the points, two rows each.
    struct Rows {
        std::span<const ParameterRow> common;
        std::span<const ParameterRow> first;
        std::span<const ParameterRow> others;
    };
    CurveFilter(const char16_t* componentID, const Rows& rows, const Indices& indices, CurveFIR::Kind kind);
    ~CurveFilter() override;

    // The curve that the parameters draw, and the response that one of its values stands for.
    virtual FrequencyCurve ReadCurve() const = 0;
    virtual std::complex<double> ResponseOf(double value) const noexcept = 0;
    // Of the impulse response of that many samples.
    virtual const FIRWindow& Window(std::size_t size) const = 0;
    virtual std::size_t ChosenSize() const noexcept = 0;
    // Whether the parameter, none of the points', has a part in the response.
    virtual bool Shapes(int index) const noexcept = 0;
    // How many points the curve has.
    virtual std::size_t PointCount() const noexcept = 0;
    // The only channel that is filtered, or nothing for all. Sound thread.
    virtual std::optional<std::size_t> OnlyChannel() const noexcept { return {}; }

    // The number of points that a stored value stands for.
    static std::size_t CountOf(float stored) noexcept;
    double Nyquist() const noexcept { return 0.5 * GetSampleRate(); }
    // That of the graph in which the curve is drawn.
    kroaudiofilterhost::FrequencyAxis WholeAxis(bool logarithmic) const noexcept {
        return {kLowestFrequency, Nyquist(), logarithmic};
    }
    // Of a point, as stored, brought into 0...1.
    double StoredFrequency(std::size_t point) const noexcept;
    double StoredValue(std::size_t point) const noexcept;

    std::size_t CountCurvePoints(const kroaudiofilterhost::AudioFilterCurve& /*curve*/) const override {
        return PointCount();
    }
    void OnParametersChanged(ParameterIndices changed) override;
    void PrepareProcessing(std::size_t maximumBlock) override;
    void ResetProcessing() noexcept override;
    void ReadParameters(bool settle) noexcept override;
    void ProcessBlock(const kroaudiofilterhost::AudioFilterBlock& block) noexcept override;

private:
    void BeginFrame() noexcept override;
    void ProcessSpectra(std::span<const Spectrum> spectra, std::size_t step) noexcept override;
    void Convolve(std::size_t channel, Spectrum spectrum, StepRange bins) noexcept;
    std::span<float> Past(std::size_t channel, std::size_t frames) noexcept;

    bool IsPrepared() const noexcept { return fSize > 0; }
    bool IsHeard(int index) const noexcept;
    std::vector<float> ComputeResponse(std::size_t count, const kroaudiofilterhost::FrequencyAxis& axis) const;
    void Redesign() const;
    std::vector<float> DesignFIR(std::size_t size) const;
    std::unique_ptr<FilterPartitions> MakePartitions(std::span<const float> fir) const;

    Indices fIndices;
    CurveFIR::Kind fKind;
    // User-interface thread; mutable, since asking for the response may find the design wanting.
    mutable CurveFIR fDesigner;
    mutable std::vector<float> fFIR; // the last complete curve's; empty before the first
    mutable bool fIsStale = true;    // parameters have changed since
    mutable FIRResponse fResponse;   // of the impulse response, once somebody has asked
    mutable bool fHasResponse = false;
    mutable ResponseCache fShown;
    std::unique_ptr<RealFFT> fPartitionTransform;
    HandOver<FilterPartitions> fHandOver;
    std::size_t fSize = 0; // as prepared
    // Sound thread.
    OverlapAdd fStream;
    std::unique_ptr<FilterPartitions> fFilter;
    std::unique_ptr<FilterPartitions> fIdentity; // for channels that are not filtered
    std::optional<std::size_t> fOnlyChannel;
    std::optional<std::size_t> fTakenOnlyChannel; // of the frame
    std::size_t fSteps = 1;
    std::vector<float> fPast; // split spectra of the last frames, by channel and frame
    std::vector<float> fSum;  // a split spectrum
    std::size_t fKept = 0;    // frames
    std::size_t fFrame = 0;   // the present one's place among them
};

} // namespace qoc::components
