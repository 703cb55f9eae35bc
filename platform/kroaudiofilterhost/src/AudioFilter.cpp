#include "kroaudiofilterhost/AudioFilter.h"

#include "krocore/Localizer.h"
#include "krocore/NumberFormat.h"
#include "krocore/config/Error.h"

#include <algorithm>
#include <cmath>
#include <thread>
#include <utility>

namespace kroaudiofilterhost {

namespace {

constexpr float kLowestSampleRate = 1000.0F;
constexpr float kHighestSampleRate = 1000000.0F;

[[noreturn]] void Refuse(const char* key, double value) {
    const krocore::string16 number = krocore::FormatNumber(value, 2, krocore::kFormatNoTrailingZeros);
    throw krocore::config::Error(krocore::ToStdString(krocore::ReplacePlaceholders(krocore::Localize(key), {number})));
}

void CheckChannels(const kromediatypes::AudioChannelLayout& layout) {
    if (!layout.empty() && layout.size() <= AudioFilter::kMaximumChannels) return;
    Refuse("$$$/kroaudiofilterhost/Error/Channels=An effect works on 1 to 32 channels, not on @0.",
           static_cast<double>(layout.size()));
}

void CheckSampleRate(float sampleRate) {
    if (sampleRate >= kLowestSampleRate && sampleRate <= kHighestSampleRate) return;
    Refuse("$$$/kroaudiofilterhost/Error/SampleRate=An effect can't work at a sample rate of @0 Hz.", sampleRate);
}

} // namespace

// While one lives, listeners that are removed leave a gap instead of moving the others.
class AudioFilter::TellingScope {
public:
    explicit TellingScope(AudioFilter& filter) : fFilter(filter) { ++fFilter.fTelling; }
    TellingScope(const TellingScope&) = delete;
    TellingScope& operator=(const TellingScope&) = delete;
    ~TellingScope() {
        if (--fFilter.fTelling == 0) std::erase(fFilter.fListeners, nullptr);
    }

private:
    AudioFilter& fFilter;
};

AudioFilter::AudioFilter(std::size_t parameterCapacity)
    : fParameterCapacity(parameterCapacity), fValues(std::make_unique<std::atomic<float>[]>(parameterCapacity)),
      fInputBuses{AudioFilterBusDescription(kromediatypes::AudioChannelLayout::Stereo())}, fOutputBuses(fInputBuses) {
}

AudioFilter::~AudioFilter() = default;

const AudioFilterParameterInfo* AudioFilter::GetParameterInfo(int /*index*/) const {
    return nullptr;
}

float AudioFilter::GetParameterValue(int index) const {
    return IsParameter(index) ? StoredParameter(static_cast<std::size_t>(index)) : 0.0F;
}

void AudioFilter::SetParameterValue(int index, float value) {
    ChangeParameter(index, value, false);
}

void AudioFilter::SetParameterValueQuietly(int index, float value) {
    ChangeParameter(index, value, true);
}

void AudioFilter::SetParameterValues(std::span<const AudioFilterParameterValue> values) {
    BeginParameterEdit(kAllParameters);
    TellOf(StoreTogether(values));
    EndParameterEdit(kAllParameters);
}

void AudioFilter::BeginParameterEdit(int index) {
    if (!IsParameter(index) && index != kAllParameters) return;
    TellListeners([&](AudioFilterListener& listener) { listener.ParameterEditBegun(*this, index); });
}

void AudioFilter::EndParameterEdit(int index) {
    if (!IsParameter(index) && index != kAllParameters) return;
    TellListeners([&](AudioFilterListener& listener) { listener.ParameterEditEnded(*this, index); });
}

std::int32_t AudioFilter::GetParameterDirtyCount() const noexcept {
    return static_cast<std::int32_t>(fDirtyCount.load(std::memory_order_acquire));
}

void AudioFilter::AddListener(AudioFilterListener& listener) {
    fListeners.push_back(&listener);
}

void AudioFilter::RemoveListener(AudioFilterListener& listener) {
    if (fTelling == 0) {
        std::erase(fListeners, &listener);
    } else {
        std::ranges::replace(fListeners, &listener, nullptr);
    }
}

bool AudioFilter::GetMagnitudeResponse(std::size_t /*count*/, const FrequencyAxis& /*axis*/,
                                       std::vector<float>& /*decibels*/) const {
    return false;
}

bool AudioFilter::GetResponseCurve(int /*index*/, std::size_t /*size*/, std::vector<float>& /*values*/) const {
    return false;
}

void AudioFilter::Prepare(float sampleRate, std::size_t maximumBlock, const kromediatypes::AudioChannelLayout& layout) {
    CheckChannels(layout);
    CheckSampleRate(sampleRate);
    kromediatypes::AudioChannelLayout output = OutputLayoutFor(layout);
    CheckChannels(output);
    fInputBuses.front() = AudioFilterBusDescription(layout);
    fOutputBuses.front() = AudioFilterBusDescription(std::move(output));
    fSampleRate = sampleRate;
    OnPrepare(std::max<std::size_t>(maximumBlock, 1));
}

kromediatypes::AudioChannelLayout AudioFilter::OutputLayoutFor(const kromediatypes::AudioChannelLayout& input) const {
    return input;
}

void AudioFilter::OnPrepare(std::size_t /*maximumBlock*/) {
}

void AudioFilter::OnParametersChanged(ParameterChanges /*changes*/) {
}

void AudioFilter::StoreParameter(int index, float value) noexcept {
    fValues[static_cast<std::size_t>(index)].store(value, std::memory_order_relaxed);
    fDirtyCount.fetch_add(1, std::memory_order_release);
}

void AudioFilter::ChangeParameter(int index, float value, bool quiet) {
    if (const auto change = StoreChange(index, value, quiet)) TellOf({&*change, 1});
}

std::vector<AudioFilterParameterChange> AudioFilter::StoreTogether(std::span<const AudioFilterParameterValue> values) {
    std::vector<AudioFilterParameterChange> changes;
    changes.reserve(values.size());
    while (!TryHoldParameters())
        std::this_thread::yield();
    for (const auto& [index, value] : values)
        if (const auto change = StoreChange(index, value, false)) changes.push_back(*change);
    ReleaseParameters();
    return changes;
}

// Nothing for what is refused and for what is so already.
std::optional<AudioFilterParameterChange> AudioFilter::StoreChange(int index, float value, bool quiet) {
    if (!IsParameter(index) || !std::isfinite(value)) return {};
    const AudioFilterParameterInfo* info = GetParameterInfo(index);
    if (info != nullptr && info->IsReadOnly()) return {};
    const float oldValue = StoredParameter(static_cast<std::size_t>(index));
    if (oldValue == value) return {};
    StoreParameter(index, value);
    return AudioFilterParameterChange{index, oldValue, value, quiet};
}

void AudioFilter::TellOf(ParameterChanges changes) {
    if (changes.empty()) return;
    for (const AudioFilterParameterChange& change : changes)
        TellListeners([&](AudioFilterListener& listener) { listener.ParameterChanged(*this, change); });
    OnParametersChanged(changes);
}

template <typename Call>
void AudioFilter::TellListeners(const Call& call) {
    const TellingScope scope(*this);
    // By index, and not beyond those who listened at the start: a listener may add and remove others.
    // NOLINTNEXTLINE(modernize-loop-convert)
    for (std::size_t i = 0, count = fListeners.size(); i < count; ++i) {
        if (fListeners[i] != nullptr) call(*fListeners[i]);
    }
}

} // namespace kroaudiofilterhost
