#pragma once

#include "qoc/dsp/restoration/LinearPrediction.h"
#include "qoc/dsp/restoration/PulseTrain.h"

#include <cstddef>
#include <span>
#include <vector>

namespace qoc::dsp {

// Finds clicks as what neither the sound before nor the sound after lets expect: places where the errors of a linear
// prediction, forwards and backwards, both stand out, one sample alone or a few together (after Godsill and Rayner,
// "Digital Audio Restoration", 1998, chapter 5). How large the errors usually are is told by their median, of the
// neighbourhood and right beside the click on either side, which clicks hardly move. The start of a note or a hit
// surprises from the front only or goes on being as rough, and is left alone; so is what is one of a train of pulses.
// Owned by the effect that uses it; nothing but Prepare allocates.
class ClickDetector {
public:
    struct Click {
        std::size_t begin = 0;
        std::size_t end = 0; // one past the last sample
    };
    struct Settings {
        double threshold = 6;     // times the usual error
        std::size_t longest = 64; // samples; what goes on for longer is no click
        // The model is of the sound with its clicks, and shows them smaller and wider than they
        // are: what is found is to be looked at again with a better one.
        bool isModelSpoiled = false;
    };

    // `neighbourhood`: samples over which errors are of the same size; the frame is a multiple of it.
    void Prepare(std::size_t frame, std::size_t neighbourhood, double sampleRate);

    // The clicks of a frame, in order, apart from each other. They stay valid until the next call.
    std::span<const Click> Find(const LinearPrediction& model, std::span<const double> sound,
                                const Settings& settings) noexcept;

private:
    void MeasureUsualErrors(std::span<const double> sound, std::size_t order) noexcept;
    double UsualErrorAt(std::size_t neighbourhood) const noexcept;
    void CompareErrors(double threshold) noexcept;
    void CollectClicks(std::size_t order, const Settings& settings) noexcept;
    double ExcessFrom(std::size_t begin, std::size_t end) const noexcept;
    Click ClickAt(std::size_t place, std::size_t last, std::size_t separation, double partOfPeak) const noexcept;
    bool StandsOut(const Click& click, std::span<const double> sound, std::size_t order, double least) noexcept;
    bool IsPulse(const Click& click) noexcept;
    double Deviation(std::span<const double> values) noexcept;

    std::size_t fNeighbourhood = 1;
    std::size_t fBeside = 1; // samples
    std::size_t fBurst = 1;  // samples
    std::vector<double> fForward;
    std::vector<double> fBackward;
    std::vector<double> fExcess; // how often the smaller of both holds the threshold
    std::vector<double> fSorted;
    std::vector<double> fUsual; // by neighbourhood
    std::vector<Click> fClicks;
    PulseTrain fPulses;
};

} // namespace qoc::dsp
