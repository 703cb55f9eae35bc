#include "workbench/PanelCard.h"

#include "workbench/PixelSnap.h"

#include <algorithm>
#include <cmath>

namespace workbench {

namespace {

constexpr float kRadius = 6;
constexpr kroui::Size kMessageSize = {420, 160};
constexpr float kMessageMargin = 24;

// The right bottom corner of what can be seen of a subtree, in the coordinates of the node that it stands in.
kroui::Point FarCorner(const kroui::ui::UI_Node& node) {
    const kroui::Rect& frame = node.UI_GetFrame();
    kroui::Point corner = {frame.Right(), frame.Bottom()};
    if (node.UI_ClipsChildren()) return corner;
    for (const auto& child : node.Children()) {
        if (!child->UI_IsVisible()) continue;
        const kroui::Point inner = FarCorner(*child);
        corner = {std::max(corner.x, frame.left + inner.x), std::max(corner.y, frame.top + inner.y)};
    }
    return corner;
}

} // namespace

void PanelCard::SetPanel(PanelPtr panel) {
    fConnection.disconnect();
    if (fPanel) ChildRemove(fPanel.get());
    fPanel = std::move(panel);
    if (fPanel) {
        ChildPushBack(fPanel);
        fConnection = fPanel->GetContentSizeChangedSignal().connect([this] { FollowPanel(); });
    }
    UI_Invalidate();
    FollowPanel();
}

void PanelCard::SetMessage(std::u16string_view message) {
    fMessage = message;
    UI_Invalidate();
}

void PanelCard::FollowPanel() {
    const kroui::Size size = UI_GetNaturalSize();
    if (size == fToldSize) return;
    fToldSize = size;
    if (fListener) fListener();
}

kroui::Size PanelCard::UI_GetNaturalSize() const {
    if (!fPanel) return kMessageSize;
    const kroui::Point corner = FarCorner(*fPanel);
    return {std::ceil(corner.x), std::ceil(corner.y)};
}

void PanelCard::UI_Draw(kroui::limner::Limner* limner) {
    const kroui::Rect rect = Snapped(*this, *limner, UI_GetLocalRect());
    limner->FillRoundRect(rect, fIsRounded ? kRadius : 0, GetColor(kroui::ui::kColorPanel));
    if (fPanel) return;
    limner->DrawText(fMessage, {}, GetColor(kroui::ui::kColorDimText), rect.Inset(kMessageMargin, kMessageMargin),
                     {.alignment = kroui::limner::TextAlignment::kCentre, .multiLine = true});
}

kroui::ui::AccessibleInfo PanelCard::UI_GetAccessibleInfo() const {
    kroui::ui::AccessibleInfo info = UI_Node::UI_GetAccessibleInfo();
    if (!fPanel) info.value = fMessage;
    return info;
}

} // namespace workbench
