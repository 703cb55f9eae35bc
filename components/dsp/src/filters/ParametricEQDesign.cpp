#include "qoc/dsp/filters/ParametricEQDesign.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace qoc::dsp {

namespace {

constexpr double kHighest = 0.49; // of the sample rate

// The first-order sections are (n0 + n1 / z) / (d0 + d1 / z), the bilinear transforms of analogue ones whose frequency
// is bent to `w`.
BiquadCoefficients FirstOrder(double n0, double n1, double d0, double d1) noexcept {
    return {n0 / d0, n1 / d0, 0, d1 / d0, 0};
}

double Bent(double sampleRate, double frequency) noexcept {
    return std::tan(std::numbers::pi * frequency / sampleRate);
}

// The quality of the pair of poles `pair`, counted from 1, of a Butterworth filter.
double PairQ(int order, int pair) noexcept {
    const double angle = order % 2 != 0 ? pair : pair - 0.5;
    return 0.5 / std::cos(angle * std::numbers::pi / order);
}

class Maker {
public:
    explicit Maker(double sampleRate) noexcept : fRate(sampleRate) {}

    // Four sections, whether they are needed or not, so that each band has its own for ever.
    void AddPass(const ParametricEQDesign::Pass& pass, bool isHigh) noexcept {
        const std::size_t next = fNext + ParametricEQDesign::kMostOrder / 2;
        if (pass.isOn) {
            const double frequency = Held(pass.frequency);
            if (pass.order % 2 != 0) Add(FirstOrderPass(frequency, isHigh));
            for (int pair = 1; pair <= pass.order / 2; ++pair) {
                const double q = PairQ(pass.order, pair);
                Add(isHigh ? BiquadCoefficients::HighPass(fRate, frequency, q)
                           : BiquadCoefficients::LowPass(fRate, frequency, q));
            }
        }
        fNext = next;
    }
    void AddShelf(const ParametricEQDesign::Shelf& shelf, bool isHigh) noexcept {
        const double frequency = Held(shelf.frequency);
        constexpr double kSteepest = std::numbers::sqrt2 / 2; // without overshoot
        if (shelf.gain == 0)
            Add({});
        else if (!shelf.isSteep)
            Add(FirstOrderShelf(frequency, shelf.gain, isHigh));
        else
            Add(isHigh ? BiquadCoefficients::HighShelf(fRate, frequency, kSteepest, shelf.gain)
                       : BiquadCoefficients::LowShelf(fRate, frequency, kSteepest, shelf.gain));
    }
    void AddPeak(const ParametricEQDesign::Peak& peak) noexcept {
        Add(peak.gain == 0 ? BiquadCoefficients()
                           : BiquadCoefficients::Peaking(fRate, Held(peak.frequency), peak.q, peak.gain));
    }
    const ParametricEQDesign::Sections& Made() const noexcept { return fSections; }

private:
    double Held(double frequency) const noexcept { return std::min(frequency, kHighest * fRate); }
    void Add(const BiquadCoefficients& section) noexcept { fSections[fNext++] = section; }

    BiquadCoefficients FirstOrderPass(double frequency, bool isHigh) const noexcept {
        const double w = Bent(fRate, frequency);
        return isHigh ? FirstOrder(1, -1, 1 + w, w - 1) : FirstOrder(w, w, 1 + w, w - 1);
    }
    // (s + a w) / (s + w / a), or the mirror image with a gain of a^2 at the top; half of the decibels at w.
    BiquadCoefficients FirstOrderShelf(double frequency, double decibels, bool isHigh) const noexcept {
        const double a = std::pow(10.0, decibels / 40);
        const double w = Bent(fRate, frequency);
        if (isHigh) return FirstOrder(a * (a + w), a * (w - a), 1 + a * w, a * w - 1);
        return FirstOrder(1 + a * w, a * w - 1, 1 + w / a, w / a - 1);
    }

    double fRate;
    ParametricEQDesign::Sections fSections;
    std::size_t fNext = 0;
};

} // namespace

ParametricEQDesign::Sections ParametricEQDesign::Make(const Settings& settings, double sampleRate) noexcept {
    Maker maker(sampleRate);
    maker.AddPass(settings.highPass, true);
    maker.AddShelf(settings.lowShelf, false);
    for (const Peak& peak : settings.peaks)
        maker.AddPeak(peak);
    maker.AddShelf(settings.highShelf, true);
    maker.AddPass(settings.lowPass, false);
    return maker.Made();
}

} // namespace qoc::dsp
