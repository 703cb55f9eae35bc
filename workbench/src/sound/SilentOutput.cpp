#include "workbench/sound/SilentOutput.h"

#include "krocore/Localizer.h"
#include "kroui/ui/UI_NodeManager.h"

#include <algorithm>

namespace workbench {

namespace {

constexpr std::size_t kBlock = 512;
// A program that was held up for longer does not catch up.
constexpr double kLongestPause = 0.5;

double Now() {
    return kroui::ui::UI_NodeManager::Get().Now();
}

} // namespace

void SilentOutput::Start(qohost::PlaybackEngine& engine, float sampleRate) {
    fEngine = &engine;
    fSampleRate = sampleRate;
    fLast = Now();
    fBuffer.resize(kBlock * kChannels);
}

void SilentOutput::Poll() {
    const double now = Now();
    if (!fEngine || !fEngine->IsPlaying()) {
        fLast = now;
        return;
    }
    fLast = std::max(fLast, now - kLongestPause);
    auto frames = static_cast<std::size_t>((now - fLast) * fSampleRate);
    fLast += static_cast<double>(frames) / fSampleRate;
    while (frames > 0) {
        const std::size_t count = std::min(frames, kBlock);
        fEngine->Render(fBuffer.data(), count, kChannels);
        frames -= count;
    }
}

krocore::string16 SilentOutput::Problem() const {
    return krocore::Localize("$$$/Workbench/NoOutput=Nothing is heard: there is no sound output.");
}

} // namespace workbench
