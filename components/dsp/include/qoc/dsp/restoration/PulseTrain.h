#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace qoc::dsp {

// Tells the pulses that a voice, a brass or a bowed instrument excites itself with from clicks: in the errors of a
// linear prediction a pulse has others of its shape and size beside it, each as far from the next. Owned by the
// detector that uses it; nothing but Prepare allocates.
class PulseTrain {
public:
    // `halfWidth`: samples to either side of a pulse's peak that make its shape.
    void Prepare(std::size_t frame, std::size_t halfWidth);

    // The errors that are looked at from now on; they stay valid and unchanged.
    void Take(std::span<const double> errors) noexcept;
    // Whether the error at `place` has two others like it: one to either side at about the same distance, for a voice's
    // pitch may step, or two to one side, the second exactly as far behind the first.
    bool Contains(std::size_t place) noexcept;

    // About how many nanoseconds that took the last time.
    double Cost() const noexcept {
        return static_cast<double>(fErrors.size()) + 0.3 * static_cast<double>(fCompared * (2 * fHalfWidth + 1));
    }

private:
    void FindAlike(std::size_t place) noexcept;
    bool IsAlike(std::size_t place, std::size_t other) const noexcept;
    bool HasAlikeAt(double place, double tolerance) const noexcept;

    std::size_t fHalfWidth = 1;
    std::span<const double> fErrors;
    std::vector<double> fEnergies;   // of the shapes around each place
    std::vector<std::size_t> fAlike; // ascending
    std::size_t fCompared = 0;       // places, the last time
};

} // namespace qoc::dsp
