#include "qoc/dsp/restoration/NoiseEstimator.h"

#include <algorithm>

namespace qoc::dsp {

void NoiseEstimator::Prepare(std::size_t bins, double sampleRate, std::size_t turn) {
    fTracker.Prepare(sampleRate, turn);
    fProfile.Prepare(fTracker.Bands(), bins, sampleRate);
    fGrid.SetHop(fTracker.HopAfterLook());
    fPace.Clear();
    fPace.Add(NoiseProfile::kSteps, 1);
    fPace.SpreadOver(fTracker.HopAfterLook());
    Reset();
}

void NoiseEstimator::Reset() noexcept {
    fTracker.Reset();
    fProfile.Reset();
    fGrid.Reset();
    fIsFinding = false;
    fRecalled = kNone;
}

void NoiseEstimator::Listen(std::span<const float> samples) {
    fTracker.Hear(samples, [this](const NoiseTracker::Look& look) { fProfile.Record(look); });
}

bool NoiseEstimator::Recall(std::size_t place) noexcept {
    const std::size_t hop = fTracker.LookHop();
    const std::size_t look = (place - std::min(place, hop / 2)) / hop; // the centre of look 0 is at the hop
    if (look == fRecalled) return false;
    fRecalled = look;
    fProfile.Find(look);
    return true;
}

bool NoiseEstimator::Hear(std::span<const float> samples) noexcept {
    bool isFound = false;
    fGrid.Cut(
        samples.size(),
        [&](std::size_t begin, std::size_t frames, std::size_t position) {
            if (fIsFinding)
                fPace.RunUntil(position + frames, [this](std::size_t step) { fProfile.Find(fProfile.Looks(), step); });
            fTracker.Hear(samples.subspan(begin, frames), [this](const NoiseTracker::Look& look) {
                fProfile.Add(look);
                fIsFinding = true;
                fPace.Restart();
            });
        },
        [&] {
            if (!fIsFinding || !fPace.IsDone()) return;
            fIsFinding = false;
            isFound = true;
        });
    return isFound;
}

} // namespace qoc::dsp
