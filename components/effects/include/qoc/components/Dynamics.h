#pragma once

#include "qoc/components/ComponentBase.h"
#include "qoc/dsp/delay/RowDelay.h"
#include "qoc/dsp/dynamics/LevelDetector.h"
#include "qoc/dsp/dynamics/TransferCurve.h"
#include "qoc/dsp/filters/BandLimit.h"
#include "qoc/dsp/stream/SmoothedValue.h"

#include <array>
#include <span>
#include <vector>

namespace qoc::components {

// Compressor, expander, limiter and gate in one: a curve of up to six points says which level goes out for a level that
// comes in. A detector measures the level; the curve's gain, in decibels, goes down with the attack's time constant
// and, after the hold, up with the release's. With a look-ahead the sound comes later by it, so that the gain moves
// before what moves it; the look-ahead holds from one Prepare to the next. With a limited band the detector hears only
// the band, and only the band's gain changes. With a 1:1 curve and no make-up gain the sound comes out bit by bit.
//
// Response curve 0: the levels that go out for levels from -100 to 0 dB, without make-up gain.
class Dynamics : public ComponentBase {
public:
    static constexpr double kLowestLevel = -TransferCurve::kAxisLength; // decibels, of the curve

    Dynamics();

    std::size_t Latency() const noexcept override { return fLatency; }
    // Until the filters of a limited band have decayed by 100 dB.
    std::size_t Tail() const noexcept override;
    bool GetResponseCurve(int index, std::size_t size, std::vector<float>& values) const override;

protected:
    ~Dynamics() override;

    void PrepareProcessing(std::size_t maximumBlock) override;
    void ResetProcessing() noexcept override;
    void ReadParameters(bool settle) noexcept override;
    void ProcessBlock(const kroaudiofilterhost::AudioFilterBlock& block) noexcept override;

private:
    // So many samples are processed at once.
    static constexpr std::size_t kMost = 64;
    using Row = std::array<float, kMost>;
    using FineRow = std::array<double, kMost>;

    // The way from the level to the gain, of one channel or of all.
    struct Follower {
        LevelDetector detector;
        double gain = 0; // decibels
        std::size_t held = 0;
        double level = 0;   // of the last sample, decibels
        double target = 0;  // that it had the gain go to, decibels
        SmoothedValue step; // what is left of the way from an earlier curve to the present one, decibels
        FineRow gains{};    // of the present row: powers, which become levels, gains and factors

        void Reset() noexcept;
    };
    struct Channel {
        RowDelay soundLater;
        RowDelay bandLater;
        Row sound{}; // of the present row: what came in, and what of it the detector hears
        Row band{};
    };

    BandLimit::Settings BandOfParameters() const noexcept;
    TransferCurve Curve() const noexcept;
    double LimitedGain(double level) const noexcept;
    void GoOnFromEarlierCurve(bool settle) noexcept;
    double SamplesOf(int timeParameter) const noexcept;
    bool IsTogether() const noexcept;

    void ProcessRow(const kroaudiofilterhost::AudioFilterBlock& block, std::size_t begin, std::size_t count) noexcept;
    void Take(std::size_t channel, const float* input, std::size_t count) noexcept;
    void TakeTogether(std::size_t count) noexcept;
    void MakeFactors(Follower& follower, std::size_t count) const noexcept;
    void FindTargets(Follower& follower, std::span<double> levels) const noexcept;
    void Follow(Follower& follower, std::span<double> targets) const noexcept;
    void Give(std::size_t channel, float* output, std::size_t count) noexcept;

    std::vector<Channel> fChannels;
    std::vector<Follower> fFollowers; // one a channel; the first alone when they are taken together
    std::size_t fLatency = 0;

    TransferCurve fCurve;
    double fRange = 0;
    LevelDetector::Settings fDetector;
    int fDetectorChannels = 0;
    double fAttack = 0; // what remains after a sample
    double fRelease = 0;
    std::size_t fHold = 0; // samples
    BandLimit fBand;
    SmoothedValue fDetectorGain;
    SmoothedValue fMakeUp; // decibels
    SmoothedValue fMix;
    SmoothedValue fListen;
    // Theirs in the present row.
    Row fDetectorGains{};
    Row fMakeUps{};
    Row fMixes{};
    Row fListens{};
};

} // namespace qoc::components
