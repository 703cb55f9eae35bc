#include "qolv2/PresetBundle.h"

#include "host/ByteStream.h"
#include "krocore/FilePath.h"
#include "krocore/config/Error.h"
#include "qolv2/PluginPorts.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <optional>
#include <system_error>
#include <vector>

namespace qolv2 {

namespace {

namespace fs = std::filesystem;
using krocore::config::Error;
using FilterPtr = boost::intrusive_ptr<kroaudiofilterhost::AudioFilter>;

constexpr const char* kState = "<urn:qoaudio:state>";
constexpr const char* kManifest = "manifest.ttl";
constexpr const char* kPresets = "presets.ttl";
constexpr std::size_t kLargestFile = 16U << 20U; // bytes
constexpr float kDescribedRate = 48000;          // hertz: how far frequencies go
constexpr std::size_t kBlock = 1024;

constexpr const char* kPrefixes = R"(@prefix lv2: <http://lv2plug.in/ns/lv2core#> .
@prefix pset: <http://lv2plug.in/ns/ext/presets#> .
@prefix rdfs: <http://www.w3.org/2000/01/rdf-schema#> .
@prefix state: <http://lv2plug.in/ns/ext/state#> .

)";

std::vector<fs::path> TurtleFilesOf(const fs::path& path) {
    std::error_code error;
    if (!fs::is_directory(path, error)) return {path};
    std::vector<fs::path> files;
    for (fs::directory_iterator entry(path, error), end; !error && entry != end; entry.increment(error))
        if (entry->path().extension() == ".ttl") files.push_back(entry->path());
    std::ranges::sort(files);
    return files;
}

} // namespace

std::string NameInURI(std::string_view name) {
    std::string text;
    for (const char c : name) {
        const bool isPlain = std::isalnum(static_cast<unsigned char>(c)) != 0;
        if (isPlain)
            text += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        else if (!text.empty() && text.back() != '-')
            text += '-';
    }
    while (text.ends_with('-'))
        text.pop_back();
    return text;
}

TurtleStatements PresetOf(const PluginDescription& plugin, std::string_view name) {
    TurtleStatements about;
    about.Add("a", "pset:Preset");
    about.Add("lv2:appliesTo", TurtleURI(plugin.uri));
    about.Add("rdfs:label", TurtleText(name));
    return about;
}

TurtleStatements PresetOf(const PluginDescription& plugin, std::string_view name,
                          const kroaudiofilterhost::AudioFilter& filter) {
    TurtleStatements about = PresetOf(plugin, name);
    const PluginPorts ports(filter);
    for (const ParameterPort& port : ports.Parameters()) {
        if (port.info->IsReadOnly()) continue;
        TurtleStatements value;
        value.Add("lv2:symbol", TurtleText(port.info->GetID()));
        value.Add("pset:value", TurtleNumber(port.FromStored(filter.GetParameterValue(port.parameter))));
        about.Add("lv2:port", value.Nameless());
    }
    TurtleStatements state;
    state.Add(kState, TurtleText(qohost::SaveState(filter)));
    about.Add("state:state", state.Nameless());
    return about;
}

fs::path UsualPresetBundle(const qoc::components::EffectDescription& effect, std::string_view name) {
    const char* const home = std::getenv("HOME");
    return fs::path(home != nullptr ? home : ".") / ".lv2" /
           fmt::format("qoaudio-{}-{}.preset.lv2", effect.shortName, NameInURI(name));
}

void WritePresetBundle(const fs::path& bundle, const qoc::components::EffectDescription& effect,
                       const qohost::Preset& preset) {
    std::string manifest = kPrefixes;
    std::string presets = kPrefixes;
    for (const PluginDescription& plugin : AllPlugins()) {
        if (plugin.effect != &effect) continue;
        const FilterPtr filter = effect.create();
        filter->Prepare(kDescribedRate, kBlock, plugin.Layout());
        qohost::ApplyPreset(*filter, preset);
        const std::string subject = TurtleURI(fmt::format("{}:user:{}", plugin.uri, NameInURI(preset.name)));
        TurtleStatements entry = PresetOf(plugin, preset.name);
        entry.Add("rdfs:seeAlso", fmt::format("<{}>", kPresets));
        manifest += entry.About(subject);
        presets += PresetOf(plugin, preset.name, *filter).About(subject);
    }
    std::error_code error;
    fs::create_directories(bundle, error);
    if (error) throw Error(krocore::PathText(bundle) + ": the folder can't be made (" + error.message() + ")");
    qohost::WriteBytes(bundle / kPresets, presets);
    qohost::WriteBytes(bundle / kManifest, manifest);
}

bool IsPresetBundle(const fs::path& path) {
    std::error_code error;
    return path.extension() == ".ttl" || fs::is_directory(path, error);
}

qohost::Preset ReadPresetBundle(const fs::path& path) {
    for (const fs::path& file : TurtleFilesOf(path)) {
        const std::string text = qohost::ReadBytes(file, kLargestFile);
        const std::size_t place = text.find(kState);
        if (place == std::string::npos) continue;
        const auto state = ReadTurtleText(std::string_view(text).substr(place + std::string_view(kState).size()));
        if (!state) continue;
        try {
            qohost::Preset preset = qohost::ParsePreset(*state);
            if (preset.name.empty()) preset.name = krocore::PathText(path.stem());
            return preset;
        } catch (const Error& error) {
            throw Error(krocore::PathText(file) + ": " + error.what());
        }
    }
    throw Error(krocore::PathText(path) + ": there is no preset of an effect in it");
}

} // namespace qolv2
