#pragma once

#include "MeasureSound.h"
#include "qoc/components/EffectCatalogue.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>

// What every effect promises is tested on all that the catalogue has, so that a new one is tested with them.
namespace test {

inline constexpr std::size_t kLargestBlock = 8192;

struct Format {
    float rate; // hertz
    std::size_t channels;
};

using MadeEffect = boost::intrusive_ptr<kroaudiofilterhost::AudioFilter>;
using Settings = std::vector<float>; // stored values by index, told ones too

// Calls for every effect that can process.
inline void ForEveryEffect(const std::function<void(const qoc::components::EffectDescription&)>& test) {
    for (const qoc::components::EffectDescription& effect : qoc::components::AllEffects()) {
        if (effect.create == nullptr) continue;
        SCOPED_TRACE(std::string(effect.shortName));
        test(effect);
    }
}

// `duration` in samples.
inline void Prepare(kroaudiofilterhost::AudioFilter& filter, const Format& format, double duration = 200000) {
    filter.SetDuration(duration);
    filter.Prepare(format.rate, kLargestBlock, kromediatypes::AudioChannelLayout::ForChannelCount(format.channels));
}

inline Settings SettingsOf(const kroaudiofilterhost::AudioFilter& filter) {
    Settings settings;
    for (int index = 0; index < filter.GetParameterCount(); ++index)
        settings.push_back(filter.GetParameterValue(index));
    return settings;
}

inline void Apply(kroaudiofilterhost::AudioFilter& filter, const Settings& settings) {
    for (std::size_t index = 0; index < settings.size(); ++index)
        filter.SetParameterValue(static_cast<int>(index), settings[index]);
}

inline MadeEffect Prepared(const qoc::components::EffectDescription& effect, const Format& format,
                           const Settings& settings = {}) {
    MadeEffect filter = effect.create();
    Prepare(*filter, format);
    if (settings.empty()) return filter;
    Apply(*filter, settings);
    Prepare(*filter, format);
    return filter;
}

// Sets about a third of the parameters anywhere.
inline void Shuffle(kroaudiofilterhost::AudioFilter& filter, unsigned seed) {
    std::mt19937 generator(seed);
    std::uniform_real_distribution<float> value(0, 1);
    for (int index = 0; index < filter.GetParameterCount(); ++index) {
        if (filter.GetParameterInfo(index) != nullptr && value(generator) < 0.34F)
            filter.SetParameterValue(index, value(generator));
    }
}

// Something of all that effects look for: a note with overtones, clicks and noise, clipped at another level for every
// seed, and too loud at its end, so that it ends amidst whatever is done about that.
inline Channels BusySound(std::size_t channels, std::size_t frames, double rate, unsigned seed) {
    constexpr std::size_t kLoudEnd = 50;
    const float clipping = 0.7F - 0.1F * static_cast<float>(seed % 3);
    constexpr std::size_t kSwell = 5000;
    constexpr std::size_t kClickEvery = 1234;
    Channels sound = NoiseChannels(channels, frames, seed, 0.01F);
    for (std::size_t channel = 0; channel < channels; ++channel) {
        const std::vector<float> note = Sine(225 + 3.0 * static_cast<double>(channel), frames, rate, 1);
        const std::vector<float> overtone = Sine(450, frames, rate, 0.5);
        for (std::size_t i = 0; i < frames; ++i) {
            const float swell = 0.2F + 0.6F * static_cast<float>(i % kSwell) / kSwell;
            const float click = i % kClickEvery == kClickEvery / 2 ? 0.4F : 0.0F;
            const float whole = sound[channel][i] + swell * (note[i] + overtone[i]) + click;
            sound[channel][i] = i + kLoudEnd < frames ? std::clamp(whole, -clipping, clipping) : 4 * whole;
        }
    }
    return sound;
}

// Two low tones a channel, faded in, so that anything abrupt stands out.
inline Channels SmoothSound(std::size_t channels, std::size_t frames, double rate) {
    constexpr float kFadeIn = 3000;
    Channels sound;
    for (std::size_t channel = 0; channel < channels; ++channel) {
        const double detune = 20.0 * static_cast<double>(channel);
        std::vector<float>& tones = sound.emplace_back(Sine(110 + detune, frames, rate));
        const std::vector<float> second = Sine(170 - detune, frames, rate, 0.2);
        for (std::size_t i = 0; i < frames; ++i)
            tones[i] = (tones[i] + second[i]) * std::min(1.0F, static_cast<float>(i) / kFadeIn);
    }
    return sound;
}

// The largest absolute value of all channels from `begin` on.
inline double Peak(const Channels& sound, std::size_t begin = 0) {
    float largest = 0;
    for (const auto& channel : sound) {
        for (std::size_t i = begin; i < channel.size(); ++i)
            largest = std::max(largest, std::abs(channel[i]));
    }
    return largest;
}

// The largest difference from `begin` on.
inline double Difference(const Channels& one, const Channels& other, std::size_t begin = 0) {
    float largest = 0;
    for (std::size_t channel = 0; channel < one.size(); ++channel) {
        for (std::size_t i = begin; i < one[channel].size(); ++i)
            largest = std::max(largest, std::abs(one[channel][i] - other[channel][i]));
    }
    return largest;
}

} // namespace test
