#include "WindowOverlays.h"

#include "SurfacePainter.h"

#include <algorithm>
#include <utility>

namespace kroui::ui {

bool IsInSubtree(const UI_Node* node, const UI_Node& root) {
    for (; node; node = node->UI_GetParent())
        if (node == &root) return true;
    return false;
}

UI_Node* HitTestRoot(UI_Node& root, Point position) {
    return root.UI_HitTest({position.x - root.UI_GetFrame().left, position.y - root.UI_GetFrame().top});
}

// Tips stay over menus.
void WindowOverlays::Add(Overlay overlay) {
    auto at = fOverlays.end();
    if (overlay.modal) at = std::find_if(fOverlays.begin(), fOverlays.end(), [](const Overlay& o) { return !o.modal; });
    if (overlay.surface) overlay.damage.Add({0, 0, overlay.place.width, overlay.place.height});
    fOverlays.insert(at, std::move(overlay));
}

boost::intrusive_ptr<UI_Node> WindowOverlays::Remove(const UI_Node* node) {
    const auto at = std::find_if(fOverlays.begin(), fOverlays.end(), [&](const Overlay& o) { return o.node == node; });
    if (!node || at == fOverlays.end()) return nullptr;
    boost::intrusive_ptr<UI_Node> removed = std::move(at->node);
    fOverlays.erase(at);
    return removed;
}

UI_Node* WindowOverlays::TopModal() const {
    const auto at = std::find_if(fOverlays.rbegin(), fOverlays.rend(), [](const Overlay& o) { return o.modal; });
    return at != fOverlays.rend() ? at->node.get() : nullptr;
}

bool WindowOverlays::AreBefore(const UI_Node& node) const {
    const UI_Node* const modal = TopModal();
    if (!modal || IsInSubtree(&node, *modal)) return false;
    const auto isOver = [&](const Overlay& overlay) { return !overlay.modal && IsInSubtree(&node, *overlay.node); };
    return std::none_of(fOverlays.begin(), fOverlays.end(), isOver);
}

UI_Node* WindowOverlays::HitTest(Point position) const {
    for (auto overlay = fOverlays.rbegin(); overlay != fOverlays.rend(); ++overlay) {
        if (UI_Node* const hit = HitTestRoot(*overlay->node, position)) return hit;
        if (overlay->modal) return overlay->node.get();
    }
    return nullptr;
}

void WindowOverlays::Draw(limner::Limner& limner) const {
    for (const Overlay& overlay : fOverlays)
        if (!overlay.surface) overlay.node->UI_DrawTree(&limner);
}

void WindowOverlays::Invalidate(const Rect& rect) {
    for (Overlay& overlay : fOverlays) {
        if (!overlay.surface) continue;
        const Rect part = Intersection(rect, overlay.place);
        overlay.damage.Add(part.Offset(-overlay.place.left, -overlay.place.top));
    }
}

void WindowOverlays::InvalidateAll() {
    for (const Overlay& overlay : fOverlays)
        Invalidate(overlay.place);
}

bool WindowOverlays::NeedPaint() const {
    return std::ranges::any_of(fOverlays, [](const Overlay& overlay) { return !overlay.damage.IsEmpty(); });
}

long WindowOverlays::Paint(const limner::Color& ground) {
    long pixelCount = 0;
    for (Overlay& overlay : fOverlays) {
        if (overlay.damage.IsEmpty()) continue;
        const DamageRegion damage = std::exchange(overlay.damage, DamageRegion());
        const auto painted = PaintDamage(overlay.surface->GetSurface(), damage, ground, [&](limner::Limner& limner) {
            limner.Translate(-overlay.place.left, -overlay.place.top);
            overlay.node->UI_DrawTree(&limner);
        });
        if (!painted.empty()) overlay.surface->Present(painted);
        pixelCount += AreaOf(painted);
    }
    return pixelCount;
}

void WindowOverlays::SetScale(float scale) {
    for (Overlay& overlay : fOverlays)
        if (overlay.surface) overlay.surface->GetSurface().SetSize({overlay.place.width, overlay.place.height}, scale);
}

} // namespace kroui::ui
