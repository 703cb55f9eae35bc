#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace qoc::dsp {

// Fills in samples that are lost so that a linear prediction's errors become as small as they can: the least squares
// interpolation of Janssen, Veldhuis and Vries, "Adaptive interpolation of discrete-time signals that can be modeled as
// autoregressive processes" (1986). Its equations are banded; the band is as wide as the order of the prediction. What
// it fills in stays within the reach of the sound around, whatever the prediction. Owned by the effect that uses it;
// nothing but Prepare allocates.
class AutoregressiveInterpolator {
public:
    // For frames with up to so many lost samples, and predictions of up to that order. Allocates.
    void Prepare(std::size_t mostUnknown, std::size_t largestOrder);

    // Replaces the samples of `sound` at the places `unknown`: ascending, at most as many as prepared, none of them
    // among the first or last samples of the sound, as many as the order. `coefficients` as LinearPrediction tells
    // them. Where numbers are out of all proportion, the sound stays.
    void Restore(std::span<const double> coefficients, std::span<const std::size_t> unknown,
                 std::span<double> sound) noexcept;

    // Restore in pieces of work: what is handed over stays valid until it is done, and `sound` has what it restores
    // then.
    void Begin(std::span<const double> coefficients, std::span<const std::size_t> unknown,
               std::span<double> sound) noexcept;
    // The same for those who know better bounds: what it fills in may lie anywhere.
    void BeginUnbounded(std::span<const double> coefficients, std::span<const std::size_t> unknown,
                        std::span<double> sound) noexcept;
    // Does the next piece, and tells about how many nanoseconds it takes.
    double Work() noexcept;
    bool IsDone() const noexcept { return fStage == Stage::kDone; }
    // About how many nanoseconds are left, and so many unknown samples take with a model of that order.
    double CostLeft() const noexcept;
    double CostOf(std::size_t unknown, std::size_t order) const noexcept;

private:
    // What is done, one stage after the other, in pieces.
    enum class Stage : std::uint8_t { kSetUp, kFactorise, kSolveForward, kSolveBack, kStore, kBound, kDone };

    // Where the column of an unknown sample's equation stands, and one past the last unknown sample that it reaches.
    struct Place {
        std::size_t column = 0;
        std::size_t end = 0;
    };

    void FindProducts(std::span<const double> coefficients) noexcept;
    void PlaceColumns() noexcept;
    std::size_t EndOfGap(std::size_t index) const noexcept;
    bool IsAlone(std::size_t index, std::size_t end) const noexcept;
    double Do() noexcept;
    double PieceCost(Stage stage, std::size_t width) const noexcept;
    double SetUp() noexcept;
    void SetUpColumn(std::size_t index) noexcept;
    double Factorise() noexcept;
    void SolveForward(std::size_t index) noexcept;
    void SolveBack(std::size_t index) noexcept;
    void StoreValues() noexcept;
    void BoundNextGap() noexcept;
    void BoundGap(std::span<const std::size_t> gap) noexcept;
    bool HasOwnColumn(std::size_t index) const noexcept { return fPlaces[index].column == index; }
    // The band's lower half, from the diagonal on; zeros behind the last row.
    double* Column(std::size_t column) noexcept { return fBand.data() + column * fStride; }

    std::span<const std::size_t> fUnknown;
    std::span<double> fSound;
    Stage fStage = Stage::kDone;
    std::size_t fPlace = 0;       // up to which unknown sample the stage has come
    std::size_t fColumns = 0;     // that there are
    std::size_t fFactorised = 0;  // of those
    std::size_t fFirstColumn = 0; // before which there is none for a while
    double fShare = 1;            // columns an unknown sample
    bool fIsBounded = false;
    bool fIsSolvable = false;
    std::size_t fWidth = 1;        // order + 1
    std::size_t fStride = 1;       // from column to column
    std::vector<double> fProducts; // of the coefficients with themselves, from the lag -order on
    std::vector<Place> fPlaces;    // of all unknown samples
    std::vector<double> fBand;
    std::vector<double> fValues;
    std::vector<double> fBefore;
};

} // namespace qoc::dsp
