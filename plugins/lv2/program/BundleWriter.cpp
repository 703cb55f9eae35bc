#include "BundleWriter.h"

#include "host/FactoryPresets.h"
#include "host/Preset.h"
#include "krocore/String.h"
#include "krocore/config/Error.h"
#include "qolv2/PluginPorts.h"
#include "qolv2/PresetBundle.h"
#include "qolv2/TurtleText.h"

#include <fmt/format.h>

#include <array>
#include <fstream>
#include <iterator>
#include <map>
#include <span>

namespace qolv2 {

namespace {

using Filter = boost::intrusive_ptr<kroaudiofilterhost::AudioFilter>;
using Kind = kroaudiofilterhost::AudioFilterParameterInfo::Kind;
using Scale = kroaudiofilterhost::AudioFilterParameterInfo::Scale;

constexpr float kDescribedRate = 48000; // hertz: how far frequencies go
constexpr std::size_t kBlock = 1024;
constexpr const char* kBinary = "<qoaudio.so>";
constexpr const char* kPanel = "<urn:qoaudio:panel>";
constexpr const char* kProject = "<urn:qoaudio:project>";
constexpr const char* kState = "<urn:qoaudio:state>";

constexpr const char* kPrefixes = R"(@prefix atom: <http://lv2plug.in/ns/ext/atom#> .
@prefix bufsz: <http://lv2plug.in/ns/ext/buf-size#> .
@prefix doap: <http://usefulinc.com/ns/doap#> .
@prefix log: <http://lv2plug.in/ns/ext/log#> .
@prefix lv2: <http://lv2plug.in/ns/lv2core#> .
@prefix opts: <http://lv2plug.in/ns/ext/options#> .
@prefix patch: <http://lv2plug.in/ns/ext/patch#> .
@prefix owl: <http://www.w3.org/2002/07/owl#> .
@prefix pg: <http://lv2plug.in/ns/ext/port-groups#> .
@prefix pprops: <http://lv2plug.in/ns/ext/port-props#> .
@prefix pset: <http://lv2plug.in/ns/ext/presets#> .
@prefix rdf: <http://www.w3.org/1999/02/22-rdf-syntax-ns#> .
@prefix rdfs: <http://www.w3.org/2000/01/rdf-schema#> .
@prefix rsz: <http://lv2plug.in/ns/ext/resize-port#> .
@prefix state: <http://lv2plug.in/ns/ext/state#> .
@prefix time: <http://lv2plug.in/ns/ext/time#> .
@prefix ui: <http://lv2plug.in/ns/extensions/ui#> .
@prefix units: <http://lv2plug.in/ns/extensions/units#> .
@prefix urid: <http://lv2plug.in/ns/ext/urid#> .
@prefix work: <http://lv2plug.in/ns/ext/worker#> .

)";

// What every file that speaks of them has to say.
std::string Common() {
    TurtleStatements project;
    project.Add("a", "doap:Project");
    project.Add("doap:name", TurtleText("QoAudio"));
    TurtleStatements state;
    state.Add("a", "rdf:Property , owl:DatatypeProperty");
    state.Add("rdfs:label", TurtleText("state"));
    state.Add("rdfs:comment", TurtleText("All settings of an effect, as the text of a preset."));
    state.Add("rdfs:range", "atom:String");
    return kPrefixes + project.About(kProject) + state.About(kState);
}

const std::map<std::string, std::string> kUnits = {
    {"dB", "units:db"}, {"Hz", "units:hz"},         {"ms", "units:ms"}, {"s", "units:s"},
    {"%", "units:pc"},  {"\u00B0", "units:degree"}, {"m", "units:m"},   {"samples", "units:frame"}};

// The channels of a layout, as people and hosts call them.
struct Channel {
    const char* name;
    const char* designation;
};
constexpr Channel kMono[] = {{"Mono", "pg:center"}};
constexpr Channel kStereo[] = {{"Left", "pg:left"}, {"Right", "pg:right"}};
constexpr Channel kSurround[] = {{"Left", "pg:left"},
                                 {"Right", "pg:right"},
                                 {"Center", "pg:center"},
                                 {"Low Frequency", "pg:lowFrequencyEffects"},
                                 {"Left Surround", "pg:rearLeft"},
                                 {"Right Surround", "pg:rearRight"}};

std::span<const Channel> ChannelsOf(std::size_t count) {
    if (count == std::size(kStereo)) return kStereo;
    return count == std::size(kSurround) ? std::span<const Channel>(kSurround) : kMono;
}

const char* GroupOf(std::size_t channels) {
    if (channels == std::size(kStereo)) return "pg:StereoGroup";
    return channels == std::size(kSurround) ? "pg:FivePointOneGroup" : "pg:MonoGroup";
}

std::string GroupURI(const PluginDescription& plugin, bool isInput) {
    return TurtleURI(fmt::format("{}#{}", plugin.uri, isInput ? "in" : "out"));
}

// A plug-in's channels on one side, which hosts connect as one.
std::string ChannelGroup(const PluginDescription& plugin, bool isInput) {
    TurtleStatements group;
    group.Add("a", fmt::format("{} , pg:{}", GroupOf(plugin.channels), isInput ? "InputGroup" : "OutputGroup"));
    group.Add("lv2:symbol", TurtleText(isInput ? "in" : "out"));
    group.Add("lv2:name", TurtleText(isInput ? "In" : "Out"));
    if (!isInput) group.Add("pg:source", GroupURI(plugin, true));
    return group.About(GroupURI(plugin, isInput));
}

TurtleStatements Port(const char* kind, const char* direction, std::size_t index, const std::string& symbol,
                      const std::string& name) {
    TurtleStatements port;
    port.Add("a", fmt::format("{} , lv2:{}Port", kind, direction));
    port.Add("lv2:index", std::to_string(index));
    port.Add("lv2:symbol", TurtleText(symbol));
    port.Add("lv2:name", TurtleText(name));
    return port;
}

void AddRange(TurtleStatements& port, double minimum, double maximum, double defaultValue) {
    port.Add("lv2:minimum", TurtleNumber(minimum));
    port.Add("lv2:maximum", TurtleNumber(maximum));
    port.Add("lv2:default", TurtleNumber(defaultValue));
}

std::vector<std::string> AudioPorts(const PluginDescription& plugin, const PluginPorts& ports) {
    std::vector<std::string> texts;
    for (std::size_t i = 0; i < ports.Inputs() + ports.Outputs(); ++i) {
        const bool isInput = i < ports.Inputs();
        const std::size_t channel = isInput ? i : i - ports.Inputs();
        const Channel& is = ChannelsOf(plugin.channels)[channel];
        TurtleStatements port = Port("lv2:AudioPort", isInput ? "Input" : "Output", i,
                                     fmt::format("{}{}", isInput ? "in" : "out", channel + 1),
                                     fmt::format("{} {}", isInput ? "In" : "Out", is.name));
        port.Add("pg:group", GroupURI(plugin, isInput));
        port.Add("lv2:designation", is.designation);
        texts.push_back(port.Nameless());
    }
    return texts;
}

std::string LatencyPort(const PluginPorts& ports) {
    constexpr double kLongest = 1 << 20;
    TurtleStatements port = Port("lv2:ControlPort", "Output", ports.IndexOf(kLatencyPort), "latency", "Latency");
    port.Add("lv2:designation", "lv2:latency");
    port.Add("lv2:portProperty", "lv2:reportsLatency , lv2:integer");
    port.Add("units:unit", "units:frame");
    AddRange(port, 0, kLongest, 0);
    return port.Nameless();
}

std::string SwitchPort(const PluginPorts& ports, FixedPort which, const char* symbol, const char* name,
                       const char* designation, double defaultValue) {
    TurtleStatements port = Port("lv2:ControlPort", "Input", ports.IndexOf(which), symbol, name);
    port.Add("lv2:designation", designation);
    port.Add("lv2:portProperty", "lv2:toggled , lv2:integer");
    AddRange(port, 0, 1, defaultValue);
    return port.Nameless();
}

std::string ControlPort(const PluginPorts& ports) {
    TurtleStatements port = Port("atom:AtomPort", "Input", ports.IndexOf(kControlPort), "control", "Control");
    port.Add("atom:bufferType", "atom:Sequence");
    port.Add("atom:supports", "time:Position , patch:Message");
    port.Add("rsz:minimumSize", "8192");
    port.Add("lv2:designation", "lv2:control");
    port.Add("lv2:portProperty", "lv2:connectionOptional");
    return port.Nameless();
}

std::string NotifyPort(const PluginPorts& ports) {
    constexpr int kRoom = 8192; // bytes
    TurtleStatements port = Port("atom:AtomPort", "Output", ports.IndexOf(kNotifyPort), "notify", "Notify");
    port.Add("atom:bufferType", "atom:Sequence");
    port.Add("atom:supports", "patch:Message");
    port.Add("rsz:minimumSize", std::to_string(kRoom));
    port.Add("lv2:portProperty", "lv2:connectionOptional");
    return port.Nameless();
}

void AddUnit(TurtleStatements& port, const std::string& unit) {
    if (unit.empty()) return;
    const auto known = kUnits.find(unit);
    if (known != kUnits.end()) return port.Add("units:unit", known->second);
    TurtleStatements own;
    own.Add("a", "units:Unit");
    own.Add("rdfs:label", TurtleText(unit));
    own.Add("units:symbol", TurtleText(unit));
    own.Add("units:render", TurtleText("%f " + unit));
    port.Add("units:unit", own.Nameless());
}

void AddKind(TurtleStatements& port, const ParameterPort& parameter) {
    const auto& info = *parameter.info;
    if (info.GetKind() == Kind::kSwitch) port.Add("lv2:portProperty", "lv2:toggled , lv2:integer");
    if (info.GetKind() == Kind::kNumber && info.IsWhole()) port.Add("lv2:portProperty", "lv2:integer");
    if (info.GetKind() == Kind::kNumber && info.GetScale() == Scale::kLogarithmic)
        port.Add("lv2:portProperty", "pprops:logarithmic");
    if (!info.IsAutomatable()) port.Add("lv2:portProperty", "pprops:expensive , pprops:notAutomatic");
    if (info.GetKind() != Kind::kChoice) return;
    port.Add("lv2:portProperty", "lv2:enumeration , lv2:integer");
    for (int item = 0; item < info.GetItemCount(); ++item) {
        TurtleStatements point;
        point.Add("rdfs:label", TurtleText(krocore::ToStdString(info.GetItemName(item))));
        point.Add("rdf:value", std::to_string(item));
        port.Add("lv2:scalePoint", point.Nameless());
    }
}

std::string TextOf(const PluginPorts& ports, std::size_t number) {
    const ParameterPort& parameter = ports.Parameters()[number];
    const auto& info = *parameter.info;
    TurtleStatements port =
        Port("lv2:ControlPort", info.IsReadOnly() ? "Output" : "Input", ports.FirstParameterPort() + number,
             info.GetID(), krocore::ToStdString(info.GetName()));
    AddKind(port, parameter);
    AddUnit(port, krocore::ToStdString(info.GetUnit()));
    AddRange(port, parameter.Minimum(), parameter.Maximum(), parameter.Default());
    return port.Nameless();
}

Filter PreparedFor(const PluginDescription& plugin) {
    const Filter filter = plugin.effect->create();
    filter->Prepare(kDescribedRate, kBlock, plugin.Layout());
    return filter;
}

} // namespace

void BundleWriter::Write() {
    TurtleStatements panel;
    panel.Add("a", "ui:X11UI");
    panel.Add("ui:binary", "<qoaudio_panels.so>");
    panel.Add("lv2:requiredFeature", "ui:idleInterface , ui:parent , urid:map");
    panel.Add("lv2:optionalFeature", "ui:resize , ui:touch , opts:options , log:log");
    panel.Add("opts:supportedOption", "ui:scaleFactor , <http://lv2plug.in/ns/ext/parameters#sampleRate>");
    panel.Add("lv2:extensionData", "ui:idleInterface");
    fManifest = Common() + panel.About(kPanel);
    std::map<std::string, std::string> files;
    for (const PluginDescription& plugin : AllPlugins()) {
        std::string& text = files.try_emplace(std::string(plugin.effect->shortName) + ".ttl", Common()).first->second;
        AddPlugin(plugin, text);
        AddPresets(plugin, text);
    }
    std::filesystem::create_directories(fFolder);
    for (const auto& [name, text] : files)
        WriteFile(name, text);
    WriteFile("manifest.ttl", fManifest);
}

void BundleWriter::AddPlugin(const PluginDescription& plugin, std::string& text) {
    TurtleStatements entry;
    entry.Add("a", "lv2:Plugin");
    entry.Add("lv2:binary", kBinary);
    entry.Add("rdfs:seeAlso", fmt::format("<{}.ttl>", plugin.effect->shortName));
    fManifest += entry.About(TurtleURI(plugin.uri));

    const Filter filter = PreparedFor(plugin);
    const PluginPorts ports(*filter);
    const EffectSummary& summary = SummaryOf(*plugin.effect);
    TurtleStatements about;
    about.Add("a", fmt::format("lv2:Plugin , lv2:{}", summary.pluginClass));
    about.Add("doap:name", TurtleText(plugin.Name()));
    about.Add("rdfs:comment", TurtleText(summary.sentence));
    about.Add("lv2:project", kProject);
    about.Add("lv2:minorVersion", "2"); // a release: even
    about.Add("lv2:microVersion", "0");
    about.Add("lv2:requiredFeature", "urid:map");
    about.Add("lv2:optionalFeature",
              "lv2:hardRTCapable , work:schedule , opts:options , bufsz:boundedBlockLength , log:log");
    about.Add("opts:supportedOption", "bufsz:maxBlockLength");
    about.Add("lv2:extensionData", "work:interface , state:interface");
    about.Add("ui:ui", kPanel);
    about.Add("pg:mainInput", GroupURI(plugin, true));
    about.Add("pg:mainOutput", GroupURI(plugin, false));
    for (const std::string& port : AudioPorts(plugin, ports))
        about.Add("lv2:port", port);
    about.Add("lv2:port", LatencyPort(ports));
    about.Add("lv2:port", SwitchPort(ports, kEnabledPort, "enabled", "Enabled", "lv2:enabled", 1));
    about.Add("lv2:port", SwitchPort(ports, kFreeWheelPort, "freewheel", "Free-Wheeling", "lv2:freeWheeling", 0));
    about.Add("lv2:port", ControlPort(ports));
    about.Add("lv2:port", NotifyPort(ports));
    for (std::size_t i = 0; i < ports.Parameters().size(); ++i)
        about.Add("lv2:port", TextOf(ports, i));
    text += ChannelGroup(plugin, true) + ChannelGroup(plugin, false) + about.About(TurtleURI(plugin.uri));
}

// "Default" is what a plug-in begins with anyway.
void BundleWriter::AddPresets(const PluginDescription& plugin, std::string& text) {
    for (const qohost::Preset& preset : qohost::FactoryPresets(*plugin.effect)) {
        const std::string subject = TurtleURI(fmt::format("{}:preset:{}", plugin.uri, NameInURI(preset.name)));
        TurtleStatements entry = PresetOf(plugin, preset.name);
        entry.Add("rdfs:seeAlso", fmt::format("<{}.ttl>", plugin.effect->shortName));
        fManifest += entry.About(subject);

        const Filter filter = PreparedFor(plugin);
        qohost::ApplyPreset(*filter, preset);
        text += PresetOf(plugin, preset.name, *filter).About(subject);
    }
}

void BundleWriter::WriteFile(const std::string& name, const std::string& text) const {
    std::ofstream file(fFolder / name, std::ios::binary);
    file << text;
    if (!file.flush()) throw krocore::config::Error((fFolder / name).string() + ": it can't be written");
}

} // namespace qolv2
