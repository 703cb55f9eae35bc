// The binary's way in: one descriptor a plug-in.
#include "qolv2/Plugin.h"
#include "qolv2/PluginCatalogue.h"

#include <lv2/core/lv2.h>

#include <exception>
#include <string_view>
#include <vector>

namespace qolv2 {
namespace {

Plugin& PluginOf(LV2_Handle handle) {
    return *static_cast<Plugin*>(handle);
}

// Nothing may be thrown through the host.
template <class Result, class Call>
Result Guarded(LV2_Handle handle, Result otherwise, const Call& call) {
    Plugin& plugin = PluginOf(handle);
    try {
        return call(plugin);
    } catch (const std::exception& error) {
        plugin.Warn(error.what());
        return otherwise;
    }
}

LV2_Handle Instantiate(const LV2_Descriptor* descriptor, double sampleRate, const char* /*bundle*/,
                       const LV2_Feature* const* features) {
    const PluginDescription* const plugin = FindPlugin(descriptor->URI);
    if (plugin == nullptr) return nullptr;
    try {
        return new Plugin(*plugin, sampleRate, features);
    } catch (const std::exception& error) {
        HostFeatures(features).Warn(plugin->uri + ": " + error.what());
        return nullptr;
    }
}

void Activate(LV2_Handle handle) {
    Guarded(handle, false, [](Plugin& plugin) {
        plugin.Activate();
        return true;
    });
}

const LV2_Worker_Interface kWorker = {
    [](LV2_Handle handle, LV2_Worker_Respond_Function respond, LV2_Worker_Respond_Handle to, std::uint32_t size,
       const void* data) {
        return Guarded(handle, LV2_WORKER_ERR_UNKNOWN,
                       [&](Plugin& plugin) { return plugin.Work(respond, to, size, data); });
    },
    [](LV2_Handle handle, std::uint32_t size, const void* data) { return PluginOf(handle).Respond(size, data); },
    nullptr};

const LV2_State_Interface kState = {
    [](LV2_Handle handle, LV2_State_Store_Function store, LV2_State_Handle to, std::uint32_t /*flags*/,
       const LV2_Feature* const* /*features*/) {
        return Guarded(handle, LV2_STATE_ERR_UNKNOWN, [&](Plugin& plugin) { return plugin.Save(store, to); });
    },
    [](LV2_Handle handle, LV2_State_Retrieve_Function retrieve, LV2_State_Handle from, std::uint32_t /*flags*/,
       const LV2_Feature* const* /*features*/) {
        return Guarded(handle, LV2_STATE_ERR_UNKNOWN, [&](Plugin& plugin) { return plugin.Restore(retrieve, from); });
    }};

const void* ExtensionData(const char* uri) {
    if (uri == std::string_view(LV2_WORKER__interface)) return &kWorker;
    if (uri == std::string_view(LV2_STATE__interface)) return &kState;
    return nullptr;
}

LV2_Descriptor DescriptorOf(const PluginDescription& plugin) {
    return {plugin.uri.c_str(),
            Instantiate,
            [](LV2_Handle handle, std::uint32_t port, void* data) { PluginOf(handle).Connect(port, data); },
            Activate,
            [](LV2_Handle handle, std::uint32_t frames) { PluginOf(handle).Run(frames); },
            nullptr,
            [](LV2_Handle handle) { delete &PluginOf(handle); },
            ExtensionData};
}

std::vector<LV2_Descriptor> MakeDescriptors() {
    std::vector<LV2_Descriptor> descriptors;
    for (const PluginDescription& plugin : AllPlugins())
        descriptors.push_back(DescriptorOf(plugin));
    return descriptors;
}

} // namespace
} // namespace qolv2

extern "C" LV2_SYMBOL_EXPORT const LV2_Descriptor* lv2_descriptor(std::uint32_t index) {
    static const std::vector<LV2_Descriptor> sDescriptors = qolv2::MakeDescriptors();
    return index < sDescriptors.size() ? &sDescriptors[index] : nullptr;
}
