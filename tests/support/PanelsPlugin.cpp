// What a plug-in's panel does in a host's process: comes, is used, and goes.

#include "kroui/limner/CairoSupplier.h"
#include "kroui/ui/HeadlessWindow.h"
#include "qoc/components/EffectCatalogue.h"
#include "qocui/module/ComponentUIFactory.h"
#include "qocui/module/Session.h"

// Shows and uses the panel of every effect once; the number of panels.
extern "C" int UsePanels() {
    const qocui::module::Session session;
    const kroui::limner::CairoSupplier supplier;
    int panels = 0;
    for (const qoc::components::EffectDescription& effect : qoc::components::AllEffects()) {
        const auto filter = effect.create();
        const auto panel = qocui::module::ComponentUIFactory::GetInstance().CreateViewForComponent(filter);
        if (!panel) continue;
        const kroui::Rect size = panel->UI_GetLocalRect();
        kroui::ui::HeadlessWindow window(supplier, {size.width, size.height});
        window.Window().SetContent(panel);
        window.Advance(0.05);
        window.Drag({size.width / 2, size.height / 2}, {size.width / 3, size.height / 3});
        window.Advance(0.6);
        ++panels;
    }
    return panels;
}
