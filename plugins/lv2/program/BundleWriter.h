#pragma once

#include "qolv2/PluginCatalogue.h"

#include <filesystem>
#include <string>

namespace qolv2 {

// Writes what the bundle says of itself: manifest.ttl, and a file for each effect with its plug-ins and their presets.
class BundleWriter {
public:
    explicit BundleWriter(std::filesystem::path folder) : fFolder(std::move(folder)) {}

    // Throws std::exception.
    void Write();

private:
    void AddPlugin(const PluginDescription& plugin, std::string& text);
    void AddPresets(const PluginDescription& plugin, std::string& text);
    void WriteFile(const std::string& name, const std::string& text) const;

    std::filesystem::path fFolder;
    std::string fManifest;
};

} // namespace qolv2
