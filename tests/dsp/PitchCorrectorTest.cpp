#include "qoc/dsp/pitch/PitchCorrector.h"

#include <gtest/gtest.h>

using namespace qoc::dsp;

namespace {

TEST(ScaleQuantizer, FindsTheNearestNoteOfTheScale) {
    constexpr int kC = 0;
    constexpr int kA = 9;
    struct Case {
        MusicalScale scale;
        int key;
        double pitch;
        int expected;
    };
    constexpr Case kCases[] = {
        {MusicalScale::kChromatic, kC, 60.4, 60}, {MusicalScale::kChromatic, kC, 60.6, 61},
        {MusicalScale::kMajor, kC, 63.4, 64},     {MusicalScale::kMajor, kC, 62.9, 62},
        {MusicalScale::kMinor, kC, 63.4, 63},     {MusicalScale::kMinor, kC, 69.2, 70}, // A flat or B flat
        {MusicalScale::kMajor, kC, 65.9, 65},     {MusicalScale::kMajor, kC, 66.1, 67},
        {MusicalScale::kMinor, kA, 66.1, 67},     {MusicalScale::kMajor, kA, 66.1, 66}, // F sharp is in A major only
        {MusicalScale::kMajor, kC, 61.0, 60},     {MusicalScale::kMajor, kC, -0.8, -1},
        {MusicalScale::kMajor, -10, 66.1, 66}, // D major
    };
    for (const Case& each : kCases) {
        ScaleQuantizer quantizer;
        quantizer.SetScale(each.scale, each.key);
        EXPECT_EQ(quantizer.Nearest(each.pitch), each.expected) << each.pitch << " in " << each.key;
    }
}

TEST(PitchCorrector, AttackIsTheTimeToNineTenths) {
    PitchCorrector corrector;
    corrector.SetAttack(1000);
    EXPECT_NEAR(corrector.Advance(69.4, 1000), -36, 1e-9);
    EXPECT_NEAR(corrector.Advance(69.4, 1000), -39.6, 1e-9);
    EXPECT_NEAR(corrector.Advance(std::nullopt, 1000), -3.96, 1e-9); // let go at the same rate
    // In many small steps it goes as far as in one.
    corrector.Reset();
    for (int i = 0; i < 99; ++i)
        corrector.Advance(69.4, 10);
    EXPECT_NEAR(corrector.Advance(69.4, 10), -36, 1e-9);
}

TEST(PitchCorrector, LeavesPitchesBeyondItsReachAlone) {
    struct Case {
        double sensitivity;
        double pitch;
        double expected; // cents
    };
    constexpr Case kCases[] = {{0, 69.05, 0}, {20, 69.15, -15}, {20, 69.25, 0}, {100, 69.5, -50}, {50, 68.6, 40}};
    for (const Case& each : kCases) {
        PitchCorrector corrector;
        corrector.SetAttack(1);
        corrector.SetSensitivity(each.sensitivity);
        EXPECT_NEAR(corrector.Advance(each.pitch, 1000), each.expected, 1e-6) << each.pitch;
    }
}

TEST(PitchCorrector, WaveringAtABorderDoesNotJumpBetweenNotes) {
    PitchCorrector corrector;
    corrector.SetAttack(1);
    EXPECT_NEAR(corrector.Advance(69.48, 1000), -48, 1e-6);
    EXPECT_NEAR(corrector.Advance(69.53, 1000), -53, 1e-6); // still the A, and still within its reach
    EXPECT_NEAR(corrector.Advance(69.57, 1000), 43, 1e-6);
    EXPECT_NEAR(corrector.Advance(69.47, 1000), 53, 1e-6);
}

} // namespace
