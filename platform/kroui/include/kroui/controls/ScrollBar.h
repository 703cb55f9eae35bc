#pragma once

#include "kroui/ui/UI_Node.h"

#include <boost/function.hpp>

namespace kroui::controls {

// A thin bar over the edge of a scrolled view: dragging its thumb scrolls, pressing beside it goes on by a page. Takes
// no room of its own and is not there while everything can be seen.
class ScrollBar final : public ui::UI_Node {
public:
    static constexpr float kThickness = 10;

    explicit ScrollBar(bool isVertical) : fIsVertical(isVertical) {}

    // Lengths along the bar, view units.
    void SetRange(float content, float visible);
    void SetPosition(float position);
    // Called with the position that the user wants.
    void SetListener(boost::function<void(float)> listener) { fListener = std::move(listener); }

    void UI_Draw(limner::Limner* limner) override;
    bool UI_DoMouseEvent(ui::UI_Node* node, const ui::MouseEvent& event) override;
    ui::AccessibleInfo UI_GetAccessibleInfo() const override;

private:
    struct Thumb {
        float start;
        float length;
    };

    float Along(Point point) const { return fIsVertical ? point.y : point.x; }
    float Length() const { return fIsVertical ? UI_GetFrame().height : UI_GetFrame().width; }
    Thumb ThumbPlace() const;
    bool Press(float place);
    void DragTo(float place);
    void SetState(bool& state, bool on);

    bool fIsVertical;
    bool fIsHovered = false;
    bool fIsDragged = false;
    float fContent = 0;
    float fVisible = 0;
    float fPosition = 0;
    float fGrip = 0; // where on the thumb the drag holds it
    boost::function<void(float)> fListener;
};

} // namespace kroui::controls
