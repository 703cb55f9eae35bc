// The panels' binary: one user interface for all plug-ins of the bundle.
#include "qolv2panel/PluginPanel.h"

#include <lv2/core/lv2.h>

#include <exception>
#include <string_view>

namespace qolv2 {
namespace {

PluginPanel& PanelOf(LV2UI_Handle handle) {
    return *static_cast<PluginPanel*>(handle);
}

LV2UI_Handle Instantiate(const LV2UI_Descriptor* /*descriptor*/, const char* pluginURI, const char* /*bundle*/,
                         LV2UI_Write_Function write, LV2UI_Controller controller, LV2UI_Widget* widget,
                         const LV2_Feature* const* features) {
    const PluginDescription* const plugin = FindPlugin(pluginURI);
    if (plugin == nullptr) return nullptr;
    try {
        auto panel = std::make_unique<PluginPanel>(*plugin, PluginPanel::Host{write, controller, features});
        *widget = reinterpret_cast<LV2UI_Widget>(panel->Widget());
        return panel.release();
    } catch (const std::exception& error) {
        HostFeatures(features).Warn(plugin->uri + ": " + error.what());
        return nullptr;
    }
}

// Nothing may be thrown through the host.
template <class Call>
void Guarded(const Call& call) {
    try {
        call();
    } catch (const std::exception& error) {
        HostFeatures(nullptr).Warn(error.what());
    }
}

const LV2UI_Idle_Interface kIdle = {[](LV2UI_Handle handle) {
    Guarded([&] { PanelOf(handle).Idle(); });
    return 0;
}};

const void* ExtensionData(const char* uri) {
    return uri == std::string_view(LV2_UI__idleInterface) ? &kIdle : nullptr;
}

const LV2UI_Descriptor kDescriptor = {
    "urn:qoaudio:panel", Instantiate, [](LV2UI_Handle handle) { delete &PanelOf(handle); },
    [](LV2UI_Handle handle, std::uint32_t port, std::uint32_t size, std::uint32_t format, const void* data) {
        Guarded([&] { PanelOf(handle).PortChanged(port, size, format, data); });
    },
    ExtensionData};

} // namespace
} // namespace qolv2

extern "C" LV2_SYMBOL_EXPORT const LV2UI_Descriptor* lv2ui_descriptor(std::uint32_t index) {
    return index == 0 ? &qolv2::kDescriptor : nullptr;
}
