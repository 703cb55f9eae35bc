#pragma once

#include <lilv/lilv.h>
#include <lv2/log/log.h>
#include <lv2/urid/urid.h>
#include <lv2/worker/worker.h>

#include <array>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace test {

// What a host has for all its plug-ins: the bundle as lilv reads it, numbers for URIs, a log.
class LilvHost {
public:
    explicit LilvHost(const std::string& bundle) : fWorld(lilv_world_new(), lilv_world_free) {
        const std::unique_ptr<LilvNode, void (*)(LilvNode*)> uri(
            lilv_new_file_uri(fWorld.get(), nullptr, (bundle + "/").c_str()), lilv_node_free);
        lilv_world_load_bundle(fWorld.get(), uri.get());
    }

    const LilvPlugin* Find(const std::string& uri) const {
        const std::unique_ptr<LilvNode, void (*)(LilvNode*)> node(lilv_new_uri(fWorld.get(), uri.c_str()),
                                                                  lilv_node_free);
        return lilv_plugins_get_by_uri(lilv_world_get_all_plugins(fWorld.get()), node.get());
    }
    LilvWorld* World() const { return fWorld.get(); }

    LV2_URID Map(const std::string& uri) {
        for (std::size_t i = 0; i < fURIs.size(); ++i)
            if (*fURIs[i] == uri) return static_cast<LV2_URID>(i + 1);
        fURIs.push_back(std::make_unique<std::string>(uri));
        return static_cast<LV2_URID>(fURIs.size());
    }
    LV2_URID_Map* URIDMap() { return &fMap; }
    LV2_URID_Unmap* URIDUnmap() { return &fUnmap; }
    LV2_Log_Log* Log() { return &fLog; }

    std::string log; // all lines

private:
    static int Print(LV2_Log_Handle host, LV2_URID, const char* format, va_list arguments) {
        char line[1000];
        const int length = std::vsnprintf(line, sizeof line, format, arguments);
        static_cast<LilvHost*>(host)->log += line;
        return length;
    }

    static int PrintSome(LV2_Log_Handle host, LV2_URID kind, const char* format, ...) {
        va_list arguments;
        va_start(arguments, format);
        const int length = Print(host, kind, format, arguments);
        va_end(arguments);
        return length;
    }

    std::unique_ptr<LilvWorld, void (*)(LilvWorld*)> fWorld;
    std::vector<std::unique_ptr<std::string>> fURIs;
    LV2_URID_Map fMap{this,
                      [](LV2_URID_Map_Handle host, const char* uri) { return static_cast<LilvHost*>(host)->Map(uri); }};
    LV2_URID_Unmap fUnmap{this, [](LV2_URID_Unmap_Handle host, LV2_URID number) {
                              return static_cast<LilvHost*>(host)->fURIs[number - 1]->c_str();
                          }};
    LV2_Log_Log fLog{this, PrintSome, Print};
};

// An instance with its control values. Work is done between two blocks, when it is asked for.
class LilvPluginInstance {
public:
    LilvPluginInstance(LilvHost& host, const std::string& uri, double sampleRate)
        : fWorld(host.World()), fPlugin(host.Find(uri)), fFeatures{LV2_Feature{LV2_URID__map, host.URIDMap()},
                                                                   LV2_Feature{LV2_LOG__log, host.Log()},
                                                                   LV2_Feature{LV2_WORKER__schedule, &fSchedule}} {
        const LV2_Feature* const features[] = {&fFeatures[0], &fFeatures[1], &fFeatures[2], nullptr};
        fWork.reserve(kMostWork);
        fInstance = lilv_plugin_instantiate(fPlugin, sampleRate, features);
        fControls.resize(lilv_plugin_get_num_ports(fPlugin));
        lilv_plugin_get_port_ranges_float(fPlugin, nullptr, nullptr, fControls.data());
        for (std::uint32_t port = 0; port < fControls.size(); ++port)
            lilv_instance_connect_port(fInstance, port, IsControl(port) ? &fControls[port] : nullptr);
    }
    ~LilvPluginInstance() { lilv_instance_free(fInstance); }
    LilvPluginInstance(const LilvPluginInstance&) = delete;
    LilvPluginInstance& operator=(const LilvPluginInstance&) = delete;

    const LilvPlugin* Plugin() const { return fPlugin; }
    LilvInstance* Instance() const { return fInstance; }
    std::size_t Ports() const { return fControls.size(); }
    float& Control(std::size_t port) { return fControls[port]; }
    float& Control(const std::string& symbol) {
        const std::unique_ptr<LilvNode, void (*)(LilvNode*)> node(lilv_new_string(fWorld, symbol.c_str()),
                                                                  lilv_node_free);
        return fControls[lilv_port_get_index(fPlugin, lilv_plugin_get_port_by_symbol(fPlugin, node.get()))];
    }
    void Activate() { lilv_instance_activate(fInstance); }
    void ConnectAudio(std::size_t port, float* data) {
        lilv_instance_connect_port(fInstance, static_cast<std::uint32_t>(port), data);
    }
    void Run(std::size_t frames) { lilv_instance_run(fInstance, static_cast<std::uint32_t>(frames)); }
    // As the host's worker does it, and then its sound thread.
    void DoWork() {
        Work();
        Deliver();
    }
    void Work() {
        const auto respond = [](LV2_Worker_Respond_Handle instance, std::uint32_t size, const void* data) {
            auto& responses = static_cast<LilvPluginInstance*>(instance)->fResponses;
            responses.emplace_back(data, size);
            return LV2_WORKER_SUCCESS;
        };
        const LV2_Handle handle = lilv_instance_get_handle(fInstance);
        for (const Bytes& work : fWork)
            Worker().work(handle, respond, this, work.size, work.bytes.data());
        fWork.clear();
    }
    void Deliver() {
        for (const Bytes& response : fResponses)
            Worker().work_response(lilv_instance_get_handle(fInstance), response.size, response.bytes.data());
        fResponses.clear();
    }
    // Responses are lost, as when a host stops.
    void Forget() { fResponses.clear(); }

private:
    // Kept without taking memory, as a host's queue does.
    struct Bytes {
        Bytes(const void* data, std::uint32_t itsSize) : size(itsSize) { std::memcpy(bytes.data(), data, size); }
        std::array<char, 2048> bytes{};
        std::uint32_t size;
    };
    static constexpr std::size_t kMostWork = 1000;

    const LV2_Worker_Interface& Worker() const {
        return *static_cast<const LV2_Worker_Interface*>(
            lilv_instance_get_extension_data(fInstance, LV2_WORKER__interface));
    }

    bool IsControl(std::uint32_t port) const {
        const LilvPort* const its = lilv_plugin_get_port_by_index(fPlugin, port);
        const std::unique_ptr<LilvNode, void (*)(LilvNode*)> kind(lilv_new_uri(fWorld, LV2_CORE__ControlPort),
                                                                  lilv_node_free);
        return lilv_port_is_a(fPlugin, its, kind.get());
    }

    LilvWorld* fWorld;
    const LilvPlugin* fPlugin;
    LV2_Worker_Schedule fSchedule{this, [](LV2_Worker_Schedule_Handle instance, std::uint32_t size, const void* data) {
                                      static_cast<LilvPluginInstance*>(instance)->fWork.emplace_back(data, size);
                                      return LV2_WORKER_SUCCESS;
                                  }};
    LV2_Feature fFeatures[3];
    LilvInstance* fInstance = nullptr;
    std::vector<float> fControls; // by port
    std::vector<Bytes> fWork;
    std::vector<Bytes> fResponses;
};

} // namespace test
