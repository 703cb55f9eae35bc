// window_host [SECONDS]: two tracks, each with an effect, a preset and the effect's panel, heard together.

#include <host/FactoryPresets.h>
#include <host/PlaybackEngine.h>
#include <host/TestSignal.h>
#include <krosdl/SdlWindow.h>
#include <krosdl/SoundDevice.h>
#include <kroui/ui/UI_NodeManager.h>
#include <qocui/module/ComponentUIFactory.h>
#include <qocui/module/Module.h>

#include <algorithm>
#include <array>
#include <exception>
#include <iostream>

namespace {

constexpr std::size_t kChannels = 2;
constexpr float kSampleRate = 48000; // hertz

// A sound, played again and again through an effect, and the effect's panel.
struct Track {
    Track(std::string_view effectName, std::string_view presetName, double seconds) {
        const auto* const effect = qoc::components::FindEffectByShortName(effectName);
        const auto filter = effect->create();
        const auto sound = std::make_shared<const qohost::Sound>(qohost::MakeTestSignal(seconds, kSampleRate));
        engine.Open(sound, filter, kChannels);
        engine.SetLoop(true);
        for (const qohost::Preset& preset : qohost::FactoryPresets(*effect))
            if (preset.name == presetName) qohost::ApplyPreset(*filter, preset);
        panel = qocui::module::ComponentUIFactory::GetInstance().CreateViewForComponent(filter);
        engine.Play(); // heard as soon as a device asks
    }
    qohost::PlaybackEngine engine;
    boost::intrusive_ptr<qocui::controls::AudioComponentEditorViewBase> panel;
};
using Tracks = std::array<Track, 2>;

// The sum of both, a short block at a time. Sound thread: nothing is allocated.
void Mix(Tracks& tracks, float* sound, std::size_t frames) {
    std::array<float, 256 * kChannels> other;
    while (frames > 0) {
        const std::size_t count = std::min(frames, other.size() / kChannels);
        tracks[0].engine.Render(sound, count, kChannels);
        tracks[1].engine.Render(other.data(), count, kChannels);
        for (std::size_t i = 0; i < count * kChannels; ++i)
            *sound++ += other[i];
        frames -= count;
    }
}

void Run(const kroui::limner::CairoSupplier& supplier, double seconds) {
    Tracks tracks{Track{"fftfilter", "Telephone", 10}, Track{"hardlimiter", "Safe Peaks", 7}};
    krosdl::SdlWindow window(supplier, {});
    window.SetTitle(u"Two tracks");

    // The panels beside each other, and the window around them: now, and whenever a panel has changed its size.
    const boost::intrusive_ptr<kroui::ui::UI_SubView> content(new kroui::ui::UI_SubView);
    const auto arrange = [&] {
        kroui::Size size;
        for (const Track& track : tracks) {
            const kroui::Rect frame = track.panel->UI_GetFrame();
            track.panel->UI_SetFrame({size.width, 0, frame.width, frame.height});
            size = {size.width + frame.width, std::max(size.height, frame.height)};
        }
        window.Resize(size);
    };
    for (const Track& track : tracks) {
        content->ChildPushBack(track.panel);
        track.panel->GetContentSizeChangedSignal().connect(arrange);
    }
    window.Window().SetContent(content);
    arrange();

    krosdl::SoundDevice device; // goes before the engines that it asks
    if (!device.Open(kSampleRate, kChannels, [&](float* sound, auto frames, auto) { Mix(tracks, sound, frames); }))
        std::cerr << "nothing is heard: " << device.Problem() << '\n';
    device.Run(true);
    const auto& clock = kroui::ui::UI_NodeManager::Get();
    const double end = clock.Now() + seconds;
    window.Run([&] { // the event loop, which runs the timers: panels would not follow anything without
        for (Track& track : tracks)
            track.engine.Poll();
        if (clock.Now() >= end) window.Close();
    });
}

} // namespace

int main(int argc, char** argv) try {
    kroui::limner::CairoSupplier supplier;
    qocui::module::Initialize(&supplier); // before the first view
    const std::shared_ptr<void> whenViewsAreGone(nullptr, [](void*) { qocui::module::Terminate(); });
    Run(supplier, argc > 1 ? std::stod(argv[1]) : 1e9);
} catch (const std::exception& error) {
    std::cerr << error.what() << '\n';
    return 1;
}
