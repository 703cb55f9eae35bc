#include "AllocationCounter.h"
#include "LilvHost.h"
#include "SourcePaths.h"
#include "host/Preset.h"
#include "qolv2/PluginCatalogue.h"
#include "qolv2/PluginPorts.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <set>

namespace qolv2 {
namespace {

using Channels = std::vector<std::vector<float>>;
using test::LilvHost;
using Instance = test::LilvPluginInstance;
using FilterPtr = boost::intrusive_ptr<kroaudiofilterhost::AudioFilter>;

constexpr float kRate = 48000;
constexpr std::size_t kFrames = 20000;
constexpr std::size_t kLongestBlock = 4096; // what an effect is prepared for when the host says nothing

LilvHost& Host() {
    static LilvHost sHost(QO_LV2_BUNDLE);
    return sHost;
}

Channels Noise(std::size_t channels, std::size_t frames = kFrames) {
    std::mt19937 random(7);
    std::uniform_real_distribution<float> values(-0.5F, 0.5F);
    Channels sound(channels, std::vector<float>(frames));
    for (auto& channel : sound)
        std::ranges::generate(channel, [&] { return values(random); });
    return sound;
}

FilterPtr PreparedFor(const PluginDescription& plugin) {
    const FilterPtr filter = plugin.effect->create();
    filter->Prepare(kRate, kLongestBlock, plugin.Layout());
    return filter;
}

// In blocks of all sizes; what is asked of the worker is done between them.
Channels ThroughPlugin(Instance& instance, const Channels& input, std::size_t outputs) {
    Channels output(outputs, std::vector<float>(input.front().size()));
    std::mt19937 random(3);
    for (std::size_t begin = 0; begin < input.front().size();) {
        const std::size_t most = begin % 3 == 0 ? 8192 : 64;
        const std::size_t frames = std::min(1 + random() % most, input.front().size() - begin);
        for (std::size_t i = 0; i < input.size(); ++i)
            instance.ConnectAudio(i, const_cast<float*>(input[i].data()) + begin);
        for (std::size_t i = 0; i < outputs; ++i)
            instance.ConnectAudio(input.size() + i, output[i].data() + begin);
        instance.Run(frames);
        instance.DoWork();
        begin += frames;
    }
    return output;
}

Channels Processed(kroaudiofilterhost::AudioFilter& filter, const Channels& input) {
    Channels output(filter.GetNumberOfOutputChannels(), std::vector<float>(input.front().size()));
    for (std::size_t begin = 0; begin < input.front().size(); begin += 512) {
        std::vector<const float*> inputs;
        std::vector<float*> outputs;
        for (const auto& channel : input)
            inputs.push_back(channel.data() + begin);
        for (auto& channel : output)
            outputs.push_back(channel.data() + begin);
        filter.Process({inputs, outputs, std::min<std::size_t>(512, input.front().size() - begin)});
    }
    return output;
}

double LargestDifference(const Channels& a, const Channels& b) {
    double largest = 0;
    for (std::size_t channel = 0; channel < a.size(); ++channel)
        for (std::size_t i = 0; i < a[channel].size(); ++i)
            largest = std::max(largest, std::abs(static_cast<double>(a[channel][i]) - b[channel][i]));
    return largest;
}

// At the defaults, and a third of the way up every port.
TEST(Lv2Bundle, EveryPluginSoundsAsItsEffectAndTellsItsLatency) {
    for (const PluginDescription& plugin : AllPlugins()) {
        for (const bool isDefault : {true, false}) {
            SCOPED_TRACE(plugin.uri + (isDefault ? "" : " set"));
            const FilterPtr filter = PreparedFor(plugin);
            const PluginPorts ports(*filter);
            Instance instance(Host(), plugin.uri, kRate);
            for (std::size_t i = 0; i < ports.Parameters().size() && !isDefault; ++i) {
                const ParameterPort& port = ports.Parameters()[i];
                if (port.info->IsReadOnly()) continue;
                float value = port.Minimum() + (port.Maximum() - port.Minimum()) / 3;
                if (port.info->GetKind() != kroaudiofilterhost::AudioFilterParameterInfo::Kind::kNumber)
                    value = std::round(value);
                instance.Control(ports.FirstParameterPort() + i) = value;
                filter->SetParameterValue(port.parameter, port.ToStored(value));
            }
            filter->Prepare(kRate, kLongestBlock, plugin.Layout());
            instance.Activate();
            const Channels input = Noise(ports.Inputs());
            EXPECT_LT(LargestDifference(ThroughPlugin(instance, input, ports.Outputs()), Processed(*filter, input)),
                      1e-6);
            EXPECT_EQ(instance.Control("latency"), static_cast<float>(filter->Latency()));
        }
    }
}

TEST(Lv2Bundle, DescriptionsSayWhatInstancesHave) {
    std::set<std::string> uris;
    for (const PluginDescription& plugin : AllPlugins()) {
        SCOPED_TRACE(plugin.uri);
        EXPECT_TRUE(uris.insert(plugin.uri).second);
        const LilvPlugin* const described = Host().Find(plugin.uri);
        ASSERT_NE(described, nullptr);
        const FilterPtr filter = PreparedFor(plugin);
        const PluginPorts ports(*filter);
        ASSERT_EQ(lilv_plugin_get_num_ports(described), ports.Count());
        std::vector<float> minima(ports.Count());
        std::vector<float> maxima(ports.Count());
        std::vector<float> defaults(ports.Count());
        lilv_plugin_get_port_ranges_float(described, minima.data(), maxima.data(), defaults.data());
        std::set<std::string> symbols;
        for (std::uint32_t i = 0; i < ports.Count(); ++i)
            EXPECT_TRUE(symbols
                            .insert(lilv_node_as_string(
                                lilv_port_get_symbol(described, lilv_plugin_get_port_by_index(described, i))))
                            .second);
        for (std::size_t i = 0; i < ports.Parameters().size(); ++i) {
            const ParameterPort& port = ports.Parameters()[i];
            const std::size_t index = ports.FirstParameterPort() + i;
            const LilvPort* const its = lilv_plugin_get_port_by_index(described, static_cast<std::uint32_t>(index));
            EXPECT_EQ(lilv_node_as_string(lilv_port_get_symbol(described, its)), port.info->GetID());
            EXPECT_LT(minima[index], maxima[index]) << port.info->GetID();
            EXPECT_LE(minima[index], defaults[index]) << port.info->GetID();
            EXPECT_LE(defaults[index], maxima[index]) << port.info->GetID();
            // What is read from a port comes back from it.
            EXPECT_NEAR(port.FromStored(port.ToStored(defaults[index])), defaults[index],
                        std::abs(maxima[index]) * 1e-5)
                << port.info->GetID();
        }
    }
}

TEST(Lv2Bundle, SwitchedOffTheSoundPassesAsLateAsTheEffect) {
    Instance instance(Host(), "urn:qoaudio:hardlimiter", kRate);
    instance.Control("enabled") = 0;
    instance.Activate();
    const Channels input = Noise(2);
    const Channels output = ThroughPlugin(instance, input, 2);
    const auto latency = static_cast<std::size_t>(instance.Control("latency"));
    ASSERT_GT(latency, 0U);
    for (std::size_t i = latency; i < kFrames; ++i)
        ASSERT_EQ(output[1][i], input[1][i - latency]) << i;
}

TEST(Lv2Bundle, ASizeIsTakenWhileItPlaysWithItsLatency) {
    Instance instance(Host(), "urn:qoaudio:adaptivenoisereduction", kRate);
    instance.Activate();
    const Channels input = Noise(2);
    ThroughPlugin(instance, input, 2);
    const float latency = instance.Control("latency");
    instance.Control("fftSize") = 0;
    ThroughPlugin(instance, input, 2);
    EXPECT_LT(instance.Control("latency"), latency);
    EXPECT_GT(instance.Control("latency"), 0);
    const Channels output = ThroughPlugin(instance, input, 2);
    // That of an effect which was prepared so from the beginning.
    const FilterPtr filter = PreparedFor(*FindPlugin("urn:qoaudio:adaptivenoisereduction"));
    const PluginPorts ports(*filter);
    const auto size =
        std::ranges::find(ports.Parameters(), "fftSize", [](const ParameterPort& p) { return p.info->GetID(); });
    filter->SetParameterValue(size->parameter, size->ToStored(0));
    filter->Prepare(kRate, kLongestBlock, kromediatypes::AudioChannelLayout::Stereo());
    EXPECT_EQ(instance.Control("latency"), static_cast<float>(filter->Latency()));
    EXPECT_TRUE(std::ranges::all_of(output[0], [](float sample) { return std::isfinite(sample); }));
}

TEST(Lv2Bundle, SettingsChangeWithEveryBlockWithoutAllocating) {
    for (const PluginDescription& plugin : AllPlugins()) {
        if (plugin.channels != 2) continue;
        SCOPED_TRACE(plugin.uri);
        const FilterPtr filter = PreparedFor(plugin);
        const PluginPorts ports(*filter);
        Instance instance(Host(), plugin.uri, kRate);
        instance.Activate();
        Channels sound = Noise(2, 256);
        for (std::size_t port = 0; port < 4; ++port)
            instance.ConnectAudio(port, sound[1 - port % 2].data()); // outputs are the other channel's inputs
        std::mt19937 random(5);
        for (int block = 0; block < 20; ++block) {
            for (std::size_t i = 0; i < ports.Parameters().size(); ++i) {
                const ParameterPort& port = ports.Parameters()[i];
                if (port.info->IsReadOnly() || !port.info->IsAutomatable()) continue;
                const float share = static_cast<float>(random() % 1000) / 999;
                instance.Control(ports.FirstParameterPort() + i) =
                    port.Minimum() + share * (port.Maximum() - port.Minimum());
            }
            const std::size_t before = AllocationCount();
            instance.Run(block % 2 == 0 ? 256 : 1);
            EXPECT_EQ(AllocationCount(), before);
            instance.DoWork();
            EXPECT_TRUE(std::ranges::all_of(sound[0], [](float sample) { return std::isfinite(sample); }));
        }
    }
}

using StatePtr = std::unique_ptr<LilvState, void (*)(LilvState*)>;

StatePtr StateOf(Instance& instance) {
    return {lilv_state_new_from_instance(instance.Plugin(), instance.Instance(), Host().URIDMap(), nullptr, nullptr,
                                         nullptr, nullptr, nullptr, nullptr, 0, nullptr),
            lilv_state_free};
}

// With this object of Turtle as the value of the bundle's property.
StatePtr StateWith(const std::string& value) {
    const std::string turtle =
        "@prefix pset: <http://lv2plug.in/ns/ext/presets#> .\n@prefix state: <http://lv2plug.in/ns/ext/state#> .\n"
        "@prefix lv2: <http://lv2plug.in/ns/lv2core#> .\n"
        "<urn:s> a pset:Preset ; lv2:appliesTo <urn:qoaudio:any> ; state:state [ <urn:qoaudio:state> " +
        value + " ] .\n";
    return {lilv_state_new_from_string(Host().World(), Host().URIDMap(), turtle.c_str()), lilv_state_free};
}

StatePtr StateWithText(const std::string& text) {
    return StateWith("\"\"\"" + text + "\"\"\"");
}

void Restore(const StatePtr& state, Instance& instance) {
    lilv_state_restore(state.get(), instance.Instance(), nullptr, nullptr, 0, nullptr);
}

TEST(Lv2Bundle, StateComesBackWithItsCurve) {
    const char* const uri = "urn:qoaudio:dynamics";
    Instance instance(Host(), uri, kRate);
    instance.Activate();
    Restore(
        StateWithText(
            R"({"version": 1, "effect": "qoc.Dynamics", "name": "", "curves": {"curve": [[-100, -90], [-30, -30], [0, -12]]}})"),
        instance);
    const StatePtr kept = StateOf(instance);
    EXPECT_FALSE(lilv_state_equals(kept.get(), StateOf(*std::make_unique<Instance>(Host(), uri, kRate)).get()));
    Instance other(Host(), uri, kRate);
    Restore(kept, other);
    other.Activate();
    ThroughPlugin(other, Noise(2, 100), 2);
    EXPECT_TRUE(lilv_state_equals(kept.get(), StateOf(other).get()));
}

TEST(Lv2Bundle, AStateThatIsNoneIsToldAndLeavesAllAsItIs) {
    const char* const wrongs[] = {
        R"("no state")",
        R"("")",
        R"("{\"version\": 1")",
        "17",
        R"("{\"version\": 99, \"effect\": \"qoc.Dynamics\", \"name\": \"\"}")",
        R"("{\"effect\": \"qoc.Echo\", \"name\": \"\"}")",
        R"("{\"effect\": \"qoc.Dynamics\", \"name\": \"\", \"natural\": {\"ratio\": \"much\"}}")"};
    Instance instance(Host(), "urn:qoaudio:dynamics", kRate);
    instance.Activate();
    const StatePtr before = StateOf(instance);
    for (const char* const wrong : wrongs) {
        Host().log.clear();
        Restore(StateWith(wrong), instance);
        EXPECT_NE(Host().log.find("urn:qoaudio:dynamics: the state is not taken: "), std::string::npos)
            << wrong << ": " << Host().log;
        EXPECT_TRUE(lilv_state_equals(before.get(), StateOf(instance).get())) << wrong;
    }
}

// In place; what is asked of the worker stays undone.
void RunBlock(Instance& instance, Channels& sound) {
    for (std::size_t port = 0; port < 2 * sound.size(); ++port)
        instance.ConnectAudio(port, sound[port % sound.size()].data());
    instance.Run(sound.front().size());
}

TEST(Lv2Bundle, AStateIsTakenWhileAnotherFilterIsOnItsWay) {
    const char* const uri = "urn:qoaudio:fftfilter";
    constexpr float kSize = 5;
    const StatePtr state = StateWithText(
        R"({"effect": "qoc.FFTFilter", "name": "", "natural": {"fftSize": 5}, "curves": {"curve": [[20, 0.2], [900, 0.7]]}})");
    Instance plain(Host(), uri, kRate);
    plain.Control("fftSize") = kSize;
    plain.Activate();
    Restore(state, plain);
    const StatePtr wanted = StateOf(plain);
    const float latency = [&] {
        plain.Activate();
        Channels sound = Noise(2, 512);
        RunBlock(plain, sound);
        return plain.Control("latency");
    }();
    for (const bool isLost : {false, true}) {
        SCOPED_TRACE(isLost ? "and never arrives" : "and arrives");
        Instance instance(Host(), uri, kRate);
        instance.Activate();
        Channels sound = Noise(2, 512);
        instance.Control("fftSize") = 0;
        RunBlock(instance, sound);
        instance.Work();
        Restore(state, instance);
        instance.Control("fftSize") = kSize; // as a host does, besides
        EXPECT_TRUE(lilv_state_equals(wanted.get(), StateOf(instance).get()));
        if (isLost) {
            instance.Forget();
            instance.Activate();
        }
        for (int block = 0; block < 3; ++block) {
            instance.DoWork();
            RunBlock(instance, sound);
        }
        EXPECT_TRUE(lilv_state_equals(wanted.get(), StateOf(instance).get()));
        EXPECT_EQ(instance.Control("latency"), latency);
    }
}

TEST(Lv2Bundle, ARateThatTheEffectRefusesIsToldAndSoundPasses) {
    for (const double rate : {500.0, 0.0, -48000.0, 1e9, std::nan("")}) {
        SCOPED_TRACE(rate);
        Host().log.clear();
        Instance instance(Host(), "urn:qoaudio:reverb", rate);
        EXPECT_NE(Host().log.find("urn:qoaudio:reverb: "), std::string::npos);
        instance.Activate();
        const Channels input = Noise(2);
        EXPECT_EQ(LargestDifference(ThroughPlugin(instance, input, 2), input), 0);
        Restore(StateOf(instance), instance);
    }
}

} // namespace
} // namespace qolv2
