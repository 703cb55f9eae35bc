#include "uit/controls/UI_OutlineBoxWithLabel.h"

#include "kroui/controls/TextMeasure.h"
#include "kroui/ui/AdapterRegistry.h"
#include "kroui/ui/PixelGrid.h"

#include <algorithm>

namespace uit::controls {

using kroui::Rect;
using kroui::ui::MakeProperty;
using kroui::ui::PropertyType;

namespace {

const kroui::ui::AdapterRegistrar<UI_OutlineBoxWithLabel> sRegistrar("uit::controls::UI_OutlineBoxWithLabel");

constexpr kroui::limner::Font kLabelFont{12, true};
constexpr float kLabelHeight = 16;
constexpr float kLabelInset = 18; // from the frame's corners
constexpr float kLabelMargin = 6; // between the label and the interrupted line
constexpr float kRadius = 4;

void DrawClipped(kroui::limner::Limner& limner, const Rect& clip, const Rect& frame, const kroui::limner::Color& color,
                 float line) {
    if (clip.IsEmpty()) return;
    limner.Save();
    limner.ClipRect(clip);
    limner.FrameRoundRect(frame, kRadius, color, line);
    limner.Restore();
}

} // namespace

void UI_OutlineBoxWithLabel::SetLabel(const krocore::string16& label) {
    if (label == fLabel.Text()) return;
    fLabel.SetText(label);
    UI_InvalidateRect({0, 0, UI_GetFrame().width, kLabelHeight});
}

kroui::Size UI_OutlineBoxWithLabel::UI_GetNaturalSize() const {
    return {2 * kLabelInset + kroui::controls::TextWidth(*this, Label(), kLabelFont), kLabelHeight};
}

void UI_OutlineBoxWithLabel::UI_Draw(kroui::limner::Limner* limner) {
    const kroui::ui::PixelGrid grid(*this, *limner);
    const auto top = grid.Y(kLabelHeight / 2);
    const auto bounds = grid.Snap(UI_GetLocalRect());
    const Rect frame{bounds.left, top, bounds.width, bounds.Bottom() - top};
    const auto color = GetColor(kroui::ui::kColorLine);
    const auto line = grid.Line();
    const auto label = LabelRect();
    if (label.IsEmpty()) {
        limner->FrameRoundRect(frame, kRadius, color, line);
        return;
    }
    // The frame is drawn left and right of the gap and below it, so that whatever is behind the box shows in the gap.
    const auto gapLeft = grid.X(label.left - kLabelMargin);
    const auto gapRight = std::min(grid.X(label.Right() + kLabelMargin), bounds.Right());
    const auto below = top + line;
    DrawClipped(*limner, {bounds.left, 0, gapLeft - bounds.left, below}, frame, color, line);
    DrawClipped(*limner, {gapRight, 0, bounds.Right() - gapRight, below}, frame, color, line);
    DrawClipped(*limner, {bounds.left, below, bounds.width, bounds.Bottom() - below}, frame, color, line);
    limner->DrawText(Label(), kLabelFont, GetColor(kroui::ui::kColorDimText), label,
                     {kroui::limner::TextAlignment::kLeft, kroui::limner::TextTruncation::kEnd, false});
}

// As wide as the text needs, as far as the box has room; empty without a text.
Rect UI_OutlineBoxWithLabel::LabelRect() const {
    const auto* supplier = UI_GetDrawSupplier();
    const auto room = UI_GetFrame().width - 2 * kLabelInset;
    if (Label().empty() || supplier == nullptr || room <= 0) return {};
    const auto width = std::ceil(supplier->MeasureText(Label(), kLabelFont).width);
    return {kLabelInset, 0, std::min(width, room), kLabelHeight};
}

kroui::ui::AccessibleInfo UI_OutlineBoxWithLabel::UI_GetAccessibleInfo() const {
    auto info = UI_SubView::UI_GetAccessibleInfo();
    info.role = kroui::ui::Role::kGroup;
    info.name = Label();
    return info;
}

const kroui::ui::PropertyTable& UI_OutlineBoxWithLabel::UI_GetPropertyTable() const {
    return PropertiesOfOutlineBoxWithLabel();
}

const kroui::ui::PropertyTable& UI_OutlineBoxWithLabel::PropertiesOfOutlineBoxWithLabel() {
    static constexpr kroui::ui::PropertyRow kRows[] = {
        MakeProperty<PropertyType::kUnicode, &UI_OutlineBoxWithLabel::LabelReference,
                     &UI_OutlineBoxWithLabel::SetLabelReference>("label"),
    };
    static const kroui::ui::PropertyTable sTable{"uit::controls::UI_OutlineBoxWithLabel", kRows, &PropertiesOfSubView(),
                                                 true};
    return sTable;
}

void UI_OutlineBoxWithLabel::SetLabelReference(std::string_view reference) {
    if (reference == fLabel.Reference()) return;
    fLabel.SetReference(reference);
    UI_InvalidateRect({0, 0, UI_GetFrame().width, kLabelHeight});
}

} // namespace uit::controls
