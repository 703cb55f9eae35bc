#pragma once

// The component identifiers of the effects: what AudioFilter::GetComponentID tells, what presets and sessions name an
// effect by. They never change. Usable during static initialisation.
namespace qoc::components {

inline constexpr char16_t kAdaptiveNoiseReductionComponentID[] = u"qoc.AdaptiveNoiseReduction";
inline constexpr char16_t kAmplifyComponentID[] = u"qoc.Amplify";
inline constexpr char16_t kAutoClickRemoverComponentID[] = u"qoc.AutoClickRemover";
inline constexpr char16_t kAutoPhaseCorrectionComponentID[] = u"qoc.AutoPhaseCorrection";
inline constexpr char16_t kCenterChannelExtractComponentID[] = u"qoc.CenterChannelExtract";
inline constexpr char16_t kChannelMixerComponentID[] = u"qoc.ChannelMixer";
inline constexpr char16_t kChorusComponentID[] = u"qoc.Chorus";
inline constexpr char16_t kDelayComponentID[] = u"qoc.Delay";
inline constexpr char16_t kDopplerComponentID[] = u"qoc.Doppler";
inline constexpr char16_t kDynamicsComponentID[] = u"qoc.Dynamics";
inline constexpr char16_t kEchoComponentID[] = u"qoc.Echo";
inline constexpr char16_t kFFTFilterComponentID[] = u"qoc.FFTFilter";
inline constexpr char16_t kFlangerComponentID[] = u"qoc.Flanger";
inline constexpr char16_t kFullReverbComponentID[] = u"qoc.FullReverb";
inline constexpr char16_t kGraphicEQ10BandsComponentID[] = u"qoc.GraphicEQ10Bands";
inline constexpr char16_t kGraphicEQ20BandsComponentID[] = u"qoc.GraphicEQ20Bands";
inline constexpr char16_t kGraphicEQ30BandsComponentID[] = u"qoc.GraphicEQ30Bands";
inline constexpr char16_t kGraphicPhaseShifterComponentID[] = u"qoc.GraphicPhaseShifter";
inline constexpr char16_t kHardLimiterComponentID[] = u"qoc.HardLimiter";
inline constexpr char16_t kIntraClipComponentComponentID[] = u"qoc.IntraClip";
inline constexpr char16_t kNotchComponentID[] = u"qoc.Notch";
inline constexpr char16_t kParametricEQComponentID[] = u"qoc.ParametricEQ";
inline constexpr char16_t kPitchCorrectComponentID[] = u"qoc.PitchCorrect";
inline constexpr char16_t kPitchShiftComponentID[] = u"qoc.PitchShift";
inline constexpr char16_t kReverbComponentID[] = u"qoc.Reverb";
inline constexpr char16_t kScientificFilterComponentID[] = u"qoc.ScientificFilter";
inline constexpr char16_t kStereoExpanderComponentID[] = u"qoc.StereoExpander";
inline constexpr char16_t kStudioReverbComponentID[] = u"qoc.StudioReverb";

} // namespace qoc::components
