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
#include <iterator>

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

constexpr EffectDescription kEffects[] = {
    {kAdaptiveNoiseReductionComponentID, "adaptivenoisereduction",
     "$$$/qoc/Effect/AdaptiveNoiseReduction=Adaptive Noise Reduction", kRestoration, Create<AdaptiveNoiseReduction>,
     "$$$/qoc/Keywords/AdaptiveNoiseReduction=noise hiss background broadband denoise clean fan air conditioning wind "
     "tape"},
    {kAmplifyComponentID, "amplify", "$$$/qoc/Effect/Amplify=Amplify", kAmplitude, Create<Amplify>,
     "$$$/qoc/Keywords/Amplify=gain volume level loudness louder quieter decibels boost fade trim mute"},
    {kAutoClickRemoverComponentID, "autoclickremover", "$$$/qoc/Effect/AutoClickRemover=Automatic Click Remover",
     kRestoration, Create<AutoClickRemover>,
     "$$$/qoc/Keywords/AutoClickRemover=clicks pops crackle vinyl record ticks scratches declick"},
    {kAutoPhaseCorrectionComponentID, "autophasecorrection",
     "$$$/qoc/Effect/AutoPhaseCorrection=Automatic Phase Correction", kRestoration, Create<AutoPhaseCorrection>,
     "$$$/qoc/Keywords/AutoPhaseCorrection=azimuth alignment polarity tape microphones delay mono compatibility"},
    {kCenterChannelExtractComponentID, "centerchannelextract",
     "$$$/qoc/Effect/CenterChannelExtract=Center Channel Extract", kStereo, Create<CenterChannelExtract>,
     "$$$/qoc/Keywords/CenterChannelExtract=vocals voice karaoke instrumental acapella centre isolate remove middle"},
    {kChannelMixerComponentID, "channelmixer", "$$$/qoc/Effect/ChannelMixer=Channel Mixer", kAmplitude,
     Create<ChannelMixer>,
     "$$$/qoc/Keywords/ChannelMixer=swap left right mono mid side downmix route balance invert polarity matrix"},
    {kChorusComponentID, "chorus", "$$$/qoc/Effect/Chorus=Chorus", kModulation, Create<Chorus>,
     "$$$/qoc/Keywords/Chorus=voices ensemble thicken doubling detune wide modulation"},
    {kDelayComponentID, "delay", "$$$/qoc/Effect/Delay=Delay", kDelay, Create<Delay>,
     "$$$/qoc/Keywords/Delay=slapback haas repeat offset align milliseconds"},
    {kDopplerComponentID, "doppler", "$$$/qoc/Effect/Doppler=Doppler Shifter", kTimeAndPitch, Create<Doppler>,
     "$$$/qoc/Keywords/Doppler=moving passing car siren fly by rotate circle path"},
    {kDynamicsComponentID, "dynamics", "$$$/qoc/Effect/Dynamics=Dynamics", kAmplitude, Create<Dynamics>,
     "$$$/qoc/Keywords/Dynamics=compressor expander gate limiter loudness ratio threshold attack release sidechain "
     "levelling"},
    {kEchoComponentID, "echo", "$$$/qoc/Effect/Echo=Echo", kDelay, Create<Echo>,
     "$$$/qoc/Keywords/Echo=repeat feedback delay bouncing ping pong canyon telephone"},
    {kFFTFilterComponentID, "fftfilter", "$$$/qoc/Effect/FFTFilter=FFT Filter", kFilter, Create<FFTFilter>,
     "$$$/qoc/Keywords/FFTFilter=frequency curve draw equalizer eq linear phase brickwall rumble hiss low pass high "
     "pass cut"},
    {kFlangerComponentID, "flanger", "$$$/qoc/Effect/Flanger=Flanger", kModulation, Create<Flanger>,
     "$$$/qoc/Keywords/Flanger=jet sweep swoosh comb through zero phaser modulation"},
    {kFullReverbComponentID, "fullreverb", "$$$/qoc/Effect/FullReverb=Full Reverb", kReverb, Create<FullReverb>,
     "$$$/qoc/Keywords/FullReverb=room hall space ambience early reflections convolution concert church"},
    {kGraphicEQ10BandsComponentID, "graphiceq10bands", "$$$/qoc/Effect/GraphicEQ10Bands=Graphic EQ (10 Bands)", kFilter,
     CreateGraphicEQ<GraphicEQ::Bands::kOctave>,
     "$$$/qoc/Keywords/GraphicEQ=equalizer eq bands sliders tone bass treble presence octave"},
    {kGraphicEQ20BandsComponentID, "graphiceq20bands", "$$$/qoc/Effect/GraphicEQ20Bands=Graphic EQ (20 Bands)", kFilter,
     CreateGraphicEQ<GraphicEQ::Bands::kHalfOctave>,
     "$$$/qoc/Keywords/GraphicEQ=equalizer eq bands sliders tone bass treble presence octave"},
    {kGraphicEQ30BandsComponentID, "graphiceq30bands", "$$$/qoc/Effect/GraphicEQ30Bands=Graphic EQ (30 Bands)", kFilter,
     CreateGraphicEQ<GraphicEQ::Bands::kThirdOctave>,
     "$$$/qoc/Keywords/GraphicEQ=equalizer eq bands sliders tone bass treble presence octave"},
    {kGraphicPhaseShifterComponentID, "graphicphaseshifter", "$$$/qoc/Effect/GraphicPhaseShifter=Graphic Phase Shifter",
     kFilter, Create<GraphicPhaseShifter>,
     "$$$/qoc/Keywords/GraphicPhaseShifter=degrees invert polarity hilbert quadrature rotate"},
    {kHardLimiterComponentID, "hardlimiter", "$$$/qoc/Effect/HardLimiter=Hard Limiter", kAmplitude, Create<HardLimiter>,
     "$$$/qoc/Keywords/HardLimiter=peak ceiling maximizer loudness clipping brickwall boost mastering broadcast"},
    {kIntraClipComponentComponentID, "intraclip", "$$$/qoc/Effect/IntraClip=Clip Restoration", kRestoration,
     Create<IntraClip>, "$$$/qoc/Keywords/IntraClip=declip clipping distortion overload clipped peaks restore"},
    {kNotchComponentID, "notch", "$$$/qoc/Effect/Notch=Notch Filter", kFilter, Create<Notch>,
     "$$$/qoc/Keywords/Notch=hum buzz mains whistle tone feedback ground loop band stop remove"},
    {kParametricEQComponentID, "parametriceq", "$$$/qoc/Effect/ParametricEQ=Parametric Equalizer", kFilter,
     Create<ParametricEQ>,
     "$$$/qoc/Keywords/ParametricEQ=eq bands shelf peak bell low cut high cut tone bass treble rumble hum"},
    {kPitchCorrectComponentID, "pitchcorrect", "$$$/qoc/Effect/PitchCorrect=Automatic Pitch Correction", kTimeAndPitch,
     Create<PitchCorrect>,
     "$$$/qoc/Keywords/PitchCorrect=tune intonation vocals singing voice scale key note semitone cents"},
    {kPitchShiftComponentID, "pitchshift", "$$$/qoc/Effect/PitchShift=Pitch Shifter", kTimeAndPitch, Create<PitchShift>,
     "$$$/qoc/Keywords/PitchShift=transpose semitone octave key higher lower chipmunk stretch"},
    {kReverbComponentID, "reverb", "$$$/qoc/Effect/Reverb=Reverb", kReverb, Create<Reverb>,
     "$$$/qoc/Keywords/Reverb=room hall space ambience decay cathedral church wet"},
    {kScientificFilterComponentID, "scientificfilter", "$$$/qoc/Effect/ScientificFilter=Scientific Filter", kFilter,
     Create<ScientificFilter>,
     "$$$/qoc/Keywords/ScientificFilter=butterworth bessel chebyshev low pass high pass band pass band stop rumble "
     "steep order iir"},
    {kStereoExpanderComponentID, "stereoexpander", "$$$/qoc/Effect/StereoExpander=Stereo Expander", kStereo,
     Create<StereoExpander>, "$$$/qoc/Keywords/StereoExpander=width wide mono narrow pan image centre mid side"},
    {kStudioReverbComponentID, "studioreverb", "$$$/qoc/Effect/StudioReverb=Studio Reverb", kReverb,
     Create<StudioReverb>, "$$$/qoc/Keywords/StudioReverb=room hall plate space ambience decay drums vocals wet"},
};

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

krocore::string16 EffectDescription::Keywords() const {
    return krocore::Localize(keywordsKey);
}

std::span<const EffectDescription> AllEffects() noexcept {
    return kEffects;
}

const EffectDescription* FindEffect(std::u16string_view componentID) noexcept {
    const auto found = std::ranges::find(kEffects, componentID, &EffectDescription::componentID);
    return found == std::end(kEffects) ? nullptr : &*found;
}

const EffectDescription* FindEffectByShortName(std::string_view shortName) noexcept {
    const auto found = std::ranges::find_if(kEffects, [&](const EffectDescription& effect) {
        return krocore::EqualsIgnoringCase(effect.shortName, shortName);
    });
    return found == std::end(kEffects) ? nullptr : &*found;
}

boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> CreateEffect(std::u16string_view componentID) {
    const EffectDescription* effect = FindEffect(componentID);
    return effect != nullptr && effect->create != nullptr ? effect->create() : nullptr;
}

krocore::string16 CategoryName(EffectCategory category) {
    return krocore::Localize(kCategoryKeys[static_cast<std::size_t>(category)]);
}

} // namespace qoc::components
