// What UI_Menu looks like.

#include "kroui/controls/UI_Menu.h"

#include "controls/base/ControlDrawing.h"
#include "controls/menus/MenuMeasures.h"
#include "krocore/Localizer.h"

namespace kroui::controls {

using namespace menu;

void UI_Menu::UI_Draw(limner::Limner* context) {
    DrawPanel(*context);
    context->Save();
    context->ClipRect(ListArea());
    const Rect seen = context->ClipBounds();
    for (int i = 0; i < static_cast<int>(fItems.size()); ++i)
        if (const Rect row = RowRect(i); !row.IsEmpty() && row.Intersects(seen)) DrawRow(*context, i);
    if (ContentHeight() <= 0) DrawNothingFound(*context);
    DrawArrow(*context, -1);
    DrawArrow(*context, 1);
    context->Restore();
}

void UI_Menu::DrawRow(limner::Limner& context, int index) const {
    const Item& item = fItems[index];
    const ui::PixelGrid grid(*this, context);
    const Rect row = grid.Snap(RowRect(index));
    if (item.separator) {
        const float line = grid.Line();
        context.FillRect({row.left, grid.Y(row.Centre().y - line / 2), row.width, line}, GetColor(ui::kColorLine));
        return;
    }
    const bool isHighlighted = index == fHighlighted;
    if (isHighlighted) context.FillRoundRect(row, kRowRadius, GetColor(ui::kColorAccent));
    const limner::Color color = GetColor(isHighlighted  ? ui::kColorAccentText
                                         : item.enabled ? ui::kColorText
                                                        : ui::kColorDisabledText);
    const float textLeft = Panel().left + TextLeft();
    if (index == fMarked) {
        const Point centre{(row.left + Panel().left + kTextLeft) / 2, row.Centre().y};
        drawing::DrawCheckMark(context, grid.Square(centre, kMarkSize), color);
    }
    if (!fImages.empty()) {
        const Rect room{Panel().left + kTextLeft, row.Centre().y - fImageSize.height / 2, fImageSize.width,
                        fImageSize.height};
        fImages[index].Draw(context, grid.Snap(room), item.enabled);
    }
    context.DrawText(item.text, {fFontSize}, color, {textLeft, row.top, row.Right() - textLeft - kPadding, row.height},
                     {limner::TextAlignment::kLeft, limner::TextTruncation::kEnd});
}

void UI_Menu::DrawNothingFound(limner::Limner& context) const {
    const Rect list = ListArea();
    context.DrawText(krocore::Localize("$$$/kroui/Menu/NothingFound=Nothing found"), {fFontSize},
                     GetColor(ui::kColorDimText), {list.left, list.top, list.width, RowHeight()},
                     {limner::TextAlignment::kCentre, limner::TextTruncation::kEnd});
}

void UI_Menu::DrawArrow(limner::Limner& context, int direction) const {
    const Rect strip = ArrowStrip(direction);
    if (strip.IsEmpty()) return;
    context.FillRect(strip, GetColor(ui::kColorMenu));
    drawing::DrawChevron(context, strip.Centre(), kArrowWidth, direction, GetColor(ui::kColorDimText));
}

} // namespace kroui::controls
