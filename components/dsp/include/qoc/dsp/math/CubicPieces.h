#pragma once

#include <array>
#include <cstddef>
#include <span>

namespace qoc::dsp {

// A function made of cubics: each holds from a place on up to the next one's, and the first one before it too. A value;
// real time safe.
class CubicPieces {
public:
    static constexpr std::size_t kMost = 8;

    struct Piece {
        double from = 0;
        std::array<double, 4> powers{}; // what the powers of the distance from there are multiplied with, the 0th first
    };

    // The first piece replaces all that were there.
    void Begin(const Piece& piece) noexcept {
        fPieces[0] = piece;
        fCount = 1;
    }
    // From no lower place than the last one; from the same place on it holds instead of it. At most kMost in all.
    void Add(const Piece& piece) noexcept { fPieces[fCount++] = piece; }

    double At(double place) const noexcept;
    // How the function rises from half a width before a place to half a width behind it, by unit.
    double Rise(double place, double width) const noexcept {
        return (At(place + width / 2) - At(place - width / 2)) / width;
    }
    // The same for many places at once, in their stead, with the best vectors that the processor has. All of them round
    // alike.
    void At(std::span<double> places) const noexcept;
    void Rise(std::span<double> places, double width) const noexcept;

private:
    std::array<Piece, kMost> fPieces{};
    std::size_t fCount = 1;
};

} // namespace qoc::dsp
