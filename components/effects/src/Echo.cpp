#include "qoc/components/Echo.h"

#include "qoc/components/ComponentIDs.h"
#include "qoc/components/ParameterIndices.h"
#include "qoc/dsp/math/Decibels.h"
#include "qoc/dsp/stream/ChannelSide.h"
#include "qoc/dsp/stream/SaneSample.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace qoc::components {

namespace {

constexpr float kLongestTime = 10000; // milliseconds
constexpr float kMostChannels = Echo::kMaximumChannels;
constexpr float kMostDamping = 15; // decibels a repeat

constexpr const char* kTimeUnits[] = {
    "$$$/Echo/Milliseconds=Milliseconds",
    "$$$/Echo/Beats=Beats",
    "$$$/Echo/Samples=Samples",
};

constexpr ParameterRow TimeRow(int index, const char* id, const char* name, float defaultValue) {
    return {.index = index, .id = id, .name = name, .unit = "ms", .hi = kLongestTime, .defaultValue = defaultValue};
}

constexpr ParameterRow PercentRow(int index, const char* id, const char* name, float defaultValue) {
    return {
        .index = index, .id = id, .name = name, .unit = "%", .hi = 100, .defaultValue = defaultValue, .decimals = 1};
}

constexpr ParameterRow kRows[] = {
    TimeRow(kEchoLeftTime, "leftDelay", "$$$/Echo/LeftTime=Left Delay Time", 500),
    PercentRow(kEchoLeftFeedback, "leftFeedback", "$$$/Echo/LeftFeedback=Left Feedback", 40),
    PercentRow(kEchoLeftLevel, "leftLevel", "$$$/Echo/LeftLevel=Left Echo Level", 40),
    TimeRow(kEchoRightTime, "rightDelay", "$$$/Echo/RightTime=Right Delay Time", 500),
    PercentRow(kEchoRightFeedback, "rightFeedback", "$$$/Echo/RightFeedback=Right Feedback", 40),
    PercentRow(kEchoRightLevel, "rightLevel", "$$$/Echo/RightLevel=Right Echo Level", 40),
    {.index = kEchoLock, .id = "lock", .name = "$$$/Echo/Lock=Lock Left & Right", .kind = ParameterKind::kSwitch},
    {.index = kEchoBounce, .id = "bounce", .name = "$$$/Echo/Bounce=Echo Bounce", .kind = ParameterKind::kSwitch},
    {.index = kEchoTimeUnit,
     .id = "timeUnit",
     .name = "$$$/Echo/TimeUnit=Delay Time Units",
     .hi = 2,
     .kind = ParameterKind::kChoice,
     .flags = kParameterNotAutomatable,
     .items = kTimeUnits},
};

constexpr ParameterRow kBandRows[] = {
    {.index = kEchoFirstBand,
     .id = "band",
     .name = "$$$/Echo/Band=Gain of Band @0",
     .unit = "dB",
     .lo = -kMostDamping,
     .hi = 0,
     .defaultValue = 0,
     .decimals = 1},
};

constexpr ParameterRow kToldRows[] = {
    {.index = kEchoChannelCount,
     .id = "channels",
     .name = "$$$/Echo/Channels=Channels",
     .hi = kMostChannels,
     .defaultValue = 2,
     .decimals = 0,
     .flags = kParameterNotAutomatable | kParameterReadOnly},
};

constexpr int kPasses = 4; // of the equaliser's solver

// Of a side's parameters, after its first.
constexpr int kTime = kEchoLeftTime - kEchoLeftTime;
constexpr int kFeedback = kEchoLeftFeedback - kEchoLeftTime;
constexpr int kLevel = kEchoLeftLevel - kEchoLeftTime;

} // namespace

Echo::Echo()
    : ComponentBase(
          kEchoComponentID,
          std::move(ParameterTable().Add(kRows).AddRepeated(kBandRows, static_cast<int>(kBands)).Add(kToldRows))) {
    Redesign();
}

Echo::~Echo() = default;

std::span<const double, Echo::kBands> Echo::Centres() {
    static constexpr std::array<double, kBands> kCentres = {125, 250, 500, 1000, 2000, 4000, 8000, 16000};
    return kCentres;
}

std::size_t Echo::Tail() const noexcept {
    constexpr double kDecayed = 1e-5; // 100 dB
    constexpr double kLongest = 600;  // seconds
    double longest = 0;
    double feedback = kDecayed;
    for (const Channel& channel : fChannels) {
        const int first = FirstParameter(channel.isRight);
        longest = std::max(longest, static_cast<double>(DelayInSamples(first + kTime)));
        feedback = std::max(feedback, FractionOfPercent(Natural(first + kFeedback)));
    }
    const double most = kLongest * GetSampleRate();
    // Each time around the equaliser rings.
    longest += BiquadCoefficients::DecaySamples(fDesigned.sections, kDecayed);
    const double repeats = feedback < 1 ? std::ceil(std::log(kDecayed) / std::log(feedback)) : most;
    return static_cast<std::size_t>(std::min(most, std::ceil((1 + repeats) * longest)));
}

void Echo::OnParametersChanged(ParameterIndices changed) {
    const auto isBand = [](int index) {
        return index >= kEchoFirstBand && index < kEchoFirstBand + static_cast<int>(kBands);
    };
    if (std::ranges::none_of(changed, isBand)) return;
    Redesign();
    const bool isPrepared = fTarget != nullptr;
    if (isPrepared) fHandOver.Offer(std::make_unique<Equaliser>(fDesigned));
}

void Echo::PrepareProcessing(std::size_t /*maximumBlock*/) {
    const double rate = GetSampleRate();
    StoreParameter(kEchoChannelCount, static_cast<float>(GetNumberOfInputChannels()) / kMostChannels);
    fHandOver.Clear();
    fDesign.reset();
    Redesign();
    fTarget = std::make_unique<Equaliser>(fDesigned);
    fEqualiserGain.Prepare(rate);
    fBounce.Prepare(rate);
    const kromediatypes::AudioChannelLayout& layout = GetInputBuses().front().GetLayout();
    const std::vector<std::size_t> mirrors = MirrorsOf(layout);
    fEqualiser.Prepare(rate, layout.size(), kBands);
    fChannels.assign(layout.size(), {});
    for (std::size_t i = 0; i < fChannels.size(); ++i) {
        Channel& channel = fChannels[i];
        channel.isRight = SideOf(layout[i]) == ChannelSide::kRight;
        channel.mirror = mirrors[i];
        channel.line.Prepare(static_cast<std::size_t>(std::ceil(SecondsOfMilliseconds(kLongestTime) * rate)));
        channel.tap.Prepare(rate);
        channel.feedback.Prepare(rate);
        channel.level.Prepare(rate);
    }
}

void Echo::ResetProcessing() noexcept {
    TakeEqualiser(true);
    fEqualiser.Reset();
    for (Channel& channel : fChannels)
        channel.line.Reset();
}

void Echo::ReadParameters(bool settle) noexcept {
    for (Channel& channel : fChannels) {
        const int first = FirstParameter(channel.isRight);
        // The line is read before the present sample is written, when the newest one is one sample old.
        channel.tap.Set(DelayInSamples(first + kTime) - 1, settle);
        channel.feedback.Set(FractionOfPercent(Natural(first + kFeedback)), settle);
        channel.level.Set(FractionOfPercent(Natural(first + kLevel)), settle);
    }
    fBounce.Set(IsOn(kEchoBounce) ? 1 : 0, settle);
}

void Echo::ProcessBlock(const kroaudiofilterhost::AudioFilterBlock& block) noexcept {
    TakeEqualiser(false);
    for (std::size_t begin = 0, count = 0; begin < block.frames; begin += count) {
        count = std::min(block.frames - begin, RowLength());
        ProcessRow(block, begin, count);
    }
}

void Echo::Redesign() {
    if (fDesign == nullptr) fDesign = std::make_unique<GraphicEQDesign>(Centres(), GetSampleRate());
    std::array<double, kBands> gains;
    for (std::size_t i = 0; i < kBands; ++i) {
        gains[i] = ZeroIfNear(Natural(kEchoFirstBand + static_cast<int>(i)));
    }
    const std::vector<BiquadCoefficients> sections = fDesign->Solve(gains, kPasses);
    std::ranges::copy(sections, fDesigned.sections.begin());
    const bool isFlat = std::ranges::all_of(sections, &BiquadCoefficients::IsNeutral);
    fDesigned.gain = isFlat ? 1 : std::min(1.0, 1 / HighestGain(sections));
}

// Between its centres the response of one band may rise above what its neighbours are set to, by little. Looked for at
// places near enough to each other that what lies between them is within the margin.
double Echo::HighestGain(std::span<const BiquadCoefficients> sections) const {
    constexpr double kMargin = 1.0003; // 0.003 dB
    constexpr double kPlacesAnOctave = 48;
    constexpr double kLowest = 10; // hertz
    const double ratio = std::exp2(1 / kPlacesAnOctave);
    const double nyquist = GetSampleRate() / 2;
    double highest = 0;
    for (double hertz = kLowest; hertz < nyquist * ratio; hertz *= ratio) {
        const ResponsePoint point(GetSampleRate(), std::min(hertz, nyquist));
        highest = std::max(highest, BiquadCoefficients::MagnitudeSquared(sections, point));
    }
    return std::sqrt(highest) * kMargin;
}

int Echo::FirstParameter(bool isRight) const noexcept {
    return isRight && !IsOn(kEchoLock) ? kEchoRightTime : kEchoLeftTime;
}

// An echo comes after its sound.
std::size_t Echo::DelayInSamples(int timeParameter) const noexcept {
    const long long samples = std::llround(SecondsOfMilliseconds(Natural(timeParameter)) * GetSampleRate());
    return static_cast<std::size_t>(std::max(1LL, samples));
}

void Echo::TakeEqualiser(bool settle) noexcept {
    auto offered = fHandOver.Take();
    if (offered == nullptr && !settle) return;
    if (offered != nullptr) fHandOver.GiveBack(std::exchange(fTarget, std::move(offered)));
    fEqualiser.Set(fTarget->sections, settle);
    fEqualiserGain.Set(fTarget->gain, settle);
}

// So many samples that none is an echo of another of them, and one while the equaliser glides.
std::size_t Echo::RowLength() const noexcept {
    if (!fEqualiser.IsSettled()) return 1;
    std::size_t length = kMost;
    for (const Channel& channel : fChannels)
        length = std::min(length, channel.tap.LeastAhead() + 1);
    return length;
}

void Echo::ProcessRow(const kroaudiofilterhost::AudioFilterBlock& block, std::size_t begin,
                      std::size_t count) noexcept {
    Row gain;
    Row bounce;
    Row level;
    fEqualiser.Advance();
    fEqualiserGain.Next(std::span(gain).first(count));
    fBounce.Next(std::span(bounce).first(count));
    for (std::size_t i = 0; i < fChannels.size(); ++i)
        Hear(i, block.inputs[i] + begin, std::span(gain).first(count));
    for (Channel& channel : fChannels)
        FeedBack(channel, std::span(bounce).first(count));
    for (std::size_t i = 0; i < fChannels.size(); ++i) {
        Channel& channel = fChannels[i];
        channel.level.Next(std::span(level).first(count));
        float* const output = block.outputs[i] + begin;
        for (std::size_t k = 0; k < count; ++k)
            output[k] = channel.input[k] + level[k] * channel.echo[k];
    }
}

// Into the rows of a channel.
void Echo::Hear(std::size_t index, const float* input, std::span<const float> gain) noexcept {
    Channel& channel = fChannels[index];
    const std::size_t count = gain.size();
    std::transform(input, input + count, channel.input.begin(), SaneSample);
    channel.tap.Read(channel.line, 0, std::span(channel.echo).first(count));
    if (!fEqualiser.IsNeutral()) {
        for (std::size_t k = 0; k < count; ++k)
            channel.echo[k] = static_cast<float>(fEqualiser.Process(index, channel.echo[k]));
    }
    for (std::size_t k = 0; k < count; ++k)
        channel.echo[k] *= gain[k];
    channel.feedback.Next(std::span(channel.fedBack).first(count));
    for (std::size_t k = 0; k < count; ++k)
        channel.fedBack[k] *= channel.echo[k];
}

void Echo::FeedBack(Channel& channel, std::span<const float> bounce) noexcept {
    const Channel& mirror = fChannels[channel.mirror];
    Row sound;
    for (std::size_t k = 0; k < bounce.size(); ++k) {
        // The first echo of what bounces comes from the left, whichever side it was on.
        const float first = channel.isRight ? 0 : (channel.input[k] + mirror.input[k]) / 2;
        const float straight = channel.input[k] + channel.fedBack[k];
        sound[k] = straight + bounce[k] * (first + mirror.fedBack[k] - straight);
    }
    channel.line.Write(std::span(sound).first(bounce.size()));
}

} // namespace qoc::components
