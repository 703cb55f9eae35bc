#pragma once

#include "kroaudiofilterhost/AudioFilterBusDescription.h"
#include "kroaudiofilterhost/AudioFilterCurve.h"
#include "kroaudiofilterhost/AudioFilterHost.h"
#include "kroaudiofilterhost/AudioFilterListener.h"
#include "kroaudiofilterhost/AudioFilterParameterInfo.h"
#include "kroaudiofilterhost/AudioFilterTransport.h"
#include "krocore/FrequencyAxis.h"
#include "krocore/String.h"
#include "krocore/utility/RefCountedObject.h"
#include "kromediatypes/AudioBlock.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace kroaudiofilterhost {

// The sound that one call of AudioFilter::Process works on, channels as the buses say.
using AudioFilterBlock = kromediatypes::AudioBlock;
using krocore::FrequencyAxis;

class DryPath;

// How much a filter may take for the same settings: no more than playing allows, or what the best result needs.
enum class AudioFilterQuality : std::uint8_t { kLive, kRender };

// What one parameter is to be.
struct AudioFilterParameterValue {
    int index = 0;
    float value = 0; // normalised
};

// One instance of an audio effect: numbered parameters, buses, and the processing. Shared by the engine that runs it
// and the panel that shows it.
//
// Threads: everything is for the user-interface thread except Process, Automate and SetTransport, which are for the
// sound thread, and the bypass and the reading of parameters, which are safe anywhere. Prepare, Reset and Listen are
// called while Process does not run.
class AudioFilter : public krocore::utility::RefCountedObject {
public:
    static constexpr int kAllParameters = -1; // index of a gesture that is about all parameters
    static constexpr std::size_t kMaximumChannels = 32;

    // Names the kind of effect: "qoc.Amplify".
    virtual krocore::string16 GetComponentID() const = 0;

    // Parameters. The stored value is normalised, nominally 0...1; a value outside is kept as it is (the processing
    // clamps). The count may change when the filter is prepared for another layout.
    virtual int GetParameterCount() const { return static_cast<int>(fParameterCapacity); }
    // Null for an index that is none, and for a filter that does not describe itself.
    virtual const AudioFilterParameterInfo* GetParameterInfo(int index) const;
    // 0 for an index that is none.
    virtual float GetParameterValue(int index) const;
    // A committed change, as from a user's edit. A value that is not finite, an index that is none and a read-only
    // parameter are refused: nothing changes. The value that is stored already changes nothing and tells nobody.
    virtual void SetParameterValue(int index, float value);
    // The same for a change that is not to be undone.
    virtual void SetParameterValueQuietly(int index, float value);
    // Commits many values as one change: a drawn curve with all its points, a preset, what undo brings back. All of
    // them are stored before a listener is told of the first, what is costly to make of them is made once, and the
    // sound goes from the old settings to the new ones without a mixture of both. A gesture about all parameters by
    // itself. Each value is refused on the terms of SetParameterValue; of an index that stands twice the last value
    // holds.
    virtual void SetParameterValues(std::span<const AudioFilterParameterValue> values);
    // Bracket a gesture, so that all it changes is undone at once. They nest and interleave freely. An index that is
    // neither a parameter nor kAllParameters is ignored.
    virtual void BeginParameterEdit(int index);
    virtual void EndParameterEdit(int index);
    // Changes a parameter while sound is processed, from the next block on: automation, a controller, a plug-in host's
    // port. Sound thread, between blocks; neither allocates nor locks nor calls the system. Refuses what
    // SetParameterValue refuses, and what can't be automated. It is no edit: listeners are not told, panels see it by
    // the dirty count.
    void Automate(int index, float value) noexcept;
    // Makes what is costly to make of automated parameters (a filter's design), as a setter does at once; until then
    // the sound goes on as it was designed before. To be called often by whoever may set parameters, from a panel's
    // timer, a worker or before each block of a render; an open panel does. False when nothing was automated.
    bool ServeAutomation();
    // Another number whenever any parameter has changed, by whomever. Wraps around.
    std::int32_t GetParameterDirtyCount() const noexcept;

    // The curves that a user draws, which are one value each although they are stored as parameters.
    virtual std::span<const AudioFilterCurve> GetCurves() const { return {}; }
    // The points in use, in natural values. `curve` is an index of GetCurves().
    AudioFilterCurvePoints GetCurve(std::size_t curve) const;
    // Commits all points as one change, see SetParameterValues; points that are not in use keep their values. False,
    // with nothing changed, for more points than there can be and for a value that is not finite.
    bool SetCurve(std::size_t curve, std::span<const AudioFilterCurvePoint> points);

    void AddListener(AudioFilterListener& listener);
    void RemoveListener(AudioFilterListener& listener);

    // Buses. Every filter has at least one of each; stereo until it is prepared.
    const std::vector<AudioFilterBusDescription>& GetInputBuses() const noexcept { return fInputBuses; }
    const std::vector<AudioFilterBusDescription>& GetOutputBuses() const noexcept { return fOutputBuses; }
    // Of the first bus.
    std::size_t GetNumberOfInputChannels() const noexcept { return fInputBuses.front().GetLayout().size(); }
    std::size_t GetNumberOfOutputChannels() const noexcept { return fOutputBuses.front().GetLayout().size(); }

    // Hertz; 44100 until the filter is told another or is prepared.
    virtual float GetSampleRate() const noexcept { return fSampleRate; }
    // Tells a filter that has not been prepared yet for which rate, in hertz, it is to describe its parameters: how far
    // frequencies go follows it. Without effect on a prepared one. Throws as Prepare does.
    void SetSampleRate(float hertz);
    // Length of the sound that is processed, in samples; 0 when it is not known.
    double GetDuration() const noexcept { return fDuration; }
    // Whether the engine does not run the filter at present.
    bool IsSuspended() const noexcept { return fSuspended; }
    // Whether parameters that can't be automated may be changed: not while the engine runs in real time.
    bool CanChangeNonAutomatableParameters() const noexcept { return fCanChangeNonAutomatable; }
    // Null when the filter runs without a host.
    AudioFilterHost* GetAudioFilterHost() const noexcept { return fHost; }

    // Response in decibels at `count` places along a frequency axis, as the processing works with the present
    // parameters. False, with the vector untouched, when the effect has none or `count` is 0.
    virtual bool GetMagnitudeResponse(std::size_t count, const FrequencyAxis& axis, std::vector<float>& decibels) const;
    // `size` samples of a curve that a panel shows; which curves there are, and their scales, is for each effect to
    // say. False, with the vector untouched, when there is no such curve or `size` is 0.
    virtual bool GetResponseCurve(int index, std::size_t size, std::vector<float>& values) const;

    // For the host.
    // Stores in a read-only parameter what another instance of the effect tells, which makes the sound: for a filter
    // that only a panel shows. An index that is none and a value that is not finite are refused.
    void MirrorParameter(int index, float value);
    // While bypassed, the sound goes by as late as through the effect, which goes on listening; going over takes 5 ms.
    // Any thread.
    void SetBypassed(bool bypassed) noexcept { fIsBypassed.store(bypassed, std::memory_order_relaxed); }
    bool IsBypassed() const noexcept { return fIsBypassed.load(std::memory_order_relaxed); }
    // Takes effect with the next Prepare.
    void SetQuality(AudioFilterQuality quality) noexcept { fQuality = quality; }
    AudioFilterQuality GetQuality() const noexcept { return fQuality; }
    // Where the host is when the next block begins. Sound thread; a host that knows tells it before each block.
    void SetTransport(const AudioFilterTransport& transport) noexcept { fTransport = transport; }
    void SetAudioFilterHost(AudioFilterHost* host) noexcept { fHost = host; }
    void SetDuration(double samples) noexcept { fDuration = samples; }
    void SetSuspended(bool suspended) noexcept { fSuspended = suspended; }
    void SetCanChangeNonAutomatableParameters(bool can) noexcept { fCanChangeNonAutomatable = can; }

    // Makes the filter ready for sound at `sampleRate` hertz in blocks of 1 to `maximumBlock` frames, forgets all sound
    // and settles every smoothed parameter. Throws krocore::config::Error when the filter can't work so (no channel,
    // more than kMaximumChannels, a rate outside 1 kHz...1 MHz, or what the effect itself can't do); it is then as
    // before.
    void Prepare(float sampleRate, std::size_t maximumBlock, const kromediatypes::AudioChannelLayout& layout);

    // Whether settings have changed since Prepare that it alone takes over (AudioFilterParameterInfo::NeedsPrepare),
    // such as the latency: until the host prepares the filter again, it goes on as it is. Listeners are told.
    bool NeedsPrepare() const noexcept { return fNeedsPrepare; }

    // Processes the next block: channels as the buses say, frames up to the prepared maximum. Buffers may overlap in
    // any way, but for those of two outputs. Does not allocate, lock or call the system. The output depends on the
    // sound and the parameters, not on how it is cut into blocks.
    void Process(const AudioFilterBlock& block) noexcept;

    // Forgets all sound, as after Prepare.
    void Reset() noexcept;

    // Whether the effect does better when it has heard the whole sound before it processes it. Who can, as a render,
    // brings the sound twice: after Prepare or Reset to Listen, block by block, and then to Process.
    virtual bool WantsToListen() const noexcept { return false; }
    // Inputs as for Process; there is no output.
    void Listen(std::span<const float* const> inputs, std::size_t frames) { OnListen(inputs, frames); }

    // How many samples the output comes later than the input. Fixed from one Prepare to the next.
    virtual std::size_t Latency() const noexcept { return 0; }
    // How many samples the filter goes on sounding after its input has ended, latency not counted.
    virtual std::size_t Tail() const noexcept { return 0; }

protected:
    // `parameterCapacity` is the largest number of parameters that the filter can have; all values start at 0.
    explicit AudioFilter(std::size_t parameterCapacity);
    ~AudioFilter() override;

    // The layout that comes out for a layout that goes in; the same unless an effect says otherwise. Throws
    // krocore::config::Error for a layout that the effect can't take.
    virtual kromediatypes::AudioChannelLayout OutputLayoutFor(const kromediatypes::AudioChannelLayout& input) const;
    // The effect's part of Prepare: rate and buses are set already. Allocates what Process needs.
    virtual void OnPrepare(std::size_t maximumBlock);
    // The effect's part of SetSampleRate and Prepare: the descriptions of parameters follow the rate.
    virtual void OnSampleRateChanged() {}
    // The effect's part of Process: an output may be the input of the same channel, otherwise the buffers don't
    // overlap.
    virtual void OnProcess(const AudioFilterBlock& block) noexcept = 0;
    // The effect's part of Reset.
    virtual void OnReset() noexcept {}
    // The effect's part of Listen.
    virtual void OnListen(std::span<const float* const> inputs, std::size_t frames);
    // How many points a curve has.
    virtual std::size_t CountCurvePoints(const AudioFilterCurve& curve) const;
    // Where the host is; sound thread. The same until a host that knows tells another.
    const AudioFilterTransport& GetTransport() const noexcept { return fTransport; }

    // Setters have stored other values, and listeners have been told, or automation has: what is made of parameters
    // outside the sound thread, or told in read-only ones, may be made anew. Once for all that changes as one.
    // User-interface thread.
    using ParameterIndices = std::span<const int>;
    virtual void OnParametersChanged(ParameterIndices changed);

    // For Process: while the parameters are held, none of those that change as one does. False, at once, when they are
    // changing just now; then the next block is early enough to read them. Whoever changes them waits for the release.
    bool TryHoldParameters() noexcept { return !fAreParametersHeld.test_and_set(std::memory_order_acquire); }
    void ReleaseParameters() noexcept { fAreParametersHeld.clear(std::memory_order_release); }

    // Stores a value without asking anybody: initial values, and what the filter itself measures. Any thread. The dirty
    // count moves, listeners are not told.
    void StoreParameter(int index, float value) noexcept;
    // The stored value for the processing; `index` must be below the capacity.
    float StoredParameter(std::size_t index) const noexcept { return fValues[index].load(std::memory_order_relaxed); }

private:
    class TellingScope;

    bool IsParameter(int index) const { return index >= 0 && index < GetParameterCount(); }
    std::optional<std::vector<AudioFilterParameterValue>>
    SettingsForCurve(std::size_t curve, std::span<const AudioFilterCurvePoint> points) const;
    bool CanStore(int index, float value) const noexcept;
    void ChangeParameter(int index, float value, bool quiet);
    std::optional<AudioFilterParameterChange> StoreChange(int index, float value, bool quiet);
    std::vector<AudioFilterParameterChange> StoreTogether(std::span<const AudioFilterParameterValue> values);
    void TellOf(std::span<const AudioFilterParameterChange> changes);
    void TakeOver(ParameterIndices changed);
    template <typename Call>
    void TellListeners(const Call& call);

    std::size_t fParameterCapacity;
    std::unique_ptr<std::atomic<float>[]> fValues;
    std::unique_ptr<std::atomic<bool>[]> fAutomated; // since automation was served last
    std::atomic<bool> fIsAnyAutomated{false};
    std::atomic<std::uint32_t> fDirtyCount{0};
    std::atomic_flag fAreParametersHeld;
    std::atomic<bool> fIsBypassed{false};
    std::unique_ptr<DryPath> fDryPath;
    AudioFilterTransport fTransport;              // sound thread
    std::vector<AudioFilterListener*> fListeners; // null: removed while the listeners are being told
    int fTelling = 0;
    std::vector<AudioFilterBusDescription> fInputBuses;
    std::vector<AudioFilterBusDescription> fOutputBuses;
    float fSampleRate = 44100.0F;
    double fDuration = 0;
    AudioFilterHost* fHost = nullptr;
    AudioFilterQuality fQuality = AudioFilterQuality::kLive;
    bool fHasBeenPrepared = false;
    bool fNeedsPrepare = false;
    bool fSuspended = true;
    bool fCanChangeNonAutomatable = true;
};

} // namespace kroaudiofilterhost
