#include "controls/base/LabelBeside.h"

#include "kroui/controls/UI_DisplayNumber.h"
#include "kroui/controls/UI_StaticText.h"

#include <cmath>

namespace kroui::controls {

namespace {

constexpr float kFarthest = 120; // from a label's end to its control, in a column of labels of several lengths
constexpr float kRowSlack = 6;   // between the middles of what stands in one row

Rect PlaceOf(const ui::UI_Node& node) {
    const Point corner = node.UI_LocalToWindow({});
    return {corner.x, corner.y, node.UI_GetFrame().width, node.UI_GetFrame().height};
}

// Goes through what can be seen and keeps what stands next before the control: its label, or another control, whose
// label is not this one's.
class Search {
public:
    explicit Search(const ui::UI_Node& control) : fControl(PlaceOf(control)), fRight(fControl.left - kFarthest) {}

    void Visit(const ui::UI_Node& node) {
        if (!node.UI_IsVisible()) return;
        if (const auto* const view = dynamic_cast<const UI_ControlView*>(&node)) Consider(*view);
        for (const auto& child : node.Children())
            Visit(*child);
    }
    const krocore::string16& Text() const { return fText; }

private:
    void Consider(const UI_ControlView& view) {
        const Rect place = PlaceOf(view);
        const bool isInRow = std::abs(place.Centre().y - fControl.Centre().y) <= kRowSlack;
        if (!isInRow || place.Right() > fControl.left + 1 || place.Right() <= fRight) return;
        const auto* const text = dynamic_cast<const UI_StaticText*>(&view);
        const auto* const shown = dynamic_cast<const UI_DisplayNumber*>(&view);
        if (!text && !shown && !view.WantsKeyboardFocus()) return;
        fRight = place.Right();
        fText = text ? text->Text() : shown ? shown->ShownText() : krocore::string16();
    }

    Rect fControl;
    float fRight; // of what has been found
    krocore::string16 fText;
};

} // namespace

krocore::string16 LabelBeside(const ui::UI_Node& control) {
    const ui::UI_Node* top = &control;
    while (top->UI_GetParent())
        top = top->UI_GetParent();
    Search search(control);
    search.Visit(*top);
    return search.Text();
}

} // namespace kroui::controls
