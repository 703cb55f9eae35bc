#include "kroui/controls/ScrollView.h"

#include <algorithm>
#include <cmath>

namespace kroui::controls {

using ui::MouseEvent;

namespace {

constexpr float kUnitsANotch = 48;

} // namespace

ScrollView::ScrollView() : fVertical(new ScrollBar(true)), fHorizontal(new ScrollBar(false)) {
    fVertical->SetListener([this](float y) { ScrollTo({fOffset.x, y}); });
    fHorizontal->SetListener([this](float x) { ScrollTo({x, fOffset.y}); });
    ChildPushBack(fVertical);
    ChildPushBack(fHorizontal);
}

void ScrollView::SetDocument(boost::intrusive_ptr<ui::UI_Node> document) {
    if (fDocument) ChildRemove(fDocument.get());
    fDocument = std::move(document);
    if (fDocument) ChildInsert(0, fDocument);
    fOffset = {};
    Arrange();
}

Size ScrollView::DocumentSize() const {
    if (!fDocument) return {};
    return {fDocument->UI_GetFrame().width, fDocument->UI_GetFrame().height};
}

void ScrollView::ScrollTo(Point offset) {
    const Size document = DocumentSize();
    const Rect place = UI_GetLocalRect();
    // Whole units: text that stands between pixels looks blurred.
    const Point held = {std::round(std::clamp(offset.x, 0.0F, std::max(0.0F, document.width - place.width))),
                        std::round(std::clamp(offset.y, 0.0F, std::max(0.0F, document.height - place.height)))};
    if (held == fOffset) return;
    fOffset = held;
    Arrange();
}

void ScrollView::Reveal(const Rect& rect) {
    const auto along = [](float offset, float start, float end, float room) {
        return std::min(start, std::max(offset, end - room));
    };
    const Rect place = UI_GetLocalRect();
    ScrollTo({along(fOffset.x, rect.left, rect.Right(), place.width),
              along(fOffset.y, rect.top, rect.Bottom(), place.height)});
}

void ScrollView::UI_Reveal(const Rect& rect) {
    const Rect document = fDocument ? fDocument->UI_GetFrame() : Rect{};
    Reveal(rect.Offset(-document.left, -document.top));
    const Rect moved = fDocument ? fDocument->UI_GetFrame() : Rect{};
    UI_Node::UI_Reveal(rect.Offset(moved.left - document.left, moved.top - document.top));
}

void ScrollView::UI_SizeChanged(const RectT<float>& /*rect*/) {
    Arrange();
}

void ScrollView::Arrange() {
    const Rect place = UI_GetLocalRect();
    const Size document = DocumentSize();
    fOffset = {std::clamp(fOffset.x, 0.0F, std::max(0.0F, document.width - place.width)),
               std::clamp(fOffset.y, 0.0F, std::max(0.0F, document.height - place.height))};
    const auto margin = [this](float room, float length) {
        return fIsCentred ? std::max(0.0F, std::floor((room - length) / 2)) : 0.0F;
    };
    if (fDocument)
        fDocument->UI_SetFrame({margin(place.width, document.width) - fOffset.x,
                                margin(place.height, document.height) - fOffset.y, document.width, document.height});

    constexpr float kBar = ScrollBar::kThickness;
    fVertical->UI_SetFrame({place.width - kBar, 0, kBar, place.height});
    fVertical->SetRange(document.height, place.height);
    fVertical->SetPosition(fOffset.y);
    fHorizontal->UI_SetFrame({0, place.height - kBar, place.width, kBar});
    fHorizontal->SetRange(document.width, place.width);
    fHorizontal->SetPosition(fOffset.x);
}

bool ScrollView::UI_DoMouseEvent(ui::UI_Node* node, const MouseEvent& event) {
    if (event.IsAction(MouseEvent::Action::kWheel) && ScrollByWheel(event)) return true;
    return UI_Node::UI_DoMouseEvent(node, event);
}

bool ScrollView::ScrollByWheel(const MouseEvent& event) {
    const bool isSideways = event.Has(ui::kShift) && event.wheelX == 0;
    const float right = isSideways ? -event.wheelY : event.wheelX;
    const float down = isSideways ? 0 : -event.wheelY;
    const Point before = fOffset;
    ScrollTo({fOffset.x + right * kUnitsANotch, fOffset.y + down * kUnitsANotch});
    return before != fOffset;
}

} // namespace kroui::controls
