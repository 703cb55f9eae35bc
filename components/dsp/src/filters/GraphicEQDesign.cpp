#include "qoc/dsp/filters/GraphicEQDesign.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace qoc::dsp {

namespace {

constexpr double kHighestCentre = 0.95; // of half the sample rate
constexpr double kPrototypeGain = 17;   // decibels at which the sections' interaction is taken, as published
constexpr double kBetweenWeight = 0.05; // of the places between centres, against 1
constexpr double kMostSectionGain = 90; // decibels, beyond which nothing sensible is asked for
constexpr double kTiny = 1e-9;          // decibels

double Amplitude(double decibels) noexcept {
    return std::pow(10.0, decibels / 20);
}

// 0.3 is published for octaves and 0.4 for third octaves.
double EdgeShare(double octaves) noexcept {
    return std::clamp(0.45 - 0.15 * octaves, 0.3, 0.4);
}

// Solves the symmetric positive definite system by Cholesky's method, in place, for each column of `right`.
void SolvePositive(std::vector<double>& matrix, std::size_t size, std::vector<double>& right, std::size_t columns) {
    const auto at = [&](std::size_t row, std::size_t column) -> double& { return matrix[row * size + column]; };
    for (std::size_t j = 0; j < size; ++j) {
        for (std::size_t i = j; i < size; ++i) {
            double sum = at(i, j);
            for (std::size_t k = 0; k < j; ++k)
                sum -= at(i, k) * at(j, k);
            at(i, j) = i == j ? std::sqrt(sum) : sum / at(j, j);
        }
    }
    for (std::size_t column = 0; column < columns; ++column) {
        const auto x = [&](std::size_t row) -> double& { return right[row * columns + column]; };
        for (std::size_t i = 0; i < size; ++i) {
            for (std::size_t k = 0; k < i; ++k)
                x(i) -= at(i, k) * x(k);
            x(i) /= at(i, i);
        }
        for (std::size_t i = size; i-- > 0;) {
            for (std::size_t k = i + 1; k < size; ++k)
                x(i) -= at(k, i) * x(k);
            x(i) /= at(i, i);
        }
    }
}

} // namespace

GraphicEQDesign::GraphicEQDesign(std::span<const double> centres, double sampleRate) : fCentres(centres.size()) {
    const double ratio = std::pow(centres.back() / centres.front(), 1 / static_cast<double>(centres.size() - 1));
    fEdgeShare = EdgeShare(std::log2(ratio));
    const auto end = std::ranges::lower_bound(centres, kHighestCentre * sampleRate / 2);
    const std::span<const double> used(centres.begin(), end);
    for (const double centre : used) {
        // The bilinear transform keeps the product of the edges' tangents, wherever it moves the upper edge to.
        const double middle = std::numbers::pi * centre / sampleRate;
        const double lower = std::numbers::pi * centre / ratio / sampleRate;
        const double upper = std::atan(std::tan(middle) * std::tan(middle) / std::tan(lower));
        fBands.push_back({std::cos(2 * middle), std::tan(upper - lower)});
        fPlaces.emplace_back(sampleRate, centre);
    }
    for (std::size_t i = 0; i + 1 < used.size(); ++i)
        fPlaces.emplace_back(sampleRate, std::sqrt(used[i] * used[i + 1]));
    ComputeSolution();
}

std::vector<BiquadCoefficients> GraphicEQDesign::Solve(std::span<const double> gains, int passes) const {
    std::vector<double> sectionGains(gains.begin(), gains.begin() + static_cast<std::ptrdiff_t>(fBands.size()));
    const std::vector<double> wished = Wished(sectionGains);
    for (int pass = 0; pass < passes; ++pass) {
        std::vector<double> missing = wished;
        if (pass == 0) {
            std::ranges::fill(sectionGains, 0.0);
        } else {
            std::ranges::transform(missing, Response(sectionGains), missing.begin(), std::minus<>());
        }
        std::ranges::transform(sectionGains, Solved(missing), sectionGains.begin(), [](double gain, double change) {
            return std::clamp(gain + change, -kMostSectionGain, kMostSectionGain);
        });
    }
    std::vector<BiquadCoefficients> sections(fCentres);
    for (std::size_t i = 0; i < fBands.size(); ++i)
        sections[i] = Section(fBands[i], sectionGains[i]);
    return sections;
}

std::vector<double> GraphicEQDesign::Wished(std::span<const double> gains) const {
    std::vector<double> wished(gains.begin(), gains.end());
    for (std::size_t i = 0; i + 1 < gains.size(); ++i)
        wished.push_back((gains[i] + gains[i + 1]) / 2);
    return wished;
}

std::vector<double> GraphicEQDesign::Response(std::span<const double> sectionGains) const {
    std::vector<double> powers(fPlaces.size(), 1.0);
    for (std::size_t band = 0; band < fBands.size(); ++band) {
        const BiquadCoefficients section = Section(fBands[band], sectionGains[band]);
        for (std::size_t i = 0; i < fPlaces.size(); ++i)
            powers[i] *= section.MagnitudeSquared(fPlaces[i]);
    }
    std::ranges::transform(powers, powers.begin(), [](double power) { return 10 * std::log10(power); });
    return powers;
}

std::vector<double> GraphicEQDesign::Solved(std::span<const double> decibels) const {
    std::vector<double> gains(fBands.size());
    for (std::size_t band = 0; band < gains.size(); ++band) {
        for (std::size_t i = 0; i < decibels.size(); ++i)
            gains[band] += fSolution[band * decibels.size() + i] * decibels[i];
    }
    return gains;
}

// The weighted pseudo-inverse of the interaction matrix, by its normal equations: they are well conditioned, since each
// section does most of its work at its own centre.
void GraphicEQDesign::ComputeSolution() {
    const std::size_t bands = fBands.size();
    const std::size_t places = fPlaces.size();
    const auto weight = [bands](std::size_t place) { return place < bands ? 1 : kBetweenWeight; };
    std::vector<double> interaction(bands * places); // decibels at the places for a decibel of gain
    for (std::size_t band = 0; band < bands; ++band) {
        const BiquadCoefficients section = Section(fBands[band], kPrototypeGain);
        for (std::size_t i = 0; i < places; ++i)
            interaction[band * places + i] = 10 * std::log10(section.MagnitudeSquared(fPlaces[i])) / kPrototypeGain;
    }
    std::vector<double> normal(bands * bands);
    for (std::size_t row = 0; row < bands; ++row) {
        for (std::size_t column = 0; column < bands; ++column) {
            for (std::size_t i = 0; i < places; ++i)
                normal[row * bands + column] +=
                    weight(i) * interaction[row * places + i] * interaction[column * places + i];
        }
    }
    fSolution = interaction;
    for (std::size_t i = 0; i < fSolution.size(); ++i)
        fSolution[i] *= weight(i % places);
    SolvePositive(normal, bands, fSolution, places);
}

// S. J. Orfanidis, "Introduction to Signal Processing", section 11.4: a peaking section with a given gain at its edges.
BiquadCoefficients GraphicEQDesign::Section(const Band& band, double gain) const noexcept {
    const double g = Amplitude(gain);
    const double edge = Amplitude(fEdgeShare * gain);
    // Its limit where there is nothing to do.
    const double widening = std::abs(gain) < kTiny ? fEdgeShare / (1 - fEdgeShare)
                                                   : std::abs(edge * edge - 1) / std::abs(g * g - edge * edge);
    const double beta = std::sqrt(widening) * band.bandwidth;
    const double a0 = 1 + beta;
    return {(1 + g * beta) / a0, -2 * band.cosine / a0, (1 - g * beta) / a0, -2 * band.cosine / a0, (1 - beta) / a0};
}

} // namespace qoc::dsp
