#include "qolv2/Plugin.h"

#include "host/Preset.h"
#include "krocore/config/Error.h"

#include <lv2/atom/util.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <utility>

namespace qolv2 {

namespace {

constexpr const char* kStateKey = "urn:qoaudio:state";
constexpr std::size_t kMostChannels = 8;
constexpr float kDescribedRate = 48000; // hertz, of a plug-in that can't run

} // namespace

Plugin::Plugin(const PluginDescription& description, double sampleRate, const LV2_Feature* const* features)
    : fDescription(description), fSampleRate(static_cast<float>(sampleRate)), fHost(features),
      fTransportReader(fHost), fFilters{{NewFilter(), 0}}, fRunning(&Served()), fDescribing(&Served()),
      fPorts(Served()), fCurveEvents(fHost, Served()) {
    if (fHost.map != nullptr) lv2_atom_forge_init(&fForge, const_cast<LV2_URID_Map*>(fHost.map));
    fData.resize(fPorts.Count());
    std::size_t index = fPorts.FirstParameterPort();
    for (const ParameterPort& port : fPorts.Parameters()) {
        (port.info->IsReadOnly() ? fTold : fTaken).push_back({&port, index++});
    }
}

Plugin::~Plugin() = default;

// Only the values that count are sent.
std::uint32_t Plugin::Message::Size() const noexcept {
    return static_cast<std::uint32_t>(offsetof(Message, values) + valueCount * sizeof(float));
}

bool Plugin::Message::Read(const void* data, std::uint32_t size) noexcept {
    if (size < offsetof(Message, values) || size > sizeof *this) return false;
    std::memcpy(this, data, size);
    return Size() == size;
}

// Prepared, since the ports follow the channels.
Plugin::FilterPtr Plugin::NewFilter() {
    FilterPtr filter = fDescription.effect->create();
    try {
        Prepare(*filter);
        fIsUsable = true;
    } catch (const krocore::config::Error& error) {
        Warn(std::string(error.what()) + "; the sound passes as it is");
        filter->Prepare(kDescribedRate, fHost.longestBlock, fDescription.Layout());
    }
    return filter;
}

void Plugin::Warn(const std::string& message) const {
    fHost.Warn(fDescription.uri + ": " + message);
}

void Plugin::Prepare(Filter& filter) const {
    using kroaudiofilterhost::AudioFilterQuality;
    filter.SetQuality(fWantsRendering ? AudioFilterQuality::kRender : AudioFilterQuality::kLive);
    filter.Prepare(fSampleRate, fHost.longestBlock, fDescription.Layout());
}

void Plugin::Connect(std::size_t port, void* data) noexcept {
    if (port < fData.size()) fData[port] = data;
}

void Plugin::Activate() {
    if (!fIsUsable) return;
    // What was on its way may have been lost.
    TakeOver(Served(), fFilters.back().number);
    DropOldFilters();
    StorePorts();
    fIsRendering = fWantsRendering = ControlValue(kFreeWheelPort, 0) > 0;
    fRunning->SetBypassed(!(ControlValue(kEnabledPort, 1) > 0));
    Prepare(*fRunning);
    fIsFresh = true;
}

void Plugin::Run(std::size_t frames) noexcept {
    if (!fIsUsable) return PassThrough(frames);
    if (!std::exchange(fIsTidy, true)) Schedule({.kind = Message::Kind::kTidy});
    TakeEvents();
    TakePorts();
    // Some hosts set ports only after activating: no sound has gone before, so nothing glides.
    if (std::exchange(fIsFresh, false)) fRunning->Reset();
    Process(frames);
    TellPorts();
    TellCurves();
}

// A port that the host left out counts as `other`.
float Plugin::ControlValue(FixedPort port, float other) const noexcept {
    const auto* const data = static_cast<const float*>(fData[fPorts.IndexOf(port)]);
    return data != nullptr ? *data : other;
}

// Whether the port has another value than the one that was taken from it.
bool Plugin::HasNews(const Port& port) const noexcept {
    const auto* const data = static_cast<const float*>(fData[port.index]);
    return data != nullptr && *data != port.taken && std::isfinite(*data);
}

// The value to be stored; none where what is stored says the same, perhaps more exactly.
std::optional<float> Plugin::TakeValue(Port& port) const noexcept {
    port.taken = *static_cast<const float*>(fData[port.index]);
    if (port.parameter->FromStored(fRunning->GetParameterValue(port.parameter->parameter)) == port.taken) return {};
    return port.parameter->ToStored(port.taken);
}

// While nothing runs.
void Plugin::StorePorts() {
    std::vector<kroaudiofilterhost::AudioFilterParameterValue> values;
    for (Port& port : fTaken) {
        if (!HasNews(port)) continue;
        if (const auto value = TakeValue(port)) values.push_back({port.parameter->parameter, *value});
    }
    if (!values.empty()) fRunning->SetParameterValues(values);
}

void Plugin::TakePorts() noexcept {
    fRunning->SetBypassed(!(ControlValue(kEnabledPort, 1) > 0));
    const bool isRendering = ControlValue(kFreeWheelPort, 0) > 0;
    if (isRendering != fIsRendering) Schedule({.kind = Message::Kind::kSetQuality, .isRendering = isRendering});
    fIsRendering = isRendering;
    bool isAutomated = false;
    for (Port& port : fTaken) {
        if (HasNews(port)) isAutomated |= Take(port);
    }
    if (isAutomated) Schedule({.kind = Message::Kind::kServe});
}

// True when the worker has something to make of it.
bool Plugin::Take(Port& port) noexcept {
    const int parameter = port.parameter->parameter;
    const auto value = TakeValue(port);
    if (!value) return false;
    if (port.parameter->info->IsAutomatable()) {
        fRunning->Automate(parameter, *value);
        return true;
    }
    Schedule({.kind = Message::Kind::kStore, .parameter = parameter, .value = *value});
    return false;
}

void Plugin::TakeEvents() noexcept {
    const auto* const events = static_cast<const LV2_Atom_Sequence*>(fData[fPorts.IndexOf(kControlPort)]);
    if (events == nullptr) return;
    LV2_ATOM_SEQUENCE_FOREACH(events, event) {
        if (fCurveEvents.IsObject(event->body)) Take(*reinterpret_cast<const LV2_Atom_Object*>(&event->body));
    }
}

void Plugin::Take(const LV2_Atom_Object& object) noexcept {
    if (fTransportReader.Read(object, fTransport)) return;
    if (fCurveEvents.IsGet(object)) fTellsCurves = true;
    const auto setting = fCurveEvents.ReadSet(object);
    if (!setting) return;
    Message message;
    message.kind = Message::Kind::kSetCurve;
    message.curve = setting->curve;
    message.valueCount = setting->values.size();
    std::ranges::copy(setting->values, message.values.begin());
    Schedule(message);
}

// The host's block may be longer than it said.
void Plugin::Process(std::size_t frames) noexcept {
    std::array<const float*, kMostChannels> inputs{};
    std::array<float*, kMostChannels> outputs{};
    for (std::size_t begin = 0; begin < frames; begin += fHost.longestBlock) {
        const std::size_t count = std::min(frames - begin, fHost.longestBlock);
        for (std::size_t i = 0; i < fPorts.Inputs(); ++i)
            inputs[i] = static_cast<const float*>(fData[i]) + begin;
        for (std::size_t i = 0; i < fPorts.Outputs(); ++i)
            outputs[i] = static_cast<float*>(fData[fPorts.Inputs() + i]) + begin;
        fRunning->SetTransport(fTransport);
        fRunning->Process(
            {std::span(inputs).first(fPorts.Inputs()), std::span(outputs).first(fPorts.Outputs()), count});
        if (fTransport.isPlaying) fTransport.position += static_cast<double>(count);
    }
}

// Outputs may be any inputs: all are read before the first is written.
void Plugin::PassThrough(std::size_t frames) noexcept {
    for (std::size_t i = 0; i < frames; ++i) {
        std::array<float, kMostChannels> sound{};
        for (std::size_t channel = 0; channel < fPorts.Inputs(); ++channel)
            sound[channel] = static_cast<const float*>(fData[channel])[i];
        for (std::size_t channel = 0; channel < fPorts.Outputs(); ++channel)
            static_cast<float*>(fData[fPorts.Inputs() + channel])[i] = sound[channel];
    }
}

void Plugin::TellPorts() noexcept {
    if (auto* const latency = static_cast<float*>(fData[fPorts.IndexOf(kLatencyPort)]))
        *latency = static_cast<float>(fRunning->Latency());
    for (const Port& port : fTold) {
        if (auto* const data = static_cast<float*>(fData[port.index]))
            *data = port.parameter->FromStored(fRunning->GetParameterValue(port.parameter->parameter));
    }
}

void Plugin::TellCurves() noexcept {
    auto* const events = static_cast<LV2_Atom_Sequence*>(fData[fPorts.IndexOf(kNotifyPort)]);
    if (events == nullptr || fHost.map == nullptr) return;
    lv2_atom_forge_set_buffer(&fForge, reinterpret_cast<std::uint8_t*>(events), events->atom.size);
    LV2_Atom_Forge_Frame frame;
    lv2_atom_forge_sequence_head(&fForge, &frame, 0);
    CurveEvents::Values values;
    const std::size_t curves = std::exchange(fTellsCurves, false) ? fCurveEvents.Count() : 0;
    for (std::size_t curve = 0; curve < curves; ++curve) {
        const std::size_t count = fCurveEvents.ValuesOf(*fRunning, curve, values);
        lv2_atom_forge_frame_time(&fForge, 0);
        fCurveEvents.WriteSet(fForge, {curve, std::span(values).first(count)});
    }
    lv2_atom_forge_pop(&fForge, &frame);
}

void Plugin::Schedule(const Message& message) noexcept {
    const LV2_Worker_Schedule* const worker = fHost.worker;
    const std::uint32_t size = message.Size();
    if (worker != nullptr && worker->schedule_work(worker->handle, size, &message) == LV2_WORKER_SUCCESS) return;
    const auto respond = [](LV2_Worker_Respond_Handle plugin, std::uint32_t size, const void* data) {
        return static_cast<Plugin*>(plugin)->Respond(size, data);
    };
    Work(respond, this, size, &message);
}

LV2_Worker_Status Plugin::Work(LV2_Worker_Respond_Function respond, LV2_Worker_Respond_Handle handle,
                               std::uint32_t size, const void* data) {
    Message message;
    if (!message.Read(data, size)) return LV2_WORKER_ERR_UNKNOWN;
    const std::lock_guard lock(fFiltersMutex);
    switch (message.kind) {
    case Message::Kind::kTidy: DropOldFilters(); return LV2_WORKER_SUCCESS;
    case Message::Kind::kStore: Served().SetParameterValueQuietly(message.parameter, message.value); break;
    case Message::Kind::kSetCurve: SetCurve(message); break;
    case Message::Kind::kServe: Served().ServeAutomation(); break;
    case Message::Kind::kSetQuality: fWantsRendering = message.isRendering; break;
    case Message::Kind::kTake: return LV2_WORKER_ERR_UNKNOWN;
    }
    if (Served().NeedsPrepare() || message.kind == Message::Kind::kSetQuality) Replace(respond, handle);
    return LV2_WORKER_SUCCESS;
}

void Plugin::SetCurve(const Message& message) {
    std::vector<kroaudiofilterhost::AudioFilterCurvePoint> points;
    for (std::size_t i = 0; i + 1 < message.valueCount; i += 2)
        points.push_back({message.values[i], message.values[i + 1]});
    Served().SetCurve(message.curve, points);
}

void Plugin::DropOldFilters() {
    const std::uint64_t running = fRunningNumber.load(std::memory_order_acquire);
    std::erase_if(fFilters, [&](const NumberedFilter& each) { return each.number < running; });
}

// A filter that is prepared while the other one goes on.
void Plugin::Replace(LV2_Worker_Respond_Function respond, LV2_Worker_Respond_Handle handle) {
    FilterPtr filter = fDescription.effect->create();
    Prepare(*filter);
    std::vector<kroaudiofilterhost::AudioFilterParameterValue> values;
    for (int i = 0; i < Served().GetParameterCount(); ++i)
        values.push_back({i, Served().GetParameterValue(i)});
    filter->SetParameterValues(values);
    filter->SetBypassed(Served().IsBypassed());
    Prepare(*filter);
    const std::uint64_t number = fFilters.back().number + 1;
    const Message message = {.kind = Message::Kind::kTake, .filter = filter.get(), .number = number};
    fFilters.push_back({std::move(filter), number});
    if (respond(handle, message.Size(), &message) != LV2_WORKER_SUCCESS) fFilters.pop_back();
}

LV2_Worker_Status Plugin::Respond(std::uint32_t size, const void* data) noexcept {
    Message message;
    if (!message.Read(data, size)) return LV2_WORKER_ERR_UNKNOWN;
    if (message.kind != Message::Kind::kTake) return LV2_WORKER_ERR_UNKNOWN;
    if (message.number > fRunningNumber.load(std::memory_order_relaxed)) TakeOver(*message.filter, message.number);
    return LV2_WORKER_SUCCESS;
}

void Plugin::TakeOver(Filter& filter, std::uint64_t number) noexcept {
    if (&filter == fRunning) return;
    fRunning = &filter;
    fRunningNumber.store(number, std::memory_order_release);
    fIsTidy = false;
    // What was automated meanwhile went to the other one.
    for (Port& port : fTaken)
        port.taken = kNone;
}

std::string Plugin::StateOfServed() const {
    const std::lock_guard lock(fFiltersMutex);
    return qohost::SaveState(Served());
}

LV2_State_Status Plugin::Save(LV2_State_Store_Function store, LV2_State_Handle handle) const {
    const LV2_URID key = fHost.Map(kStateKey);
    const LV2_URID type = fHost.Map(LV2_ATOM__String);
    if (key == 0 || type == 0) return LV2_STATE_ERR_NO_FEATURE;
    const std::string state = StateOfServed();
    return store(handle, key, state.c_str(), state.size() + 1, type, LV2_STATE_IS_POD | LV2_STATE_IS_PORTABLE);
}

LV2_State_Status Plugin::Restore(LV2_State_Retrieve_Function retrieve, LV2_State_Handle handle) {
    const LV2_URID key = fHost.Map(kStateKey);
    if (key == 0) return LV2_STATE_ERR_NO_FEATURE;
    std::size_t size = 0;
    std::uint32_t type = 0;
    std::uint32_t flags = 0;
    const void* const data = retrieve(handle, key, &size, &type, &flags);
    if (data == nullptr) return LV2_STATE_ERR_NO_PROPERTY;
    if (type != fHost.Map(LV2_ATOM__String)) {
        Warn("the state is not taken: it is no text");
        return LV2_STATE_ERR_BAD_TYPE;
    }
    try {
        const std::string_view text(static_cast<const char*>(data), size);
        for (const std::string& note : LoadState(text.substr(0, text.find('\0'))))
            Warn(note);
    } catch (const krocore::config::Error& error) {
        Warn(std::string("the state is not taken: ") + error.what());
        return LV2_STATE_ERR_UNKNOWN;
    }
    fTellsCurves = true;
    return LV2_STATE_SUCCESS;
}

// The sound thread may yet go over to those on the way.
std::vector<std::string> Plugin::LoadState(std::string_view state) {
    const std::lock_guard lock(fFiltersMutex);
    std::vector<std::string> notes;
    for (const NumberedFilter& each : fFilters) {
        notes = qohost::LoadState(*each.filter, state);
        if (fIsUsable && each.filter->NeedsPrepare()) Prepare(*each.filter);
    }
    return notes;
}

} // namespace qolv2
