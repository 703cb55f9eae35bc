// The smallest host: makes an effect and its panel, shows the panel in a window, moves a slider as a user would, and
// saves what is seen as a PNG file. The window has no screen; a program with one implements kroui::ui::WindowBackend
// and hands the system's events to a kroui::ui::UI_Window.

#include <kroui/limner/CairoSupplier.h>
#include <kroui/ui/HeadlessWindow.h>
#include <qoc/components/ComponentIDs.h>
#include <qoc/components/EffectCatalogue.h>
#include <qocui/module/ComponentUIFactory.h>
#include <qocui/module/Module.h>
#include <uit/controls/UI_EditNumber.h>

#include <cmath>
#include <exception>
#include <iostream>

namespace {

constexpr int kFirstGain = 2; // of the amplify effect's parameters

// Normalised 0...1 is -96...+48 dB.
float GainInDecibels(const kroaudiofilterhost::AudioFilter& filter) {
    return 144 * filter.GetParameterValue(kFirstGain) - 96;
}

// Drags the first channel's knob from 0 dB, two thirds along the track, to the middle, which is -24 dB.
bool DragFirstSlider(kroui::ui::HeadlessWindow& window, kroui::ui::UI_Node& panel) {
    kroui::ui::UI_Node* const sliders = panel.UI_FindNode("GainControlsContainer");
    const auto* slider = sliders ? dynamic_cast<uit::controls::UI_EditNumber*>(sliders->Child(0)) : nullptr;
    if (!slider) return false;
    const kroui::Rect track = slider->Layout().track;
    const float y = track.Centre().y;
    window.Drag(slider->UI_LocalToWindow({track.left + track.width * 2 / 3, y}),
                slider->UI_LocalToWindow({track.Centre().x, y}));
    return true;
}

bool ShowPanel(const kroui::limner::CairoSupplier& supplier, const char* picture) {
    const auto filter = qoc::components::CreateEffect(qoc::components::kAmplifyComponentID);
    const auto panel = qocui::module::ComponentUIFactory::GetInstance().CreateViewForComponent(filter);
    if (!panel) {
        std::cerr << "there is no panel for the effect\n";
        return false;
    }

    constexpr float kScale = 2; // pixels a view unit, as on a high-resolution screen
    const kroui::Rect size = panel->UI_GetLocalRect();
    kroui::ui::HeadlessWindow window(supplier, {size.width, size.height}, kScale);
    window.Window().SetContent(panel);
    window.Paint();

    if (!DragFirstSlider(window, *panel)) {
        std::cerr << "the panel has no slider\n";
        return false;
    }
    window.Paint();
    kroui::limner::WritePNG(*window.Snapshot(), picture);

    const float gain = GainInDecibels(*filter);
    std::cout << "gain after the drag: " << gain << " dB; panel drawn to " << picture << '\n';
    return std::abs(gain + 24) < 1.5F;
}

} // namespace

int main(int argc, char** argv) {
    kroui::limner::CairoSupplier supplier;
    qocui::module::Initialize(&supplier); // once, before the first view
    bool succeeded = false;
    try {
        succeeded = ShowPanel(supplier, argc > 1 ? argv[1] : "amplify.png");
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
    }
    qocui::module::Terminate(); // after the last view is gone
    return succeeded ? 0 : 1;
}
