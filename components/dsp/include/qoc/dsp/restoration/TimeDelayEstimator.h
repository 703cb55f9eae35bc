#pragma once

#include "qoc/dsp/spectrum/RealFFT.h"
#include "qoc/dsp/stream/PacedSteps.h"

#include <array>
#include <complex>
#include <cstddef>
#include <optional>
#include <span>
#include <vector>

namespace qoc::dsp {

// Finds by how much one sound is later than another, to a small part of a sample, from their spectra of the same
// frames, under Hann windows: the peak of the generalised cross-correlation with phase transform (Knapp and Carter,
// "The generalized correlation method for estimation of time delay", 1976), weighted by the coherence over the frames
// so far, and a second time by how much a bin stands out, for steady sound. A sound of opposite polarity is found as
// well. Owned by its effect; all but Prepare is real time safe.
class TimeDelayEstimator {
public:
    // For spectra of transforms of `size` samples. Allocates, and resets.
    void Prepare(std::size_t size);
    void Reset() noexcept;

    struct Frame {
        std::span<const std::complex<float>> reference = {};
        std::span<const std::complex<float>> other = {}; // read Origin() samples later
        float kept = 0;                                  // the weight (0...1) that all frames before keep
        double longest = 0;                              // samples to either side, at most a quarter of the size
        bool takesDelayOut = true;                       // before the likeness is told
    };

    // Takes the next frame, whose spectra stay until the last pass, and looks for the delay: in passes over all bins,
    // pass 0 in parts in order, then pass 1, and so on, all in as many parts. What follows is told anew after the last
    // one.
    static constexpr std::size_t kMostSlopes = 25; // of the correlation, to find its peak
    static constexpr std::size_t kPasses = 10 + kMostSlopes;
    void Begin(const Frame& frame) noexcept;
    void Pass(std::size_t pass, RealFFT::Part part) noexcept;
    // About how long a pass takes; a transform, 2.
    static double CostOf(std::size_t pass) noexcept;
    // Only takes the next frame, in one pass.
    void Add(const Frame& frame, RealFFT::Part part) noexcept;

    // How many samples later the other sound's frames are to be read than the reference's: the whole samples of the
    // delay. The closer to the delay, the more of a frame do both have, and the finer the delay is told.
    std::ptrdiff_t Origin() const noexcept { return fOrigin; }
    // In samples; as it was when the sounds have too little in common.
    double Delay() const noexcept { return fDelay; }
    void ForgetDelay() noexcept { fDelay = 0; }
    // How much of both is the same sound, weighted by power (-1...1): as they are, and after the delay is taken out and
    // every octave turned in phase.
    struct Likeness {
        double untreated = 0;
        double treated = 0;
    };
    Likeness GetLikeness() const noexcept { return fLikeness; }
    // What to multiply the other sound with to make it as loud as the reference; 1 in silence.
    float LevelRatio() const noexcept;

private:
    // Bins that are worked on at once.
    static constexpr std::size_t kLanes = 4;
    using Lanes = std::array<double, kLanes>;
    struct Slope {
        double value = 0; // of the correlation
        double first = 0; // derivatives by the delay
        double second = 0;
    };
    struct SlopeSums {
        Lanes value{};
        Lanes first{};
        Lanes second{};
        // Of the present bins.
        Lanes cosine{};
        Lanes sine{};
    };

    // The search for the peak beside a whole lag, by Newton's method between bounds that close in: where they are left,
    // by halves.
    struct Search {
        double lo = 0;
        double hi = 0;
        double delay = 0;
        double sign = 0; // of the correlation; 0 before the first slope
        bool isDone = false;
    };
    // Sums over the bins of an octave, and over all.
    struct LikenessSums {
        std::complex<double> band;
        double reference = 0;
        double other = 0;
        double allReference = 0;
        double allOther = 0;
        double common = 0;
        double bands = 0;
        double inPhase = 0;
        // Of the octave. Of fewer bins a sum does not tell what is common from what is so by chance.
        std::size_t end = 32;
        std::complex<double> alignedPhase = 1;
        std::complex<double> untreatedPhase = 1;
    };

    double PowerOf(std::size_t bin) const noexcept { return double{fReferencePower[bin]} * fOtherPower[bin]; }
    void FindStrongest(StepRange bins) noexcept;
    void Whiten(StepRange bins) noexcept;
    // Of lags that are counted from the longest delay to the earlier side.
    StepRange LagsOf(RealFFT::Part part) const noexcept;
    float MagnitudeAt(const std::vector<float>& correlation, std::size_t lag) const noexcept;
    void FindHighest(StepRange lags) noexcept;
    void FindPeakLag(StepRange lags) noexcept;
    void Improve(StepRange bins) noexcept;
    void AddSlope(StepRange bins) noexcept;
    void FinishSlope() noexcept;
    void Refine() noexcept;
    void TakeDelay() noexcept;
    void MoveOrigin(StepRange bins) noexcept;
    void Compare(StepRange bins) noexcept;
    void FinishComparing() noexcept;
    bool IsLast(StepRange bins) const noexcept { return bins.end == fCross.size(); }
    double AngularStep() const noexcept; // of a bin, for a sample
    double LongestDelay() const noexcept;
    std::ptrdiff_t Reach() const noexcept { return static_cast<std::ptrdiff_t>(LongestDelay()); }

    std::optional<RealFFT> fTransform;
    std::vector<std::complex<float>> fCross;
    std::vector<float> fReferencePower;
    std::vector<float> fOtherPower;
    std::vector<float> fEnvelope; // of the powers
    std::vector<std::complex<float>> fWhite;
    std::vector<std::complex<float>> fSteady; // the same, weighted by the part of the envelope
    std::vector<double> fSteadyReal;          // the same, filled up with zeros to whole lanes
    std::vector<double> fSteadyImaginary;
    std::vector<float> fCorrelation; // of fWhite
    std::vector<float> fSteadyCorrelation;
    std::vector<float> fCommonParts; // by lag, what to multiply a correlation with
    float fHighest = 0;              // of the steady correlation
    float fHighestAmong = 0;         // of the other, where that is nearly as high
    Frame fFrame;
    double fStrongest = 0; // geometric mean of both powers
    double fPassing = 0;   // the envelope, at the present bin
    double fWeight = 0;    // of all bins that are used
    Search fSearch;
    SlopeSums fSlopeSums;
    Slope fSlope;
    std::complex<double> fPhase; // of the present bin
    std::ptrdiff_t fNextOrigin = 0;
    LikenessSums fSums;
    std::ptrdiff_t fOrigin = 0;
    double fDelay = 0;
    Likeness fLikeness;
};

} // namespace qoc::dsp
