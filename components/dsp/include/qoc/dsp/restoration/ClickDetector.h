#pragma once

#include "qoc/dsp/restoration/LinearPrediction.h"

#include <cstddef>
#include <span>
#include <vector>

namespace qoc::dsp {

// Finds clicks as what neither the sound before nor the sound after lets expect: places where the errors of a linear
// prediction, forwards and backwards, both stand out (after Godsill and Rayner, "Digital Audio Restoration", 1998,
// chapter 5). The start of a note surprises from the front only and is left alone. How large the errors usually are is
// told by their median nearby, which clicks hardly move. Owned by the effect that uses it; nothing but Prepare
// allocates.
class ClickDetector {
public:
    struct Click {
        std::size_t begin = 0;
        std::size_t end = 0; // one past the last sample
    };
    struct Settings {
        double threshold = 6;     // times the usual error
        std::size_t longest = 64; // samples; what goes on for longer is no click
    };

    // `neighbourhood`: samples over which errors are of the same size; the frame is a multiple of it.
    void Prepare(std::size_t frame, std::size_t neighbourhood);

    // The clicks of a frame, in order, apart from each other. They stay valid until the next call.
    std::span<const Click> Find(const LinearPrediction& model, std::span<const double> sound,
                                const Settings& settings) noexcept;

private:
    void MeasureUsualErrors(std::span<const double> sound, std::size_t order) noexcept;
    double UsualErrorAt(std::size_t neighbourhood) const noexcept;
    void CompareErrors(double threshold) noexcept;
    void CollectClicks(std::size_t order, const Settings& settings) noexcept;
    void AddClick(std::size_t begin, std::size_t end) noexcept;

    std::size_t fNeighbourhood = 1;
    std::vector<double> fErrors; // forwards; then how often the smaller of both holds the threshold
    std::vector<double> fBackwards;
    std::vector<double> fSorted;
    std::vector<double> fUsual; // by neighbourhood
    std::vector<Click> fClicks;
};

} // namespace qoc::dsp
