#pragma once

#include "qolv2/CurveEvents.h"
#include "qolv2/HostFeatures.h"
#include "qolv2/PluginCatalogue.h"
#include "qolv2/PluginPorts.h"
#include "qolv2/TransportReader.h"

#include <lv2/state/state.h>

#include <atomic>
#include <cstdint>
#include <limits>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace qolv2 {

// One instance of a plug-in, as its host drives it. Threads are LV2's: Run and Respond on the sound thread, Work on the
// host's worker meanwhile, the rest while neither runs; saving is safe at any time.
//
// What can be automated is set on the sound thread, and its designs are made by the worker. A setting that takes
// another Prepare (a size, rendering in place of playing) makes the worker prepare another filter with all that is
// set, which the sound thread goes over to; the latency then changes. A host without a worker has all that done while
// it waits for the sound. The worker keeps every filter until it sees that the sound thread has gone on to a later one.
class Plugin {
public:
    // A rate that the effect can't work at is told in the host's log; sound then passes as it is.
    Plugin(const PluginDescription& description, double sampleRate, const LV2_Feature* const* features);
    ~Plugin();
    Plugin(const Plugin&) = delete;
    Plugin& operator=(const Plugin&) = delete;

    void Connect(std::size_t port, void* data) noexcept;
    void Activate();
    void Run(std::size_t frames) noexcept;

    LV2_Worker_Status Work(LV2_Worker_Respond_Function respond, LV2_Worker_Respond_Handle handle, std::uint32_t size,
                           const void* data);
    LV2_Worker_Status Respond(std::uint32_t size, const void* data) noexcept;

    // A line in the host's log. Not on the sound thread.
    void Warn(const std::string& message) const;

    // The state is one text, see qohost::SaveState.
    LV2_State_Status Save(LV2_State_Store_Function store, LV2_State_Handle handle) const;
    LV2_State_Status Restore(LV2_State_Retrieve_Function retrieve, LV2_State_Handle handle);

private:
    using Filter = kroaudiofilterhost::AudioFilter;
    using FilterPtr = boost::intrusive_ptr<Filter>;

    // From the sound thread to the worker, and back.
    struct Message {
        enum class Kind : std::uint8_t { kStore, kSetCurve, kServe, kSetQuality, kTidy, kTake };
        Kind kind = Kind::kServe;
        bool isRendering = false;
        int parameter = 0;
        float value = 0; // stored
        Filter* filter = nullptr;
        std::uint64_t number = 0; // the filter's
        std::size_t curve = 0;
        std::size_t valueCount = 0;
        CurveEvents::Values values{}; // as many as count

        std::uint32_t Size() const noexcept;
        bool Read(const void* data, std::uint32_t size) noexcept;
    };

    // Those of higher numbers are later.
    struct NumberedFilter {
        FilterPtr filter;
        std::uint64_t number = 0;
    };

    static constexpr float kNone = std::numeric_limits<float>::quiet_NaN();

    // A parameter's.
    struct Port {
        const ParameterPort* parameter = nullptr;
        std::size_t index = 0;
        float taken = kNone; // from it, last
    };

    FilterPtr NewFilter();
    void Prepare(Filter& filter) const;
    float ControlValue(FixedPort port, float other) const noexcept;
    bool HasNews(const Port& port) const noexcept;
    std::optional<float> TakeValue(Port& port) const noexcept;
    void StorePorts();
    void TakePorts() noexcept;
    bool Take(Port& port) noexcept;
    void TakeEvents() noexcept;
    void Take(const LV2_Atom_Object& object) noexcept;
    void Process(std::size_t frames) noexcept;
    void PassThrough(std::size_t frames) noexcept;
    void TellPorts() noexcept;
    void TellCurves() noexcept;
    void Schedule(const Message& message) noexcept;
    void SetCurve(const Message& message);
    Filter& Served() const { return *fFilters.back().filter; }
    std::string StateOfServed() const;
    std::vector<std::string> LoadState(std::string_view state);
    void TakeOver(Filter& filter, std::uint64_t number) noexcept;
    void DropOldFilters();
    void Replace(LV2_Worker_Respond_Function respond, LV2_Worker_Respond_Handle handle);

    const PluginDescription& fDescription;
    float fSampleRate;
    HostFeatures fHost;
    TransportReader fTransportReader;
    kroaudiofilterhost::AudioFilterTransport fTransport;
    bool fIsUsable = false;
    bool fIsFresh = false;                // no sound since it was activated
    bool fIsRendering = false;            // the sound thread's
    bool fWantsRendering = false;         // the worker's
    mutable std::mutex fFiltersMutex;     // between the worker and who saves
    std::vector<NumberedFilter> fFilters; // the one that sounds, and those on the way to the sound thread
    Filter* fRunning;                     // the sound thread's
    std::atomic<std::uint64_t> fRunningNumber = 0;
    bool fIsTidy = true;   // the sound thread has told the worker that it has gone on
    FilterPtr fDescribing; // whose parameters the ports are
    PluginPorts fPorts;
    CurveEvents fCurveEvents;
    LV2_Atom_Forge fForge{};
    bool fTellsCurves = true; // to the panel, at the next block
    std::vector<void*> fData; // by port
    std::vector<Port> fTaken; // of parameters, in
    std::vector<Port> fTold;  // out
};

} // namespace qolv2
