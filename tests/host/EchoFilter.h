#pragma once

#include "kroaudiofilterhost/AudioFilter.h"

#include <algorithm>
#include <atomic>
#include <vector>

// A filter for tests: the sound comes out `latency` samples late, and once more at half level kEcho samples later.
class EchoFilter final : public kroaudiofilterhost::AudioFilter {
public:
    static constexpr std::size_t kEcho = 50;

    explicit EchoFilter(std::size_t latency, int parameters = 4)
        : AudioFilter(static_cast<std::size_t>(parameters)), fLatency(latency) {}

    krocore::string16 GetComponentID() const override { return u"test.Echo"; }
    void OnProcess(const kroaudiofilterhost::AudioFilterBlock& block) noexcept override {
        for (std::size_t i = 0; i < block.frames; ++i, ++fClock) {
            for (std::size_t channel = 0; channel < block.outputs.size(); ++channel) {
                auto& ring = fPast[channel];
                ring[fClock % ring.size()] = block.inputs[channel][i];
                block.outputs[channel][i] = ring[(fClock + ring.size() - fLatency) % ring.size()] +
                                            0.5F * ring[(fClock + ring.size() - fLatency - kEcho) % ring.size()];
            }
        }
    }
    void OnReset() noexcept override {
        for (auto& ring : fPast)
            std::ranges::fill(ring, 0.0F);
    }
    std::size_t Latency() const noexcept override { return fLatency; }
    std::size_t Tail() const noexcept override { return kEcho; }

protected:
    void OnPrepare(std::size_t /*maximumBlock*/) override {
        fPast.assign(GetNumberOfInputChannels(), std::vector<float>(fLatency + kEcho + 1));
    }

private:
    std::size_t fLatency;
    std::size_t fClock = 0;
    std::vector<std::vector<float>> fPast;
};
