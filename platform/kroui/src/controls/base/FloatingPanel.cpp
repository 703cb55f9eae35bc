#include "kroui/controls/FloatingPanel.h"

#include "kroui/ui/PixelGrid.h"

#include <algorithm>
#include <cmath>

namespace kroui::controls {

namespace {

constexpr float kRadius = 6;

void DrawShadow(limner::Limner& context, const Rect& panel, const limner::Color& color) {
    // Rounded boxes on top of each other make a soft edge; it falls a little downwards.
    constexpr int kLayers = 8;
    constexpr float kStrength = 0.8F;
    for (int i = 1; i <= kLayers; ++i) {
        const float spread = FloatingPanel::kShadow * static_cast<float>(i) / kLayers;
        const Rect layer{panel.left - spread, panel.top - spread / 2, panel.width + 2 * spread,
                         panel.height + spread * 3 / 2};
        context.FillRoundRect(layer, kRadius + spread, color.WithAlpha(color.alpha * kStrength / kLayers));
    }
}

} // namespace

FloatingPanel::Side FloatingPanel::SideOf(const Rect& anchor, float height, const ui::UI_Window& window) {
    const Rect room = window.OverlayRoom();
    const float below = room.Bottom() - kWindowMargin - anchor.Bottom() - kAnchorGap;
    const float above = anchor.top - kAnchorGap - kWindowMargin - room.top;
    const bool isAbove = below < height && above > below;
    return {isAbove, isAbove ? above : below};
}

float FloatingPanel::TopOn(const Side& side, const Rect& anchor, float height) {
    return side.isAbove ? anchor.top - kAnchorGap - height : anchor.Bottom() + kAnchorGap;
}

void FloatingPanel::ShowPanel(ui::UI_Window& window, const Rect& panel) {
    const float scale = window.ScaleFactor();
    const auto held = [scale](float at, float length, float first, float last) {
        const float inside = std::max(first + kWindowMargin, std::min(at, last - kWindowMargin - length));
        return std::round(inside * scale) / scale;
    };
    const Rect room = window.OverlayRoom();
    const Rect place{held(panel.left, panel.width, room.left, room.Right()),
                     held(panel.top, panel.height, room.top, room.Bottom()), panel.width, panel.height};
    window.ShowOverlay(this, place.Inset(-kShadow, -kShadow), true, kShadow);
}

void FloatingPanel::DrawPanel(limner::Limner& context) const {
    const Rect panel = Panel();
    DrawShadow(context, panel, GetColor(ui::kColorShadow));
    context.FillRoundRect(panel, kRadius, GetColor(ui::kColorMenu));
    context.FrameRoundRect(panel, kRadius, GetColor(ui::kColorLine), ui::PixelGrid(*this, context).Line());
}

} // namespace kroui::controls
