#include "PlaybackCore.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace qohost {

namespace {

constexpr double kFadeSeconds = 0.005;
constexpr double kMaximumTailSeconds = 60; // of effects that never end

std::size_t BeginOf(const PlaybackRange& range, std::size_t frames) {
    return range.end > range.begin && range.begin < frames ? range.begin : 0;
}

// One step from `value` towards `target`.
float Approach(float value, float target, float step) {
    return value < target ? std::min(value + step, target) : std::max(value - step, target);
}

} // namespace

PlaybackCore::PlaybackCore(std::unique_ptr<PlaybackFeed> feed,
                           boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> filter, std::size_t deviceChannels,
                           std::size_t maximumBlock)
    : fFeed(std::move(feed)), fFilter(std::move(filter)), fMaximumBlock(std::max<std::size_t>(maximumBlock, 1)),
      fFadeStep(static_cast<float>(1.0 / (kFadeSeconds * fFeed->SampleRate()))) {
    Prepare();
    fMatrix = ChannelMatrix(fFilter->GetOutputBuses().front().GetLayout(), deviceChannels);
}

void PlaybackCore::Prepare() {
    fFilter->SetDuration(static_cast<double>(Frames()));
    fFilter->Prepare(fFeed->SampleRate(), fMaximumBlock, fFeed->Layout());
    fLatency = fFilter->Latency();
    fTail = std::min(fFilter->Tail(), static_cast<std::size_t>(kMaximumTailSeconds * fFeed->SampleRate()));
    fInput.assign(fFilter->GetNumberOfInputChannels(), std::vector<float>(fMaximumBlock));
    fOutput.assign(fFilter->GetNumberOfOutputChannels(), std::vector<float>(fMaximumBlock));
    fDelay.assign(fInput.size(), std::vector<float>(fLatency));
    fDelayPosition = 0;
    fInputPointers.clear();
    fOutputPointers.clear();
    for (const auto& channel : fInput)
        fInputPointers.push_back(channel.data());
    for (auto& channel : fOutput)
        fOutputPointers.push_back(channel.data());
}

void PlaybackCore::Start(bool bypassed) {
    fFilter->SetBypassed(bypassed);
    if (const kroaudiofilterhost::AudioFilterHost* host = fFilter->GetAudioFilterHost()) fTempo = host->GetTempo();
    Prepare();
    JumpTo(Position() < Frames() ? Position() : 0);
    fFade = 0;
}

void PlaybackCore::JumpTo(std::size_t frame) noexcept {
    fOrigin = fFed = std::min(frame, Frames());
    fSilenceFed = 0;
    fFilter->Reset();
    for (auto& channel : fDelay)
        std::ranges::fill(channel, 0.0F);
    fFeed->Expect({.position = fFed, .end = Frames()});
}

std::size_t PlaybackCore::Position() const noexcept {
    const std::size_t gone = fFed + fSilenceFed;
    const std::size_t heard = gone > fLatency ? gone - fLatency : 0;
    return std::clamp(heard, fOrigin, fFed);
}

// What plays on behind the range plays to the end of the sound.
std::size_t PlaybackCore::EndOf(const PlaybackRange& range) const noexcept {
    const std::size_t end = range.end > range.begin ? std::min(range.end, Frames()) : Frames();
    return fFed <= end ? end : Frames();
}

bool PlaybackCore::HasSoundEnded(const PlaybackRange& range) const noexcept {
    return fFed == EndOf(range) && fSilenceFed >= fLatency + fTail;
}

bool PlaybackCore::Render(float* interleaved, std::size_t frames, std::size_t channels,
                          const PlaybackRequest& request) noexcept {
    // Asked before the block, so that only what comes behind the last sample of the tail is faded.
    const bool hasEnded = HasSoundEnded(request.range) && !request.loop;
    fMissing = 0;
    fFeed->Expect(PathFrom(request));
    if (IsWaiting()) {
        BeSilent(interleaved, frames, channels);
        return (!request.stop && !request.seek) || FinishFade(request);
    }
    const auto position = static_cast<double>(fFed + fSilenceFed);
    FetchInput(frames, request);
    fFilter->SetBypassed(request.bypass);
    fFilter->SetTransport({.position = position, .isPlaying = true, .tempo = fTempo});
    fFilter->Process({fInputPointers, fOutputPointers, frames});
    DelayInput(frames);
    const bool goesOn = !request.stop && !request.seek && !hasEnded;
    Fade(frames, goesOn ? 1.0F : 0.0F);
    WriteOut(interleaved, frames, channels);
    fHasSought = false;
    return goesOn || fFade > 0 || FinishFade(request);
}

PlaybackPath PlaybackCore::PathFrom(const PlaybackRequest& request) const noexcept {
    const std::size_t loopBegin = BeginOf(request.range, Frames());
    const std::size_t loopEnd = loopBegin < request.range.end ? std::min(request.range.end, Frames()) : Frames();
    return {fFed, EndOf(request.range), request.loop, loopBegin, loopEnd};
}

// Nothing of the sound is lost where it begins; once it is heard, time goes on.
bool PlaybackCore::IsWaiting() const noexcept {
    return fFade == 0 && fSilenceFed == 0 && !fFeed->IsReady(fFed);
}

void PlaybackCore::BeSilent(float* interleaved, std::size_t frames, std::size_t channels) noexcept {
    for (Buffers* const buffers : {&fInput, &fOutput})
        for (std::vector<float>& channel : *buffers)
            std::fill_n(channel.data(), frames, 0.0F);
    std::fill_n(interleaved, frames * channels, 0.0F);
    fHasSought = false;
}

void PlaybackCore::FetchInput(std::size_t frames, const PlaybackRequest& request) noexcept {
    std::size_t done = 0;
    while (done < frames) {
        if (fFed != EndOf(request.range)) GoOnFrom(fFed);
        done += FetchFromSound(done, frames - done, EndOf(request.range));
        if (done == frames) return;
        if (!request.loop || Frames() == 0) break;
        GoOnFrom(BeginOf(request.range, Frames()));
    }
    for (auto& channel : fInput)
        std::fill(channel.begin() + static_cast<std::ptrdiff_t>(done),
                  channel.begin() + static_cast<std::ptrdiff_t>(frames), 0.0F);
    fSilenceFed += frames - done;
}

// What was silence until now, behind the end, is no part of the time that is shown.
void PlaybackCore::GoOnFrom(std::size_t frame) noexcept {
    if (frame == fFed && fSilenceFed == 0) return;
    fOrigin = fFed = frame;
    fSilenceFed = 0;
}

std::size_t PlaybackCore::FetchFromSound(std::size_t offset, std::size_t frames, std::size_t end) noexcept {
    const std::size_t count = std::min(frames, end - fFed);
    fMissing += fFeed->Fetch(fFed, fInput, offset, count);
    fFed += count;
    return count;
}

void PlaybackCore::DelayInput(std::size_t frames) noexcept {
    if (fLatency == 0) return;
    for (std::size_t channel = 0; channel < fInput.size(); ++channel) {
        std::size_t position = fDelayPosition;
        for (std::size_t i = 0; i < frames; ++i) {
            std::swap(fInput[channel][i], fDelay[channel][position]);
            if (++position == fLatency) position = 0;
        }
    }
    fDelayPosition = (fDelayPosition + frames) % fLatency;
}

void PlaybackCore::Fade(std::size_t frames, float target) noexcept {
    float fade = fFade;
    for (auto& channel : fOutput) {
        fade = fFade;
        for (std::size_t i = 0; i < frames; ++i) {
            fade = Approach(fade, target, fFadeStep);
            channel[i] = std::isfinite(channel[i]) ? channel[i] * fade : 0.0F;
        }
    }
    fFade = fade;
}

void PlaybackCore::WriteOut(float* interleaved, std::size_t frames, std::size_t channels) const noexcept {
    std::fill_n(interleaved, frames * channels, 0.0F);
    for (std::size_t output = 0; output < std::min(channels, fMatrix.Outputs()); ++output) {
        for (std::size_t channel = 0; channel < fOutput.size(); ++channel) {
            const float gain = fMatrix.Gain(output, channel);
            if (gain == 0) continue;
            for (std::size_t i = 0; i < frames; ++i)
                interleaved[i * channels + output] += gain * fOutput[channel][i];
        }
    }
}

bool PlaybackCore::FinishFade(const PlaybackRequest& request) noexcept {
    fHasSought = request.seek.has_value();
    if (fHasSought) {
        JumpTo(*request.seek);
        if (!request.stop) return true;
    } else {
        JumpTo(HasSoundEnded(request.range) ? BeginOf(request.range, Frames()) : Position());
    }
    return false;
}

} // namespace qohost
