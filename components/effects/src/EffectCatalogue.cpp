#include "qoc/components/EffectCatalogue.h"

#include "krocore/Localizer.h"
#include "qoc/components/AdaptiveNoiseReduction.h"
#include "qoc/components/Amplify.h"
#include "qoc/components/AutoClickRemover.h"
#include "qoc/components/AutoPhaseCorrection.h"
#include "qoc/components/CenterChannelExtract.h"
#include "qoc/components/ChannelMixer.h"
#include "qoc/components/Chorus.h"
#include "qoc/components/ComponentIDs.h"
#include "qoc/components/Delay.h"
#include "qoc/components/Doppler.h"
#include "qoc/components/Dynamics.h"
#include "qoc/components/Echo.h"
#include "qoc/components/FFTFilter.h"
#include "qoc/components/Flanger.h"
#include "qoc/components/FullReverb.h"
#include "qoc/components/GraphicEQ.h"
#include "qoc/components/GraphicPhaseShifter.h"
#include "qoc/components/HardLimiter.h"
#include "qoc/components/IntraClip.h"
#include "qoc/components/Notch.h"
#include "qoc/components/ParametricEQ.h"
#include "qoc/components/PitchCorrect.h"
#include "qoc/components/PitchShift.h"
#include "qoc/components/Reverb.h"
#include "qoc/components/ScientificFilter.h"
#include "qoc/components/StereoExpander.h"
#include "qoc/components/StudioReverb.h"

#include <algorithm>
#include <array>

namespace qoc::components {

namespace {

template <typename Effect>
boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> Create() {
    return new Effect;
}

template <GraphicEQ::Bands kBands>
boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> CreateGraphicEQ() {
    return new GraphicEQ(kBands);
}

using enum EffectCategory;

constexpr std::array<EffectDescription, 28> kEffects = {{
    {kAdaptiveNoiseReductionComponentID, "adaptivenoisereduction",
     "$$$/qoc/Effect/AdaptiveNoiseReduction=Adaptive Noise Reduction", kRestoration, Create<AdaptiveNoiseReduction>},
    {kAmplifyComponentID, "amplify", "$$$/qoc/Effect/Amplify=Amplify", kAmplitude, Create<Amplify>},
    {kAutoClickRemoverComponentID, "autoclickremover", "$$$/qoc/Effect/AutoClickRemover=Automatic Click Remover",
     kRestoration, Create<AutoClickRemover>},
    {kAutoPhaseCorrectionComponentID, "autophasecorrection",
     "$$$/qoc/Effect/AutoPhaseCorrection=Automatic Phase Correction", kRestoration, Create<AutoPhaseCorrection>},
    {kCenterChannelExtractComponentID, "centerchannelextract",
     "$$$/qoc/Effect/CenterChannelExtract=Center Channel Extract", kStereo, Create<CenterChannelExtract>},
    {kChannelMixerComponentID, "channelmixer", "$$$/qoc/Effect/ChannelMixer=Channel Mixer", kAmplitude,
     Create<ChannelMixer>},
    {kChorusComponentID, "chorus", "$$$/qoc/Effect/Chorus=Chorus", kModulation, Create<Chorus>},
    {kDelayComponentID, "delay", "$$$/qoc/Effect/Delay=Delay", kDelay, Create<Delay>},
    {kDopplerComponentID, "doppler", "$$$/qoc/Effect/Doppler=Doppler Shifter", kTimeAndPitch, Create<Doppler>},
    {kDynamicsComponentID, "dynamics", "$$$/qoc/Effect/Dynamics=Dynamics", kAmplitude, Create<Dynamics>},
    {kEchoComponentID, "echo", "$$$/qoc/Effect/Echo=Echo", kDelay, Create<Echo>},
    {kFFTFilterComponentID, "fftfilter", "$$$/qoc/Effect/FFTFilter=FFT Filter", kFilter, Create<FFTFilter>},
    {kFlangerComponentID, "flanger", "$$$/qoc/Effect/Flanger=Flanger", kModulation, Create<Flanger>},
    {kFullReverbComponentID, "fullreverb", "$$$/qoc/Effect/FullReverb=Full Reverb", kReverb, Create<FullReverb>},
    {kGraphicEQ10BandsComponentID, "graphiceq10bands", "$$$/qoc/Effect/GraphicEQ10Bands=Graphic EQ (10 Bands)", kFilter,
     CreateGraphicEQ<GraphicEQ::Bands::kOctave>},
    {kGraphicEQ20BandsComponentID, "graphiceq20bands", "$$$/qoc/Effect/GraphicEQ20Bands=Graphic EQ (20 Bands)", kFilter,
     CreateGraphicEQ<GraphicEQ::Bands::kHalfOctave>},
    {kGraphicEQ30BandsComponentID, "graphiceq30bands", "$$$/qoc/Effect/GraphicEQ30Bands=Graphic EQ (30 Bands)", kFilter,
     CreateGraphicEQ<GraphicEQ::Bands::kThirdOctave>},
    {kGraphicPhaseShifterComponentID, "graphicphaseshifter", "$$$/qoc/Effect/GraphicPhaseShifter=Graphic Phase Shifter",
     kFilter, Create<GraphicPhaseShifter>},
    {kHardLimiterComponentID, "hardlimiter", "$$$/qoc/Effect/HardLimiter=Hard Limiter", kAmplitude,
     Create<HardLimiter>},
    {kIntraClipComponentComponentID, "intraclip", "$$$/qoc/Effect/IntraClip=Clip Restoration", kRestoration,
     Create<IntraClip>},
    {kNotchComponentID, "notch", "$$$/qoc/Effect/Notch=Notch Filter", kFilter, Create<Notch>},
    {kParametricEQComponentID, "parametriceq", "$$$/qoc/Effect/ParametricEQ=Parametric Equalizer", kFilter,
     Create<ParametricEQ>},
    {kPitchCorrectComponentID, "pitchcorrect", "$$$/qoc/Effect/PitchCorrect=Automatic Pitch Correction", kTimeAndPitch,
     Create<PitchCorrect>},
    {kPitchShiftComponentID, "pitchshift", "$$$/qoc/Effect/PitchShift=Pitch Shifter", kTimeAndPitch,
     Create<PitchShift>},
    {kReverbComponentID, "reverb", "$$$/qoc/Effect/Reverb=Reverb", kReverb, Create<Reverb>},
    {kScientificFilterComponentID, "scientificfilter", "$$$/qoc/Effect/ScientificFilter=Scientific Filter", kFilter,
     Create<ScientificFilter>},
    {kStereoExpanderComponentID, "stereoexpander", "$$$/qoc/Effect/StereoExpander=Stereo Expander", kStereo,
     Create<StereoExpander>},
    {kStudioReverbComponentID, "studioreverb", "$$$/qoc/Effect/StudioReverb=Studio Reverb", kReverb,
     Create<StudioReverb>},
}};

// In the order of the enumeration.
constexpr std::array<const char*, 8> kCategoryKeys = {
    "$$$/qoc/Category/Amplitude=Amplitude",
    "$$$/qoc/Category/Delay=Delay and Echo",
    "$$$/qoc/Category/Filter=Filter and Equalizer",
    "$$$/qoc/Category/Modulation=Modulation",
    "$$$/qoc/Category/Restoration=Restoration",
    "$$$/qoc/Category/Reverb=Reverb",
    "$$$/qoc/Category/Stereo=Stereo",
    "$$$/qoc/Category/TimeAndPitch=Time and Pitch",
};

} // namespace

krocore::string16 EffectDescription::DisplayName() const {
    return krocore::Localize(nameKey);
}

std::span<const EffectDescription> AllEffects() noexcept {
    return kEffects;
}

const EffectDescription* FindEffect(std::u16string_view componentID) noexcept {
    const auto found = std::ranges::find(kEffects, componentID, &EffectDescription::componentID);
    return found == kEffects.end() ? nullptr : &*found;
}

const EffectDescription* FindEffectByShortName(std::string_view shortName) noexcept {
    const auto found = std::ranges::find_if(kEffects, [&](const EffectDescription& effect) {
        return krocore::EqualsIgnoringCase(effect.shortName, shortName);
    });
    return found == kEffects.end() ? nullptr : &*found;
}

boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> CreateEffect(std::u16string_view componentID) {
    const EffectDescription* effect = FindEffect(componentID);
    return effect != nullptr && effect->create != nullptr ? effect->create() : nullptr;
}

krocore::string16 CategoryName(EffectCategory category) {
    return krocore::Localize(kCategoryKeys[static_cast<std::size_t>(category)]);
}

} // namespace qoc::components
