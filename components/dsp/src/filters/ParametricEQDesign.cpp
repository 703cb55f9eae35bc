#include "qoc/dsp/filters/ParametricEQDesign.h"

#include <algorithm>
#include <array>

namespace qoc::dsp {

namespace {

constexpr std::size_t kPassSections = MatchedDesign::Pass().size();
constexpr MatchedDesign::Pass kNoPass;

} // namespace

ParametricEQDesign::Sections ParametricEQDesign::Make(const Settings& settings, double sampleRate) noexcept {
    return ParametricEQDesign().Update(settings, sampleRate);
}

// Each band has its own sections for ever, whether they are needed or not.
const ParametricEQDesign::Sections& ParametricEQDesign::Update(const Settings& settings, double sampleRate) noexcept {
    const bool isAnew = sampleRate != fSampleRate;
    fSampleRate = sampleRate;
    auto place = fSections.begin();
    const auto update = [&](const auto& band, const auto& made, std::size_t count, auto design) {
        if (isAnew || band != made) std::ranges::copy(design(band), place);
        place += static_cast<std::ptrdiff_t>(count);
    };
    const auto single = [](const BiquadCoefficients& section) { return std::array{section}; };
    update(settings.highPass, fMade.highPass, kPassSections, [&](const Pass& pass) {
        return pass.isOn ? MatchedDesign::HighPass(fSampleRate, pass.frequency, pass.order) : kNoPass;
    });
    update(settings.lowShelf, fMade.lowShelf, 1, [&](const Shelf& shelf) {
        return single(MatchedDesign::LowShelf(fSampleRate, shelf.frequency, shelf.gain, shelf.isSteep));
    });
    for (std::size_t i = 0; i < kPeaks; ++i) {
        update(settings.peaks[i], fMade.peaks[i], 1, [&](const Peak& peak) {
            return single(MatchedDesign::Bell(fSampleRate, peak.frequency, peak.q, peak.gain));
        });
    }
    update(settings.highShelf, fMade.highShelf, 1, [&](const Shelf& shelf) {
        return single(MatchedDesign::HighShelf(fSampleRate, shelf.frequency, shelf.gain, shelf.isSteep));
    });
    update(settings.lowPass, fMade.lowPass, kPassSections, [&](const Pass& pass) {
        return pass.isOn ? MatchedDesign::LowPass(fSampleRate, pass.frequency, pass.order) : kNoPass;
    });
    fMade = settings;
    return fSections;
}

} // namespace qoc::dsp
