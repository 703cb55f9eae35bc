#include "kroui/controls/UI_Menu.h"

#include "controls/menus/MenuMeasures.h"
#include "kroui/ui/UI_NodeManager.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace kroui::controls {

using ui::Key;
using ui::MouseEvent;

using namespace menu;

namespace {

// A release within this time and distance of the press that opened the menu leaves it open.
constexpr double kClickSeconds = 0.5;
constexpr float kClickDistance = 3;

constexpr float kScrollSeconds = 0.03F;
constexpr float kScrollStep = 8;

bool IsNear(Point a, Point b) {
    return std::abs(a.x - b.x) <= kClickDistance && std::abs(a.y - b.y) <= kClickDistance;
}

} // namespace

void UI_Menu::SetImages(ImageSupplier supplier, Size size) {
    fImageSupplier = std::move(supplier);
    fImageSize = size;
}

void UI_Menu::OpenOver(ui::UI_Window& window, const Rect& anchor, float textInset, ClosedHandler closed) {
    if (!CanChoose(fMarked) || fIsSearchable) return OpenBelow(window, anchor, std::move(closed));
    if (!Prepare(window, std::move(closed))) return;
    fAnchor = anchor;
    const Rect room = window.OverlayRoom();
    const float width = std::max(WidthOfItems(window.Supplier()), anchor.width - textInset + TextLeft());
    const float height = std::min(PanelHeight(), room.height - 2 * kWindowMargin);
    const float left = anchor.left + textInset - TextLeft();
    const float markedCentre = kPadding + (fTops[fMarked] + fTops[fMarked + 1]) / 2;
    const float wantedTop = anchor.Centre().y - markedCentre;
    const bool scrolls = PanelHeight() > height;
    const float top = scrolls ? room.top + kWindowMargin : wantedTop;
    fScroll = scrolls ? top - wantedTop : 0;
    Show(window, {left, top, width, height});
}

void UI_Menu::OpenBelow(ui::UI_Window& window, const Rect& anchor, ClosedHandler closed) {
    if (!Prepare(window, std::move(closed))) return;
    fAnchor = anchor;
    const float wanted = PanelHeight();
    const Side side = SideOf(anchor, wanted, window);
    // Where neither side has room for some rows, the menu may cover its anchor.
    const bool hasRoom = side.room >= std::min(wanted, HeaderHeight() + 4 * RowHeight());
    const float height = hasRoom ? std::min(wanted, side.room) : wanted;
    const float width = std::max(WidthOfItems(window.Supplier()), anchor.width);
    Show(window, {anchor.left, TopOn(side, anchor, height), width, height});
}

bool UI_Menu::Prepare(ui::UI_Window& window, ClosedHandler closed) {
    if (IsOpen() || fItems.empty() || window.OverlayRoom().height <= 2 * kWindowMargin + RowHeight()) return false;
    fImages.clear();
    for (const Item& item : fItems) {
        if (!fImageSupplier) break;
        fImages.emplace_back().SetSupplier(fImageSupplier);
        fImages.back().SetName(item.image);
    }
    if (fSearchField) fSearchField->SetText({});
    PlaceItems();
    fClosed = std::move(closed);
    fScroll = 0;
    fHighlighted = CanChoose(fMarked) ? fMarked : -1;
    fOpened = ui::UI_NodeManager::Get().Now();
    return true;
}

void UI_Menu::Show(ui::UI_Window& window, const Rect& panel) {
    const Rect room = window.OverlayRoom();
    ShowPanel(window, {panel.left, panel.top, std::min(panel.width, room.width - 2 * kWindowMargin),
                       std::min(panel.height, room.height - 2 * kWindowMargin)});
    fLastPoint = UI_WindowToLocal(fHeldFrom.value_or(fAnchor.Centre()));
    fScroll = std::clamp(fScroll, 0.0F, MostScroll());
    if (fHighlighted >= 0) ScrollToItem(fHighlighted);
    if (fIsSearchable) ShowSearchField(window);
}

float UI_Menu::WidthOfItems(const limner::SupplierInterface& supplier) const {
    float widest = 0;
    for (const Item& item : fItems)
        widest = std::max(widest, supplier.MeasureText(item.text, {fFontSize}).width);
    if (fIsSearchable) widest = std::max(widest, kFewestCharacters * supplier.MeasureText(u"0", {fFontSize}).width);
    return std::ceil(widest) + TextLeft() + kTextRight;
}

void UI_Menu::Close() {
    Finish(-1);
}

void UI_Menu::Choose(int item) {
    if (CanChoose(item)) Finish(item);
}

void UI_Menu::Finish(int item) {
    const ui::MessageScope scope;
    const ClosedHandler closed = std::move(fClosed);
    fClosed.clear();
    fHeldFrom.reset();
    if (UI_IsAttached()) {
        ReturnFocus();
        UI_GetWindow()->HideOverlay(this);
    }
    if (closed) closed(item);
}

void UI_Menu::UI_NodeChanged(NodeChange change) {
    UI_Node::UI_NodeChanged(change);
    if (change != kDetaching) return;
    SetAutoScroll(0);
    ReturnFocus();
    // Taken away by somebody else: the handler is still there.
    if (!fClosed) return;
    const ClosedHandler closed = std::move(fClosed);
    fClosed.clear();
    closed(-1);
}

float UI_Menu::RowHeight() const {
    const float image = fImageSupplier ? fImageSize.height + 2 * kImageMargin : 0;
    return std::max({kLeastRowHeight, std::ceil(fFontSize + kRowLead), image});
}

float UI_Menu::TextLeft() const {
    return fImageSupplier && fImageSize.width > 0 ? kTextLeft + fImageSize.width + kImageGap : kTextLeft;
}

float UI_Menu::HeaderHeight() const {
    return fIsSearchable ? kSearchHeight + kSearchGap : 0;
}

float UI_Menu::PanelHeight() const {
    return HeaderHeight() + ContentHeight() + 2 * kPadding;
}

Rect UI_Menu::ListArea() const {
    const Rect inside = Panel().Inset(kPadding, kPadding);
    return {inside.left, inside.top + HeaderHeight(), inside.width, inside.height - HeaderHeight()};
}

float UI_Menu::MostScroll() const {
    return std::max(0.0F, ContentHeight() - ListArea().height);
}

Rect UI_Menu::RowRect(int item) const {
    const Rect list = ListArea();
    return {list.left, list.top + fTops[item] - fScroll, list.width, fTops[item + 1] - fTops[item]};
}

Rect UI_Menu::ItemRectInWindow(int item) const {
    if (!IsOpen() || item < 0 || item >= static_cast<int>(fItems.size())) return {};
    const Point origin = UI_LocalToWindow({});
    return Intersection(RowRect(item), ListArea()).Offset(origin.x, origin.y);
}

Rect UI_Menu::ArrowStrip(int direction) const {
    const bool hasMore = direction < 0 ? fScroll > 0 : fScroll < MostScroll();
    if (!hasMore) return {};
    const Rect list = ListArea();
    return {list.left, direction < 0 ? list.top : list.Bottom() - kArrowStripHeight, list.width, kArrowStripHeight};
}

bool UI_Menu::CanChoose(int item) const {
    if (item < 0 || item >= static_cast<int>(fItems.size())) return false;
    return fItems[item].enabled && !fItems[item].separator && !IsFiltered(item);
}

int UI_Menu::ItemAt(Point point) const {
    if (!ListArea().Contains(point) || ArrowStrip(-1).Contains(point) || ArrowStrip(1).Contains(point)) return -1;
    const float y = point.y - ListArea().top + fScroll;
    const auto next = std::upper_bound(fTops.begin(), fTops.end(), y);
    return next == fTops.end() ? -1 : static_cast<int>(next - fTops.begin()) - 1;
}

int UI_Menu::Next(int item, int direction) const {
    const int count = static_cast<int>(fItems.size());
    for (int i = item + direction; i >= 0 && i < count; i += direction)
        if (CanChoose(i)) return i;
    return CanChoose(item) ? item : -1;
}

int UI_Menu::StepBy(int rows) const {
    const int direction = rows < 0 ? -1 : 1;
    int item = fHighlighted;
    for (int i = 0; i < std::abs(rows); ++i)
        item = Next(item, direction);
    return item;
}

void UI_Menu::Highlight(int item) {
    if (item == fHighlighted) return;
    for (const int changed : {fHighlighted, item})
        if (changed >= 0) UI_InvalidateRect(Intersection(RowRect(changed), ListArea()));
    fHighlighted = item;
}

void UI_Menu::HighlightByKey(int item) {
    if (item < 0) return;
    Highlight(item);
    ScrollToItem(item);
}

void UI_Menu::ScrollTo(float scroll) {
    const float held = std::clamp(scroll, 0.0F, MostScroll());
    if (held == fScroll) return;
    fScroll = held;
    UI_InvalidateRect(Panel());
}

void UI_Menu::ScrollToItem(int item) {
    // The arrow strips cover the rows at the ends, unless the first or last row is reached.
    const float height = ListArea().height;
    const float highest = item + 1 == static_cast<int>(fItems.size()) ? MostScroll() : fTops[item] - kArrowStripHeight;
    const float lowest = fTops[item + 1] - height + (fTops[item + 1] < ContentHeight() ? kArrowStripHeight : 0);
    ScrollTo(fScroll > highest ? highest : std::max(fScroll, lowest));
}

void UI_Menu::SetAutoScroll(int direction) {
    if (direction == fAutoScroll) return;
    fAutoScroll = direction;
    if (fScrollTimer == 0) fScrollTimer = ui::UI_NodeManager::Get().GetUniqueTimerID();
    if (direction != 0) {
        UI_InstallTimer(kScrollSeconds, fScrollTimer);
    } else {
        UI_RemoveTimer(fScrollTimer, true);
    }
}

bool UI_Menu::UI_DoTimerNotify(long timerID) {
    if (timerID != fScrollTimer) return UI_Node::UI_DoTimerNotify(timerID);
    ScrollTo(fScroll + kScrollStep * static_cast<float>(fAutoScroll));
    PointAt(fLastPoint);
    return true;
}

bool UI_Menu::UI_DoMouseEvent(UI_Node* /*node*/, const MouseEvent& event) {
    switch (event.action) {
    case MouseEvent::Action::kMoved:
    case MouseEvent::Action::kDragged:
        // Keys move the highlight away from a pointer that rests.
        if (!(event.position == fLastPoint) && !IsStillClicking(event.position)) PointAt(event.position);
        break;
    case MouseEvent::Action::kPressed: PressAt(event.position); break;
    case MouseEvent::Action::kReleased: ReleaseAt(event.position); break;
    case MouseEvent::Action::kWheel: Wheel(event.wheelY); break;
    case MouseEvent::Action::kCaptureLost: Close(); break;
    case MouseEvent::Action::kLeft: SetAutoScroll(0); break;
    default: break;
    }
    return true;
}

void UI_Menu::PointAt(Point point) {
    fHeldFrom.reset();
    fLastPoint = point;
    const Rect panel = Panel();
    int direction = 0;
    for (const int candidate : {-1, 1}) {
        const bool isBeyond = candidate < 0 ? point.y < panel.top : point.y >= panel.Bottom();
        const bool hasMore = !ArrowStrip(candidate).IsEmpty();
        if (hasMore && (isBeyond || ArrowStrip(candidate).Contains(point))) direction = candidate;
    }
    SetAutoScroll(direction);
    const int item = ItemAt(point);
    Highlight(CanChoose(item) ? item : -1);
}

bool UI_Menu::IsStillClicking(Point point) const {
    return fHeldFrom && IsNear(UI_LocalToWindow(point), *fHeldFrom);
}

void UI_Menu::PressAt(Point point) {
    if (!Panel().Contains(point)) return Close();
    fHeldFrom.reset();
    Choose(ItemAt(point));
}

void UI_Menu::ReleaseAt(Point point) {
    const bool isClick = IsStillClicking(point) && ui::UI_NodeManager::Get().Now() - fOpened < kClickSeconds;
    fHeldFrom.reset();
    SetAutoScroll(0);
    if (isClick) return;
    if (Panel().Contains(point)) return Choose(ItemAt(point));
    if (!fAnchor.Contains(UI_LocalToWindow(point))) Close();
}

void UI_Menu::Wheel(float notches) {
    constexpr float kRowsPerNotch = 2;
    ScrollTo(fScroll - notches * kRowsPerNotch * RowHeight());
    PointAt(fLastPoint);
}

bool UI_Menu::UI_DoKeyEvent(const ui::KeyEvent& event) {
    if (fIsSearchable && DoSearchKey(event)) return true;
    if (event.Has(ui::kCommand)) return true;
    const double now = ui::UI_NodeManager::Get().Now();
    if (event.key == Key::kSpace && fTypeAhead.IsTyping(now)) {
        Search(u" ");
    } else {
        HandleKey(event.key);
    }
    return true;
}

void UI_Menu::HandleKey(Key key) {
    const int count = static_cast<int>(fItems.size());
    const int page = std::max(1, static_cast<int>(ListArea().height / RowHeight()) - 1);
    switch (key) {
    case Key::kUp: HighlightByKey(fHighlighted < 0 ? Next(count, -1) : StepBy(-1)); break;
    case Key::kDown: HighlightByKey(StepBy(1)); break;
    case Key::kPageUp: HighlightByKey(StepBy(-page)); break;
    case Key::kPageDown: HighlightByKey(StepBy(page)); break;
    case Key::kHome: HighlightByKey(Next(-1, 1)); break;
    case Key::kEnd: HighlightByKey(Next(count, -1)); break;
    case Key::kEnter:
    case Key::kSpace: Choose(fHighlighted); break;
    case Key::kEscape:
    case Key::kTab: Close(); break;
    default: break;
    }
}

bool UI_Menu::UI_DoTextEvent(const ui::TextEvent& event) {
    if (fIsSearchable) return fSearchField->UI_DoTextEvent(event);
    // The space bar comes as a key too, and is taken there.
    if (event.text != u" ") Search(event.text);
    return true;
}

void UI_Menu::Search(std::u16string_view typed) {
    const auto textOf = [this](int item) -> std::u16string_view {
        return CanChoose(item) ? std::u16string_view(fItems[item].text) : std::u16string_view();
    };
    HighlightByKey(
        fTypeAhead.Type(typed, ui::UI_NodeManager::Get().Now(), fHighlighted, static_cast<int>(fItems.size()), textOf));
}

ui::AccessibleInfo UI_Menu::UI_GetAccessibleInfo() const {
    ui::AccessibleInfo info = UI_Node::UI_GetAccessibleInfo();
    info.role = ui::Role::kMenu;
    if (CanChoose(fHighlighted)) info.value = fItems[fHighlighted].text;
    return info;
}

} // namespace kroui::controls
