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

} // namespace qoc::components
