#pragma once

#include "kromediatypes/AudioChannelLayout.h"
#include "qoc/components/EffectCatalogue.h"

#include <span>
#include <string>
#include <string_view>

namespace qolv2 {

// One plug-in of the bundle: an effect for a number of channels. Constants, as long-lived as the program.
struct PluginDescription {
    const qoc::components::EffectDescription* effect = nullptr;
    std::size_t channels = 2;
    std::string uri; // for good: sessions know plug-ins by it

    kromediatypes::AudioChannelLayout Layout() const;
    // UTF-8: "Amplify (mono)".
    std::string Name() const;
};

// What the bundle says of an effect besides what the effect says of itself.
struct EffectSummary {
    const char* shortName;
    const char* pluginClass; // of LV2's classes, without its prefix
    const char* sentence;    // what it does; English
};

// In an order that stays while the bundle is loaded. Any thread.
std::span<const PluginDescription> AllPlugins();
// Null when there is none.
const PluginDescription* FindPlugin(std::string_view uri);
const EffectSummary& SummaryOf(const qoc::components::EffectDescription& effect);

} // namespace qolv2
