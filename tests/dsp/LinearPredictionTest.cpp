#include "qoc/dsp/restoration/LinearPrediction.h"

#include "MeasureSound.h"

#include <gtest/gtest.h>
#include <hwy/targets.h>

using namespace qoc::dsp;

namespace {

constexpr std::size_t kFrame = 1024;
constexpr std::size_t kOrder = 13;

struct Restore {
    ~Restore() { Choose(0); }
    static void Choose(std::int64_t targets) {
        hwy::SetSupportedTargetsForTest(targets);
        hwy::GetChosenTarget().DeInit();
    }
};

// By the definition, with the same bits in any parts and on every kind of processor.
TEST(LinearPrediction, ErrorsAreTheSumsOverTheSamplesOnEitherSide) {
    const std::vector<float> noise = test::Noise(kFrame, 5);
    const std::vector<double> sound(noise.begin(), noise.end());
    LinearPrediction model;
    model.Prepare(kFrame, kOrder);
    model.Fit(sound, kOrder);
    const auto coefficients = model.Coefficients();
    std::vector<double> forward(kFrame);
    std::vector<double> backward(kFrame);
    for (std::size_t i = kOrder; i < kFrame - kOrder; ++i) {
        for (std::size_t k = 0; k <= kOrder; ++k) {
            forward[i] += coefficients[k] * sound[i - k];
            backward[i] += coefficients[k] * sound[i + k];
        }
    }
    const Restore restore;
    for (const std::int64_t target : hwy::SupportedAndGeneratedTargets()) {
        Restore::Choose(target);
        for (const std::size_t part : {kFrame, std::size_t{256}, std::size_t{37}}) {
            std::vector<double> errors(kFrame, 1);
            std::vector<double> errorsBack(kFrame, 1);
            for (std::size_t begin = 0; begin < kFrame; begin += part) {
                const StepRange samples = {begin, std::min(kFrame, begin + part)};
                model.ForwardErrors(sound, errors, samples);
                model.BackwardErrors(sound, errorsBack, samples);
            }
            EXPECT_EQ(errors, forward) << part << " with " << hwy::TargetName(target);
            EXPECT_EQ(errorsBack, backward) << part << " with " << hwy::TargetName(target);
        }
        Restore::Choose(0);
    }
}

} // namespace
