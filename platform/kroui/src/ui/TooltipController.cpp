#include "TooltipController.h"

#include <algorithm>
#include <cmath>

namespace kroui::ui {

namespace {

constexpr float kDelaySeconds = 0.5F;
constexpr float kWidest = 320;
constexpr float kPadding = 8;
constexpr float kBelowPointer = 20;
constexpr limner::Font kFont{11};
constexpr long kTimerID = 1;

UI_Node* NodeWithTip(UI_Node* node) {
    while (node && node->UI_GetTooltip().empty())
        node = node->UI_GetParent();
    return node;
}

} // namespace

// The box with the text; no event ever hits it.
class UI_Window::TooltipController::Tip : public UI_Node {
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
        limner->FrameRoundRect(box, 4, GetColor(kColorLine), 1);
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

UI_Window::TooltipController::TooltipController(UI_Window& window) : fWindow(window), fTip(new Tip(*this)) {
}

UI_Window::TooltipController::~TooltipController() {
    Hide();
    fTip->UI_RemoveTimer(kTimerID, false);
}

void UI_Window::TooltipController::HoverChanged(UI_Node* node, Point position) {
    UI_Node* const owner = NodeWithTip(node);
    fPosition = position;
    if (owner == fNode) {
        if (owner && !fIsShown) fTip->UI_InstallTimer(kDelaySeconds, kTimerID);
        return;
    }
    Hide();
    fNode = owner;
    if (owner) {
        fTip->UI_InstallTimer(kDelaySeconds, kTimerID);
    } else {
        fTip->UI_RemoveTimer(kTimerID, false);
    }
}

void UI_Window::TooltipController::Dismiss() {
    Hide();
    fTip->UI_RemoveTimer(kTimerID, false);
}

void UI_Window::TooltipController::Show() {
    if (!fNode || !fNode->UI_IsVisibleInWindow() || fWindow.CaptureNode() || fWindow.HasModalOverlay()) return;
    fTip->SetText(fNode->UI_GetTooltip());
    const Size size = fTip->Measure(fWindow.Supplier());
    const Size window = fWindow.GetSize();
    Rect frame{fPosition.x, fPosition.y + kBelowPointer, size.width, size.height};
    if (frame.Bottom() > window.height) frame.top = fPosition.y - size.height - 4;
    frame.left = std::floor(std::clamp(frame.left, 0.0F, std::max(0.0F, window.width - size.width)));
    frame.top = std::floor(std::max(0.0F, frame.top));
    fWindow.ShowOverlay(fTip, frame, false);
    fIsShown = true;
}

void UI_Window::TooltipController::Hide() {
    if (!fIsShown) return;
    fIsShown = false;
    fWindow.HideOverlay(fTip.get());
}

} // namespace kroui::ui
