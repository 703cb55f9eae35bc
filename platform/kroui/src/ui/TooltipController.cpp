#include "TooltipController.h"

#include <algorithm>
#include <cmath>

namespace kroui::ui {

namespace {

constexpr float kDelaySeconds = 0.5F;
constexpr float kWidest = 320;
constexpr float kPadding = 8;
constexpr float kBelowPointer = 20;
constexpr float kGap = 4; // to what the tip stands over or under
constexpr limner::Font kFont{11};
constexpr long kTimerID = 1;

UI_Node* NodeWithTip(UI_Node* node) {
    while (node && node->UI_GetTooltip().empty())
        node = node->UI_GetParent();
    return node;
}

} // namespace

// The box with the text; no event ever hits it.
class TooltipController::Tip : public UI_Node {
public:
    explicit Tip(TooltipController& controller) : fController(controller) {}

    void SetText(std::u16string_view text) { fText = text; }

    Size Measure(const limner::SupplierInterface& supplier) const {
        const limner::TextExtent line = supplier.MeasureText(fText, kFont);
        const float width = std::min(line.width, kWidest);
        const float height =
            line.width > kWidest ? supplier.MeasureParagraph(fText, kFont, kWidest).height : line.height;
        return {std::ceil(width) + 2 * kPadding, std::ceil(height) + kPadding};
    }

    void UI_Draw(limner::Limner* limner) override {
        const Rect box = UI_GetLocalRect();
        limner->FillRoundRect(box, 4, GetColor(kColorMenu));
        const float line = std::max(1.0F, std::floor(limner->ScaleFactor())) / limner->ScaleFactor();
        limner->FrameRoundRect(box, 4, GetColor(kColorLine), line);
        const bool wraps = box.width >= kWidest + 2 * kPadding;
        limner->DrawText(fText, kFont, GetColor(kColorText), box.Inset(kPadding, kPadding / 2), {.multiLine = wraps});
    }
    UI_Node* UI_HitTest(Point) override { return nullptr; }
    bool UI_DoTimerNotify(long timerID) override {
        UI_RemoveTimer(timerID, false);
        fController.Show();
        return true;
    }

private:
    TooltipController& fController;
    krocore::string16 fText;
};

TooltipController::TooltipController(Place& place) : fPlace(place), fTip(new Tip(*this)) {
}

TooltipController::~TooltipController() {
    Hide();
    fTip->UI_RemoveTimer(kTimerID, false);
}

void TooltipController::HoverChanged(UI_Node* node, Point position) {
    UI_Node* const owner = NodeWithTip(node);
    fPosition = position;
    if (owner != fNode) {
        Hide();
        fNode = owner;
        fIsDismissed = false;
    }
    if (fNode && !fIsShown && !fIsDismissed) {
        fTip->UI_InstallTimer(kDelaySeconds, kTimerID);
    } else {
        fTip->UI_RemoveTimer(kTimerID, false);
    }
}

void TooltipController::Dismiss() {
    Hide();
    fIsDismissed = true;
    fTip->UI_RemoveTimer(kTimerID, false);
}

void TooltipController::ShowUnder(UI_Node& node) {
    fTip->UI_RemoveTimer(kTimerID, false);
    const Point corner = node.UI_LocalToWindow({});
    ShowAt(node, {corner.x, corner.y + node.UI_GetFrame().height + kGap}, corner.y - kGap);
}

void TooltipController::Show() {
    if (fNode && !fPlace.IsBusy()) ShowAt(*fNode, {fPosition.x, fPosition.y + kBelowPointer}, fPosition.y - kGap);
}

// With its top left corner at `below`, or where the room ends with its bottom at `above`.
void TooltipController::ShowAt(UI_Node& node, Point below, float above) {
    Hide();
    if (node.UI_GetTooltip().empty() || !node.UI_IsVisibleInWindow()) return;
    fTip->SetText(node.UI_GetTooltip());
    const Size size = fTip->Measure(fPlace.Supplier());
    const Rect room = fPlace.Room();
    const float scale = fPlace.ScaleFactor();
    const auto onPixel = [scale](float place, float first) {
        return std::floor(std::max(first, place) * scale) / scale;
    };
    const float left = onPixel(std::min(below.x, room.Right() - size.width), room.left);
    const float top = onPixel(below.y + size.height > room.Bottom() ? above - size.height : below.y, room.top);
    fShownNode = &node;
    fIsShown = true;
    fPlace.ShowTip(*fTip, {left, top, size.width, size.height});
}

void TooltipController::Hide() {
    if (!fIsShown) return;
    fIsShown = false;
    fShownNode.reset();
    fPlace.HideTip(*fTip);
}

} // namespace kroui::ui
