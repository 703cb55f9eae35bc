#pragma once

#include "qoc/dsp/filters/Biquad.h"

#include <cstddef>
#include <span>
#include <vector>

namespace qoc::dsp {

// Designs a graphic equaliser as a cascade of one peaking section a band, for one set of centre frequencies and one
// sample rate. Each section's skirts reach into its neighbours, so the sections' gains are solved for: after V.
// Välimäki and J. Liski, "Accurate cascade graphic equalizer" (IEEE Signal Processing Letters 24, 2017), by least
// squares over the response at the centres and half way between them, here with centres that weigh more, and with as
// many corrections by what the response still misses as are asked for. Allocates; not for the sound thread.
class GraphicEQDesign {
public:
    // `centres` in hertz, ascending by about the same ratio; those too near half the sample rate get no section.
    GraphicEQDesign(std::span<const double> centres, double sampleRate);

    // A section for every centre, with the gains in decibels wished for there. 0 passes: each section has its band's
    // own gain, and neighbours add up. 1: solved as if a section's response were proportional to its gain. Each further
    // pass takes away most of what that leaves.
    std::vector<BiquadCoefficients> Solve(std::span<const double> gains, int passes) const;

private:
    // Of the places where the response is looked at, first the centres, then between them.
    std::vector<double> Wished(std::span<const double> gains) const;
    std::vector<double> Response(std::span<const double> sectionGains) const;
    std::vector<double> Solved(std::span<const double> decibels) const;
    void ComputeSolution();

    struct Band {
        double cosine;    // of the centre, as an angle
        double bandwidth; // tan(B / 2), B the angle between the neighbouring centres
    };
    BiquadCoefficients Section(const Band& band, double gain) const noexcept;

    std::size_t fCentres;
    double fEdgeShare; // of its decibels a section has at its neighbours' centres
    std::vector<Band> fBands;
    std::vector<ResponsePoint> fPlaces;
    std::vector<double> fSolution; // decibels at the places to gains, a row a band
};

} // namespace qoc::dsp
