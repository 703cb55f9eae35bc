#pragma once

#include <cstddef>
#include <vector>

namespace qoc::dsp {

// Which of `count` values the step of so many does.
struct StepRange {
    static StepRange Of(std::size_t step, std::size_t steps, std::size_t count) noexcept {
        return {step * count / steps, (step + 1) * count / steps};
    }

    std::size_t begin = 0;
    std::size_t end = 0; // one past the last
};

// The steps of a piece of work, spread evenly over the time of a hop, so that no block carries more of it than its
// part. Owned by whoever does the work; nothing but setting it up allocates.
class PacedSteps {
public:
    // Into how many steps work on a hop is usefully cut: more would be less than the shortest block's part.
    static std::size_t CountFor(std::size_t hop) noexcept;

    // Sets up: no steps.
    void Clear() noexcept;
    // Adds so many steps of equal work; `cost` of all of them together, in any unit that is the same for all.
    void Add(std::size_t steps, double cost);
    // After the last Add: over so many samples. Restarts.
    void SpreadOver(std::size_t hop);

    std::size_t Count() const noexcept { return fCosts.size(); }
    // None is done.
    void Restart() noexcept { fDone = 0; }
    bool IsDone() const noexcept { return fDone == fDue.size(); }
    // Calls `step` with the number of every step that is due up to that position in the hop, in order, each once: the
    // first one with the first sample, all of them by the end.
    template <class Step>
    void RunUntil(std::size_t position, const Step& step) noexcept {
        for (; fDone < fDue.size() && fDue[fDone] < position; ++fDone)
            step(fDone);
    }

private:
    std::vector<double> fCosts;
    std::vector<std::size_t> fDue; // behind which position
    std::size_t fDone = 0;
};

} // namespace qoc::dsp
