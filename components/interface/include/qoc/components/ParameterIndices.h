#pragma once

// The parameter indices of the effects: what AudioFilter's parameter operations take. They never change.
namespace qoc::components {

// The effects whose parameters are few; each block counts from 0.
enum ParameterIndex : int {
    kAmplifyChannelCount = 0, // number of channels / 32; read only
    kAmplifyLinkChannels = 1,
    kAmplifyFirstGain = 2, // the gain of channel c is kAmplifyFirstGain + c

    kStereoExpanderPan = 0,
    kStereoExpanderExpand = 1,

    kPitchShiftRatio = 0,
    kPitchShiftPrecision = 1,
    kPitchShiftSplicingFrequency = 2,
    kPitchShiftOverlapping = 3,
    kPitchShiftUseDefaultSettings = 4,
};

enum NotchParameterIndex : int {
    kNotchFirstFrequency = 0, // six sections each
    kNotchFirstGain = 6,
    kNotchFirstEnable = 12,
    kNotchFixGain = 18,
    kNotchWidth = 21,
    kNotchFixGainEnable = 22,
    kNotchUltraQuiet = 25,
    kNotchViewStart = 27,
    kNotchViewEnd = 28,
};

enum FFTFilterParameterIndex : int {
    kFFTFilterSplineCurves = 0,
    kFFTFilterSize = 1,
    kFFTFilterWindowType = 2,
    kFFTFilterUpdating = 3, // 1 while the curve is being rewritten
    kFFTFilterScale = 4,
    kFFTFilterViewStart = 5,
    kFFTFilterViewEnd = 6,
    kFFTFilterPointCount = 9,
    kFFTFilterFirstPoint = 10, // frequency and level of up to 128 points by turns
};

enum GraphicPhaseShifterParameterIndex : int {
    kPhaseShifterSplineCurves = 0,
    kPhaseShifterSize = 1,
    kPhaseShifterUpdating = 2, // 1 while the curve is being rewritten
    kPhaseShifterChannel = 3,
    kPhaseShifterRange = 4,
    kPhaseShifterScale = 5,
    kPhaseShifterViewStart = 6,
    kPhaseShifterViewEnd = 7,
    kPhaseShifterPointCount = 10,
    kPhaseShifterFirstPoint = 11, // frequency and phase of up to 128 points by turns
};

enum DopplerParameterIndex : int {
    kDopplerQuality = 0,
    kDopplerRadius = 1, // starting distance on the straight path
    kDopplerVelocity = 2,
    kDopplerStartingAngle = 3, // direction on the straight path
    kDopplerCenterFront = 4,
    kDopplerCenterRight = 5,
    kDopplerCircular = 6,
    kDopplerAdjustDistance = 7,
    kDopplerAdjustDirection = 8,
};

enum PitchCorrectParameterIndex : int {
    kPitchCorrectChannel = 0,
    kPitchCorrectFFTSize = 1,
    kPitchCorrectCalibration = 3,
    kPitchCorrectKey = 4,
    kPitchCorrectScale = 5,
    kPitchCorrectSensitivity = 6,
    kPitchCorrectAttack = 7,
    kPitchCorrectCorrection = 8, // measured; read only
};

enum HardLimiterParameterIndex : int {
    kHardLimiterMaximumAmplitude = 0,
    kHardLimiterInputBoost = 1,
    kHardLimiterLookAhead = 2,
    kHardLimiterRelease = 3,
    kHardLimiterLinkChannels = 4,
};

// Of all three; index 3 is free.
enum GraphicEQParameterIndex : int {
    kGraphicEQRange = 0,
    kGraphicEQAccuracy = 1,
    kGraphicEQMasterGain = 2,
    kGraphicEQFirstGain = 4, // of 10, 20 or 30 bands, followed by the highest gain of the curve; read only
};

enum SFParameterIndex : int {
    kSFType = 0,
    kSFMode = 1,
    kSFOrder = 2,
    kSFCutoff = 3,
    kSFHighCutoff = 4,          // of band filters
    kSFTransitionBandwidth = 5, // follows from the others; read only
    kSFPassRipple = 6,
    kSFStopAttenuation = 7,
    kSFMasterGain = 8,
    kSFView = 9, // what the graph shows: 0 magnitude, 1 phase, 2 group delay
    kSFLogarithmicAxis = 10,
    kSFLevelRange = 11, // of the graph's magnitude
    kSFViewStart = 12,  // frequencies that the graph shows
    kSFViewEnd = 13,
};

enum ChannelMixerParameterIndex : int {
    kChannelMixerFirstAmount = 0,   // of input i in output o: + 8 * o + i
    kChannelMixerChannelCount = 64, // number of channels / 32; read only
};

enum CenterChannelExtractParameterIndex : int {
    kCenterExtractPosition = 0, // center, left, right, surround, custom
    kCenterExtractPhase = 1,    // these three of the custom position
    kCenterExtractPan = 2,
    kCenterExtractDelay = 3,
    kCenterExtractRange = 4,        // male voice, female voice, bass, full spectrum, custom
    kCenterExtractLowFrequency = 5, // these two of the custom range
    kCenterExtractHighFrequency = 6,
    kCenterExtractCenterLevel = 7,
    kCenterExtractSideLevel = 8,
    kCenterExtractPhaseDiscrimination = 9,
    kCenterExtractAmplitudeDiscrimination = 10,
    kCenterExtractCrossover = 11,
    kCenterExtractBleed = 12,
    kCenterExtractDecay = 13,
    kCenterExtractSize = 14,
    kCenterExtractWindow = 15,
    kCenterExtractOverlaps = 16,
    kCenterExtractMono = 17,
    kCenterExtractKeepOutside = 18,
    kCenterExtractHearRemoved = 19,
    kCenterExtractPresentLow = 20, // of the chosen range; read only
    kCenterExtractPresentHigh = 21,
};

enum AutoPhaseCorrectionParameterIndex : int {
    kAutoPhaseGlobalTimeShift = 0,
    kAutoPhaseAutoAlign = 1,
    kAutoPhaseChannel = 2,
    kAutoPhaseAnalysisSize = 3,
    kAutoPhaseTimeResolution = 4,
    kAutoPhaseResponsiveness = 5,
    kAutoPhaseStrength = 6,
    kAutoPhaseSmoothing = 7,
    kAutoPhaseTimeShift = 8, // this and the next: without automatic alignment
    kAutoPhasePhaseShift = 9,
    kAutoPhaseLongestShift = 10,
    kAutoPhaseBalance = 11,
    kAutoPhaseFoundShift = 12, // measured; read only
};

enum AutoClickRemoverParameterIndex : int {
    kAutoClickRemoverThreshold = 0,
    kAutoClickRemoverComplexity = 1,
    kAutoClickRemoverRepairs = 2, // counted; read only
};

enum AdaptiveNoiseReductionParameterIndex : int {
    kAdaptiveNoiseReductionReduceBy = 0,
    kAdaptiveNoiseReductionNoisiness = 1,
    kAdaptiveNoiseReductionFineTune = 2,
    kAdaptiveNoiseReductionThreshold = 3,
    kAdaptiveNoiseReductionDecay = 4,
    kAdaptiveNoiseReductionBroadband = 5,
    kAdaptiveNoiseReductionFFTSize = 6,
    kAdaptiveNoiseReductionHighQuality = 7,
    kAdaptiveNoiseReductionNoiseFloor = 8, // measured; read only
};

enum IntraClipParameterIndex : int {
    kIntraClipGain = 0,
    kIntraClipTolerance = 1,
    kIntraClipMinimumSize = 2,
    kIntraClipLevel = 3,
    kIntraClipFindLevel = 4,
    kIntraClipUseSpectrum = 5, // interpolation: 0 cubic, 1 FFT
    kIntraClipFFTSize = 6,
    kIntraClipDetail = 7,
};

enum DynamicsParameterIndex : int {
    kDynamicsMakeUpGain = 0,
    kDynamicsAttack = 1, // of the gain
    kDynamicsRelease = 2,
    kDynamicsHold = 3,
    kDynamicsLookAhead = 4,
    kDynamicsRange = 5, // the most that the curve may change the gain
    kDynamicsMix = 6,
    kDynamicsKnee = 7,
    kDynamicsSmoothCurve = 8,
    kDynamicsAutoMakeUp = 9,
    kDynamicsDetectorMode = 10, // 0 peak, 1 RMS
    kDynamicsDetectorGain = 11,
    kDynamicsDetectorAttack = 12,   // of the peak detector
    kDynamicsDetectorRelease = 13,  // of the peak detector; the averaging time of the other one
    kDynamicsDetectorChannels = 14, // 0 loudest, 1 average, 2 each by itself
    kDynamicsLimitBand = 15,
    kDynamicsLowCutoff = 16,
    kDynamicsHighCutoff = 17,
    kDynamicsListen = 18,
    kDynamicsPointCount = 19,
    kDynamicsFirstPoint = 20, // input and output level of up to 6 points by turns
};

enum DelayParameterIndex : int {
    kDelayLeftTime = 0,
    kDelayLeftMix = 1,
    kDelayLeftInvert = 2,
    kDelayRightTime = 3,
    kDelayRightMix = 4,
    kDelayRightInvert = 5,
    kDelayShowSamples = 6,  // how the panel writes times
    kDelayChannelCount = 7, // number of channels / 32; read only
};

enum ChorusParameterIndex : int {
    kChorusVoices = 0,
    kChorusDelay = 1,
    kChorusRate = 2,
    kChorusDepth = 3,
    kChorusFeedback = 4,
    kChorusSpread = 5,
    kChorusLevelDepth = 6,
    kChorusLevelRate = 7,
    kChorusHighQuality = 8,
    kChorusAverage = 9,
    kChorusBinaural = 10,
    kChorusWidth = 11,
    kChorusMix = 12,
};

enum FlangerParameterIndex : int {
    kFlangerInitialDelay = 0,
    kFlangerFinalDelay = 1,
    kFlangerStereoPhase = 2,
    kFlangerFeedback = 3,
    kFlangerRate = 4,
    kFlangerInverted = 5,
    kFlangerThroughZero = 6,
    kFlangerSinusoidal = 7,
    kFlangerMix = 8,
    kFlangerShowPeriod = 9, // how the panel writes the rate
};

enum EchoParameterIndex : int {
    kEchoLeftTime = 0,
    kEchoLeftFeedback = 1,
    kEchoLeftLevel = 2,
    kEchoRightTime = 3,
    kEchoRightFeedback = 4,
    kEchoRightLevel = 5,
    kEchoLock = 6,
    kEchoBounce = 7,
    kEchoTimeUnit = 8,      // how the panel writes times: 0 milliseconds, 1 beats, 2 samples
    kEchoFirstBand = 9,     // eight
    kEchoChannelCount = 17, // number of channels / 32; read only
};

enum ReverbParameterIndex : int {
    kReverbDecay = 0,
    kReverbPredelay = 1,
    kReverbDiffusion = 2,
    kReverbPerception = 3,
    kReverbDry = 4,
    kReverbWet = 5,
    kReverbSumInputs = 6,
    kReverbLength = 7, // this and the next follow from the others; read only
    kReverbDirectRatio = 8,
};

enum StudioReverbParameterIndex : int {
    kStudioReverbRoomSize = 0,
    kStudioReverbDecay = 1,
    kStudioReverbEarly = 2,
    kStudioReverbWidth = 3,
    kStudioReverbHighCut = 4,
    kStudioReverbLowCut = 5,
    kStudioReverbDamping = 6,
    kStudioReverbDiffusion = 7,
    kStudioReverbDry = 8,
    kStudioReverbWet = 9,
    kStudioReverbLength = 10, // this and the next follow from the others; read only
    kStudioReverbDirectRatio = 11,
};

enum FullReverbParameterIndex : int {
    kFullReverbDecay = 0,
    kFullReverbPredelay = 1,
    kFullReverbDiffusion = 2,
    kFullReverbPerception = 3,
    kFullReverbRoomSize = 4,
    kFullReverbDimension = 5, // width by depth
    kFullReverbLocation = 6,  // of the source: left or right
    kFullReverbDistance = 7,
    kFullReverbHighPass = 8, // of the early reflections
    kFullReverbLowFrequency = 9,
    kFullReverbLowGain = 10,
    kFullReverbMiddleFrequency = 11,
    kFullReverbMiddleGain = 12,
    kFullReverbMiddleQ = 13,
    kFullReverbHighFrequency = 14,
    kFullReverbHighGain = 15,
    kFullReverbDry = 16,
    kFullReverbReverberation = 17,
    kFullReverbEarly = 18,
    kFullReverbSetByRoom = 19, // decay and pre-delay follow from the room
    kFullReverbIncludeDirect = 20,
    kFullReverbSumInputs = 21,
    kFullReverbRoomWidth = 22, // this and the following ones follow from the others; read only
    kFullReverbRoomDepth = 23,
    kFullReverbRoomHeight = 24,
    kFullReverbRoomDecay = 25,
    kFullReverbRoomPredelay = 26,
    kFullReverbFirstReflection = 27,
};

// Nine bands: high pass, low shelf, five peaks, high shelf, low pass.
enum ParametricEQParameterIndex : int {
    kParametricEQMasterGain = 0,
    kParametricEQGraphRange = 1,
    kParametricEQConstantWidth = 2, // peaks are as wide as their widths say, otherwise as their Q
    kParametricEQHeadroom = 3,
    kParametricEQFirstEnable = 4,     // of 9
    kParametricEQFirstFrequency = 13, // of 9
    kParametricEQFirstGain = 22,      // of 7: low shelf, peaks, high shelf
    kParametricEQFirstQ = 29,         // of 5 peaks
    kParametricEQFirstWidth = 34,     // of 5 peaks
    kParametricEQFirstSteep = 39,     // of 2 shelves
    kParametricEQFirstSlope = 41,     // of high pass and low pass
    kParametricEQHighestGain = 43,    // of the bands' curve; read only
};

} // namespace qoc::components
