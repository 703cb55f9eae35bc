// lv2_runner BUNDLE [BLOCKS]: plays all plug-ins of the bundle as the worst host would: every control moves with every
// block, blocks have 1 to 8192 frames, outputs are inputs of any channel, events come in. Beside each plays another one
// whose buffers are all apart: both must sound the same. Where the program is linked with RealTimeWatch.cpp, nothing
// that a sound thread must not do may happen meanwhile.
#include "LilvHost.h"
#include "RealTimeWatch.h"
#include "qolv2/PluginCatalogue.h"
#include "qolv2/PluginPorts.h"

#include <lv2/atom/forge.h>
#include <lv2/atom/util.h>
#include <lv2/patch/patch.h>
#include <lv2/time/time.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <mutex>
#include <random>
#include <stdexcept>
#include <thread>

namespace {

using Channels = std::vector<std::vector<float>>;
using Random = std::mt19937;

constexpr double kRate = 48000;
constexpr std::size_t kLongest = 8192;
constexpr std::size_t kUsualLongest = 4096; // when the host says nothing
constexpr std::array<std::size_t, 9> kLengths = {1, 8192, 2, 63, 64, 100, 512, 1000, 4095};
constexpr int kBlocksPerSize = 5; // from one change of what can't be automated to the next

struct Watched {
    Watched() {
        if (test::RealTimeWatch::Begin != nullptr) test::RealTimeWatch::Begin();
    }
    Watched(const Watched&) = delete;
    Watched& operator=(const Watched&) = delete;
    ~Watched() {
        if (test::RealTimeWatch::End != nullptr) test::RealTimeWatch::End();
    }
};

std::string Offence() {
    return test::RealTimeWatch::Offence != nullptr ? test::RealTimeWatch::Offence() : std::string();
}

// What a host, or a panel, writes to the control port.
class Events {
public:
    explicit Events(test::LilvHost& host) : fHost(host) { lv2_atom_forge_init(&fForge, host.URIDMap()); }

    void Write(const kroaudiofilterhost::AudioFilter& filter, Random& random) {
        lv2_atom_forge_set_buffer(&fForge, bytes.data(), bytes.size());
        LV2_Atom_Forge_Frame sequence;
        lv2_atom_forge_sequence_head(&fForge, &sequence, 0);
        WritePosition(random);
        for (const auto& curve : filter.GetCurves())
            WriteCurve(filter, curve, random);
        WriteObject(LV2_PATCH__Get, [] {});
        lv2_atom_forge_pop(&fForge, &sequence);
    }

    alignas(8) std::array<std::uint8_t, 8192> bytes{};

private:
    template <class Body>
    void WriteObject(const char* type, const Body& body) {
        LV2_Atom_Forge_Frame frame;
        lv2_atom_forge_frame_time(&fForge, 0);
        lv2_atom_forge_object(&fForge, &frame, 0, fHost.Map(type));
        body();
        lv2_atom_forge_pop(&fForge, &frame);
    }

    void WritePosition(Random& random) {
        WriteObject(LV2_TIME__Position, [&] {
            lv2_atom_forge_key(&fForge, fHost.Map(LV2_TIME__frame));
            lv2_atom_forge_long(&fForge, static_cast<std::int64_t>(random() % 1000000));
            lv2_atom_forge_key(&fForge, fHost.Map(LV2_TIME__speed));
            lv2_atom_forge_float(&fForge, static_cast<float>(random() % 2));
            lv2_atom_forge_key(&fForge, fHost.Map(LV2_TIME__beatsPerMinute));
            lv2_atom_forge_float(&fForge, 40 + static_cast<float>(random() % 200));
        });
    }

    // Points from one end of the curve to the other.
    void WriteCurve(const kroaudiofilterhost::AudioFilter& filter, const kroaudiofilterhost::AudioFilterCurve& curve,
                    Random& random) {
        constexpr int kPoints = 3;
        std::vector<float> values;
        for (int point = 0; point < kPoints; ++point) {
            const float share = static_cast<float>(point) / (kPoints - 1);
            values.push_back(filter.GetParameterInfo(curve.IndexOfX(point))->ToNatural(share));
            values.push_back(
                filter.GetParameterInfo(curve.IndexOfY(point))->ToNatural(static_cast<float>(random() % 100) / 99));
        }
        WriteObject(LV2_PATCH__Set, [&] {
            lv2_atom_forge_key(&fForge, fHost.Map(LV2_PATCH__property));
            lv2_atom_forge_urid(&fForge, fHost.Map("urn:qoaudio:curve:" + curve.id));
            lv2_atom_forge_key(&fForge, fHost.Map(LV2_PATCH__value));
            lv2_atom_forge_vector(&fForge, sizeof(float), fHost.Map(LV2_ATOM__Float),
                                  static_cast<std::uint32_t>(values.size()), values.data());
        });
    }

    test::LilvHost& fHost;
    LV2_Atom_Forge fForge{};
};

// An instance with buffers for its sound and its events.
struct Player {
    Player(test::LilvHost& host, const std::string& uri, const qolv2::PluginPorts& itsPorts)
        : instance(host, uri, kRate), ports(itsPorts),
          buffers(ports.Inputs() + ports.Outputs(), std::vector<float>(2 * kLongest)) {
        instance.ConnectAudio(ports.IndexOf(qolv2::kNotifyPort), reinterpret_cast<float*>(told.data()));
        instance.Activate();
    }

    void Run(std::size_t frames, Events& events) {
        instance.ConnectAudio(ports.IndexOf(qolv2::kControlPort), reinterpret_cast<float*>(events.bytes.data()));
        reinterpret_cast<LV2_Atom_Sequence*>(told.data())->atom.size = told.size() - sizeof(LV2_Atom);
        const Watched watched;
        instance.Run(frames);
    }
    void Deliver() {
        const Watched watched;
        instance.Deliver();
    }

    test::LilvPluginInstance instance;
    const qolv2::PluginPorts& ports;
    Channels buffers;
    alignas(8) std::array<std::uint8_t, 8192> told{};
};

// How the buffers of a block lie: which of the overlapped player's are inputs, and which outputs.
struct Layout {
    std::vector<float*> inputs;
    std::vector<float*> outputs;
};

// A block that is longer than the host has said is played in pieces: then one begins where the other does.
Layout Overlapping(Channels& buffers, const qolv2::PluginPorts& ports, std::size_t frames, Random& random) {
    const std::size_t inputs = ports.Inputs();
    const std::size_t outputs = ports.Outputs();
    const std::size_t turn = random() % inputs;                                 // an output is another channel's input
    const std::size_t shift = frames <= kUsualLongest ? random() % 3 * 100 : 0; // or a part of it
    const bool isOneInput = random() % 4 == 0;
    Layout layout;
    for (std::size_t i = 0; i < inputs; ++i)
        layout.inputs.push_back(buffers[isOneInput ? 0 : i].data());
    for (std::size_t i = 0; i < outputs; ++i)
        layout.outputs.push_back(buffers[(i + turn) % std::max(inputs, outputs)].data() + shift);
    return layout;
}

class PluginRun {
public:
    PluginRun(test::LilvHost& host, const qolv2::PluginDescription& plugin)
        : fFilter(plugin.effect->create()), fPorts([&]() -> kroaudiofilterhost::AudioFilter& {
              fFilter->Prepare(kRate, kLongest, plugin.Layout());
              return *fFilter;
          }()),
          fApart(host, plugin.uri, fPorts), fOverlapped(host, plugin.uri, fPorts), fEvents(host) {}

    // Throws std::runtime_error that says what went wrong.
    void Play(int blocks) {
        for (int block = 0; block < blocks; ++block) {
            MoveControls(block % kBlocksPerSize == 0);
            fEvents.Write(*fFilter, fRandom);
            PlayBlock(kLengths[static_cast<std::size_t>(block) % kLengths.size()]);
        }
    }

private:
    void MoveControls(bool withSizes) {
        for (std::size_t i = 0; i < fPorts.Parameters().size(); ++i) {
            const qolv2::ParameterPort& port = fPorts.Parameters()[i];
            if (port.info->IsReadOnly() || !(withSizes || port.info->IsAutomatable())) continue;
            const float share = static_cast<float>(fRandom() % 1000) / 999;
            Set(fPorts.FirstParameterPort() + i, port.Minimum() + share * (port.Maximum() - port.Minimum()));
        }
        Set(fPorts.IndexOf(qolv2::kEnabledPort), fRandom() % 4 != 0);
        if (withSizes) Set(fPorts.IndexOf(qolv2::kFreeWheelPort), fRandom() % 2 != 0);
    }

    void Set(std::size_t port, float value) {
        fApart.instance.Control(port) = value;
        fOverlapped.instance.Control(port) = value;
    }

    void PlayBlock(std::size_t frames) {
        const Layout layout = Overlapping(fOverlapped.buffers, fPorts, frames, fRandom);
        std::uniform_real_distribution<float> values(-0.7F, 0.7F);
        for (float* const input : layout.inputs)
            std::generate_n(input, frames, [&] { return values(fRandom); });
        for (std::size_t i = 0; i < fPorts.Inputs(); ++i) {
            std::copy_n(layout.inputs[i], frames, fApart.buffers[i].data());
            fApart.instance.ConnectAudio(i, fApart.buffers[i].data());
            fOverlapped.instance.ConnectAudio(i, layout.inputs[i]);
        }
        for (std::size_t i = 0; i < fPorts.Outputs(); ++i) {
            fApart.instance.ConnectAudio(fPorts.Inputs() + i, fApart.buffers[fPorts.Inputs() + i].data());
            fOverlapped.instance.ConnectAudio(fPorts.Inputs() + i, layout.outputs[i]);
        }
        for (Player* const player : {&fApart, &fOverlapped}) {
            player->Run(frames, fEvents);
            if (const std::string offence = Offence(); !offence.empty()) throw std::runtime_error(offence);
            player->instance.Work();
            player->Deliver();
            if (const std::string offence = Offence(); !offence.empty()) throw std::runtime_error(offence);
        }
        Compare(layout, frames);
    }

    void Compare(const Layout& layout, std::size_t frames) const {
        for (std::size_t i = 0; i < fPorts.Outputs(); ++i) {
            const float* const apart = fApart.buffers[fPorts.Inputs() + i].data();
            if (!std::all_of(apart, apart + frames, [](float sample) { return std::isfinite(sample); }))
                throw std::runtime_error("a sample is not finite");
            if (!std::equal(apart, apart + frames, layout.outputs[i]))
                throw std::runtime_error("the sound follows how the buffers lie");
        }
    }

    boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> fFilter;
    qolv2::PluginPorts fPorts;
    Player fApart;
    Player fOverlapped;
    Events fEvents;
    Random fRandom{11};
};

// Whether what is to be noticed is.
void CheckWatch() {
    if (test::RealTimeWatch::Offence == nullptr) return;
    const auto expect = [](const char* what, const auto& offend) {
        {
            const Watched watched;
            offend();
        }
        if (!Offence().starts_with(what)) throw std::runtime_error(std::string("the watch does not notice ") + what);
    };
    std::mutex mutex;
    void* volatile memory = nullptr; // or the compiler does without it
    expect("malloc", [&] { memory = std::malloc(1); });
    expect("free", [&] { std::free(memory); });
    expect("pthread_mutex_lock", [&] { const std::lock_guard lock(mutex); });
    if (test::RealTimeWatch::SeesSystemCalls()) expect("system call", [] { std::this_thread::yield(); });
}

} // namespace

int main(int argc, char** argv) try {
    if (argc < 2) throw std::runtime_error("usage: lv2_runner BUNDLE [BLOCKS]");
    const int blocks = argc > 2 ? std::atoi(argv[2]) : 2 * static_cast<int>(kLengths.size());
    CheckWatch();
    test::LilvHost host(argv[1]);
    int faults = 0;
    for (const qolv2::PluginDescription& plugin : qolv2::AllPlugins()) {
        try {
            PluginRun(host, plugin).Play(blocks);
        } catch (const std::exception& error) {
            std::fprintf(stderr, "%s: %s\n", plugin.uri.c_str(), error.what());
            ++faults;
        }
    }
    if (!host.log.empty()) std::fprintf(stderr, "the log says:\n%s", host.log.c_str());
    if (test::RealTimeWatch::SeesSystemCalls != nullptr)
        std::printf("watched: memory, locks%s\n", test::RealTimeWatch::SeesSystemCalls() ? ", system calls" : "");
    return faults > 0 || !host.log.empty() ? 1 : 0;
} catch (const std::exception& error) {
    std::fprintf(stderr, "lv2_runner: %s\n", error.what());
    return 1;
}
