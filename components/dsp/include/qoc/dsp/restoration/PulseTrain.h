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

    // The errors that are looked at from now on; they stay valid and unchanged. `least`: the smallest that will be
    // asked for.
    void Take(std::span<const double> errors, double least) noexcept;
    // Starts to find out whether the error at `place` has two others like it: one to either side at about the same
    // distance, for a voice's pitch may step, or two to one side, the second exactly as far behind the first.
    void Begin(std::size_t place) noexcept;
    // Does the next piece of work, and tells about how many nanoseconds it takes.
    double Work() noexcept;
    bool IsDone() const noexcept { return fNext == fPlaces.size(); }
    // When it is done.
    bool IsPulse() const noexcept;
    // About how many nanoseconds a place takes.
    double CostOf(std::size_t place) const noexcept;

private:
    void CollectPlaces(double least) noexcept;
    double CostOfComparing(std::size_t places) const noexcept;
    bool MayBeAlike(std::size_t place, std::size_t other) const noexcept;
    bool IsAlike(std::size_t other) const noexcept;
    bool HasAlikeAt(double place, double tolerance) const noexcept;

    std::size_t fHalfWidth = 1;
    std::span<const double> fErrors;
    std::vector<double> fEnergies;    // of the shapes around each place
    std::vector<std::size_t> fPlaces; // of errors that may be like one, ascending
    std::vector<std::size_t> fAlike;  // ascending
    std::size_t fPlace = 0;           // the one in question
    std::size_t fNext = 0;            // of the others
};

} // namespace qoc::dsp
