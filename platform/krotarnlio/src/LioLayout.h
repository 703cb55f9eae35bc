#pragma once

#include "LioWidget.h"

namespace krotarnlio {

// Gives the widgets of a tree their places: what they need and what is shown goes into boxes, whose frames come back to
// the controls. Owned by the root, beside the widgets.
class LioLayout {
public:
    // The widgets live longer, and their tree stays as it is.
    explicit LioLayout(LioWidget& top);

    // Measures and places every widget, shows and hides what has come or gone. Returns the size of the whole.
    kroui::Size Place();
    // Of the widget's control as placed last, in the coordinates of the whole.
    kroui::Rect FrameOf(const LioWidget& widget) const;

private:
    void AddBoxes(LioWidget& widget, const LioWidget* parent);
    void AddContainer(LioWidget& widget, orrin::layout_attributes_t place, orrin::layout_t::index_t parent);
    void Update(const LioWidget& widget, bool isShown, bool isPresent);
    void SetExtents(const LioWidget& widget, orrin::layout_t::index_t leaf);
    void PlaceNodes(const LioWidget& widget, kroui::Point origin) const;
    int HeightForWidth(orrin::layout_t::index_t leaf, int width) const;

    LioWidget& fTop;
    orrin::layout_t fBoxes;
    std::vector<LioWidget*> fOwners; // of the boxes, by index
};

} // namespace krotarnlio
