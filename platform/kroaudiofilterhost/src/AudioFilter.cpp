#include "kroaudiofilterhost/AudioFilter.h"

#include "DryPath.h"
#include "krocore/Localizer.h"
#include "krocore/NumberFormat.h"
#include "krocore/config/Error.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>
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
      fAutomated(std::make_unique<std::atomic<bool>[]>(parameterCapacity)),
      fDryPath(std::make_unique<DryPath>()), fInputBuses{AudioFilterBusDescription(
                                                 kromediatypes::AudioChannelLayout::Stereo())},
      fOutputBuses(fInputBuses) {
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
    const auto changes = StoreTogether(values);
    TellOf(changes);
    std::vector<int> indices;
    std::ranges::transform(changes, std::back_inserter(indices), &AudioFilterParameterChange::index);
    if (!indices.empty()) TakeOver(indices);
    EndParameterEdit(kAllParameters);
}

void AudioFilter::Automate(int index, float value) noexcept {
    if (!CanStore(index, value)) return;
    const AudioFilterParameterInfo* info = GetParameterInfo(index);
    if (info != nullptr && !info->IsAutomatable()) return;
    const auto at = static_cast<std::size_t>(index);
    if (StoredParameter(at) == value) return;
    StoreParameter(index, value);
    fAutomated[at].store(true, std::memory_order_release);
    fIsAnyAutomated.store(true, std::memory_order_release);
}

bool AudioFilter::ServeAutomation() {
    if (!fIsAnyAutomated.exchange(false, std::memory_order_acq_rel)) return false;
    std::vector<int> indices;
    for (int index = 0; index < GetParameterCount(); ++index) {
        // What is automated from here on is served the next time.
        if (fAutomated[static_cast<std::size_t>(index)].exchange(false, std::memory_order_acq_rel))
            indices.push_back(index);
    }
    if (!indices.empty()) TakeOver(indices);
    return true;
}

AudioFilterCurvePoints AudioFilter::GetCurve(std::size_t curve) const {
    const AudioFilterCurve& drawn = GetCurves()[curve];
    const auto natural = [this](int index) {
        return GetParameterInfo(index)->ToNatural(StoredParameter(static_cast<std::size_t>(index)));
    };
    AudioFilterCurvePoints points;
    const int count = std::min(static_cast<int>(CountCurvePoints(drawn)), drawn.mostPoints);
    for (int point = 0; point < count; ++point)
        points.push_back({natural(drawn.IndexOfX(point)), natural(drawn.IndexOfY(point))});
    return points;
}

bool AudioFilter::SetCurve(std::size_t curve, std::span<const AudioFilterCurvePoint> points) {
    const auto settings = SettingsForCurve(curve, points);
    if (settings) SetParameterValues(*settings);
    return settings.has_value();
}

// Nothing where SetCurve refuses.
std::optional<std::vector<AudioFilterParameterValue>>
AudioFilter::SettingsForCurve(std::size_t curve, std::span<const AudioFilterCurvePoint> points) const {
    const AudioFilterCurve& drawn = GetCurves()[curve];
    const auto isPossible = [](const AudioFilterCurvePoint& point) {
        return std::isfinite(point.x) && std::isfinite(point.y);
    };
    const int count = static_cast<int>(std::min<std::size_t>(points.size(), std::numeric_limits<int>::max()));
    if (count > drawn.mostPoints || !std::ranges::all_of(points, isPossible)) return {};
    std::vector<AudioFilterParameterValue> settings;
    const auto add = [&](int index, float natural) {
        settings.push_back({index, GetParameterInfo(index)->ToNormalised(natural)});
    };
    add(drawn.countIndex, static_cast<float>(count));
    for (int point = 0; point < count; ++point) {
        add(drawn.IndexOfX(point), points[static_cast<std::size_t>(point)].x);
        add(drawn.IndexOfY(point), points[static_cast<std::size_t>(point)].y);
    }
    return settings;
}

std::size_t AudioFilter::CountCurvePoints(const AudioFilterCurve& curve) const {
    const float stored = StoredParameter(static_cast<std::size_t>(curve.countIndex));
    const float natural = GetParameterInfo(curve.countIndex)->ToNatural(stored);
    return static_cast<std::size_t>(std::clamp(std::round(natural), 0.0F, static_cast<float>(curve.mostPoints)));
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
    maximumBlock = std::max<std::size_t>(maximumBlock, 1);
    OnSampleRateChanged();
    OnPrepare(maximumBlock);
    fDryPath->Prepare({layout.size(), maximumBlock, Latency(), sampleRate}, IsBypassed());
    fHasBeenPrepared = true;
    fNeedsPrepare = false;
}

void AudioFilter::SetSampleRate(float hertz) {
    if (fHasBeenPrepared) return;
    CheckSampleRate(hertz);
    fSampleRate = hertz;
    OnSampleRateChanged();
}

void AudioFilter::Process(const AudioFilterBlock& block) noexcept {
    const bool isBypassed = IsBypassed();
    OnProcess(fDryPath->Begin(block, isBypassed));
    fDryPath->End(block, isBypassed);
}

void AudioFilter::Reset() noexcept {
    OnReset();
    fDryPath->Reset(IsBypassed());
}

kromediatypes::AudioChannelLayout AudioFilter::OutputLayoutFor(const kromediatypes::AudioChannelLayout& input) const {
    return input;
}

void AudioFilter::OnPrepare(std::size_t /*maximumBlock*/) {
}

void AudioFilter::OnListen(std::span<const float* const> /*inputs*/, std::size_t /*frames*/) {
}

void AudioFilter::OnParametersChanged(ParameterIndices /*changed*/) {
}

void AudioFilter::MirrorParameter(int index, float value) {
    if (IsParameter(index) && std::isfinite(value)) StoreParameter(index, value);
}

void AudioFilter::StoreParameter(int index, float value) noexcept {
    fValues[static_cast<std::size_t>(index)].store(value, std::memory_order_relaxed);
    fDirtyCount.fetch_add(1, std::memory_order_release);
}

void AudioFilter::ChangeParameter(int index, float value, bool quiet) {
    const auto change = StoreChange(index, value, quiet);
    if (!change) return;
    TellOf({&*change, 1});
    TakeOver({&index, 1});
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

bool AudioFilter::CanStore(int index, float value) const noexcept {
    if (!IsParameter(index) || !std::isfinite(value)) return false;
    const AudioFilterParameterInfo* info = GetParameterInfo(index);
    return info == nullptr || !info->IsReadOnly();
}

// Nothing for what is refused and for what is so already.
std::optional<AudioFilterParameterChange> AudioFilter::StoreChange(int index, float value, bool quiet) {
    if (!CanStore(index, value)) return {};
    const float oldValue = StoredParameter(static_cast<std::size_t>(index));
    if (oldValue == value) return {};
    StoreParameter(index, value);
    return AudioFilterParameterChange{index, oldValue, value, quiet};
}

void AudioFilter::TellOf(std::span<const AudioFilterParameterChange> changes) {
    for (const AudioFilterParameterChange& change : changes)
        TellListeners([&](AudioFilterListener& listener) { listener.ParameterChanged(*this, change); });
}

void AudioFilter::TakeOver(ParameterIndices changed) {
    OnParametersChanged(changed);
    const bool waits = fHasBeenPrepared && std::ranges::any_of(changed, [this](int index) {
                           const AudioFilterParameterInfo* info = GetParameterInfo(index);
                           return info != nullptr && info->NeedsPrepare();
                       });
    if (!waits) return;
    fNeedsPrepare = true;
    TellListeners([this](AudioFilterListener& listener) { listener.PrepareNeeded(*this); });
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
