#include "workbench/views/PanelCard.h"

#include "kroui/ui/PixelGrid.h"
#include "qocui/controls/TarnLioAudioComponentEditorView.h"

#include <algorithm>
#include <cmath>

namespace workbench {

namespace {

constexpr float kRadius = 6;
constexpr kroui::Size kMessageSize = {420, 160};
constexpr float kMessageMargin = 24;
constexpr float kProblemWidth = 560; // of the text

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
    fIsProblem = false;
    UI_Invalidate();
}

void PanelCard::SetProblem(std::u16string_view problem) {
    fMessage = problem;
    fIsProblem = true;
    UI_Invalidate();
}

void PanelCard::ReleaseControls() {
    auto* const panel = dynamic_cast<qocui::controls::TarnLioAudioComponentEditorView*>(fPanel.get());
    if (panel) panel->ControlReleased();
}

krocore::string16 PanelCard::PanelProblem() const {
    const auto* const panel = dynamic_cast<const qocui::controls::TarnLioAudioComponentEditorView*>(fPanel.get());
    return panel && !panel->GetProblems().empty() ? krocore::ToUTF16(panel->GetProblems().front().what())
                                                  : krocore::string16();
}

void PanelCard::FollowPanel() {
    const kroui::Size size = UI_GetNaturalSize();
    if (size == fToldSize) return;
    fToldSize = size;
    if (fListener) fListener();
}

kroui::Size PanelCard::UI_GetNaturalSize() const {
    if (!fPanel) return MessageSize();
    const kroui::Point corner = FarCorner(*fPanel);
    return {std::ceil(corner.x), std::ceil(corner.y)};
}

kroui::Size PanelCard::MessageSize() const {
    const kroui::limner::SupplierInterface* const supplier = UI_GetDrawSupplier();
    if (!fIsProblem || !supplier) return kMessageSize;
    const float height = std::ceil(supplier->MeasureParagraph(fMessage, {}, kProblemWidth).height);
    return {kProblemWidth + 2 * kMessageMargin, std::max(kMessageSize.height, height + 2 * kMessageMargin)};
}

void PanelCard::UI_Draw(kroui::limner::Limner* limner) {
    const kroui::Rect rect = kroui::ui::PixelGrid(*this, *limner).Snap(UI_GetLocalRect());
    limner->FillRoundRect(rect, fIsRounded ? kRadius : 0, GetColor(kroui::ui::kColorPanel));
    if (fPanel) return;
    using kroui::limner::TextAlignment;
    limner->DrawText(fMessage, {}, GetColor(fIsProblem ? kroui::ui::kColorText : kroui::ui::kColorDimText),
                     rect.Inset(kMessageMargin, kMessageMargin),
                     {.alignment = fIsProblem ? TextAlignment::kLeft : TextAlignment::kCentre, .multiLine = true});
}

kroui::ui::AccessibleInfo PanelCard::UI_GetAccessibleInfo() const {
    kroui::ui::AccessibleInfo info = UI_Node::UI_GetAccessibleInfo();
    if (!fPanel) info.value = fMessage;
    return info;
}

} // namespace workbench
