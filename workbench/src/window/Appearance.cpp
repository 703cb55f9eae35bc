#include "workbench/window/Appearance.h"

#include "krocore/Localizer.h"
#include "krocore/NumberFormat.h"
#include "krocore/Units.h"
#include "kroui/ui/UI_Window.h"

#include <algorithm>

namespace workbench {

using kroui::ui::Theme;

namespace {

constexpr float kZoomStep = 1.25F;
constexpr float kSmallestZoom = 0.64F; // two steps down

bool IsDark(const kroui::ui::UI_Window& window) {
    return &window.GetTheme() == &Theme::Dark();
}

} // namespace

Appearance::Appearance() : fButton(new MenuButton([this] { return Commands(); })) {
    fButton->UI_SetID("state");
    fButton->SetButtonStyle(MenuButton::ButtonStyle::kFlat);
    fButton->SetTextAlignment(kroui::limner::TextAlignment::kRight);
    fButton->UI_SetTooltip(krocore::Localize("$$$/Workbench/StateTip=Zoom and theme"));
}

MenuButton::Commands Appearance::Commands() {
    if (!Window()) return {};
    return {
        {krocore::Localize("$$$/Workbench/ZoomIn=Zoom In (Ctrl +)"), [this] { ZoomIn(); }, fZoom < fLargestZoom},
        {krocore::Localize("$$$/Workbench/ZoomOut=Zoom Out (Ctrl -)"), [this] { ZoomOut(); }, fZoom > kSmallestZoom},
        {krocore::Localize("$$$/Workbench/ZoomToNormal=100 % (Ctrl 0)"), [this] { SetZoom(1); }, fZoom != 1},
        {},
        {krocore::Localize(IsDark(*Window()) ? "$$$/Workbench/ToLight=Light Theme (Ctrl T)"
                                             : "$$$/Workbench/ToDark=Dark Theme (Ctrl T)"),
         [this] { ToggleTheme(); }},
    };
}

void Appearance::SetZoom(float zoom) {
    fZoom = std::clamp(zoom, kSmallestZoom, fLargestZoom);
    if (Window()) Window()->SetZoom(fZoom);
    Show();
}

void Appearance::ZoomIn() {
    SetZoom(fZoom * kZoomStep);
}

void Appearance::ZoomOut() {
    SetZoom(fZoom / kZoomStep);
}

void Appearance::ToggleTheme() {
    if (Window()) Window()->SetTheme(IsDark(*Window()) ? Theme::Light() : Theme::Dark());
}

void Appearance::Show() {
    if (!Window()) return;
    fButton->SetText(krocore::ReplacePlaceholders(krocore::Localize("$$$/Workbench/State=zoom @0 %  @1"),
                                                  {krocore::FormatNumber(krocore::PercentOfFraction(fZoom), 0),
                                                   krocore::FromASCII(Window()->GetTheme().Name())}));
}

} // namespace workbench
