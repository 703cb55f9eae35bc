#pragma once

#include "kroui/controls/SliderLook.h"
#include "kroui/controls/UI_InteractiveControlView.h"
#include "kroui/controls/ValueControl.h"

namespace kroui::controls {

// A knob on a track. A drag of the knob is relative; a press on the track away from it brings the knob there and goes
// on as a drag. Double-click and Ctrl-click reset. The track is filled from 0 where the range has both signs, otherwise
// from the lower bound.
class UI_Slider : public UI_InteractiveControlView, public ValueControl {
public:
    UI_Slider();

    void SetVertical(bool vertical);
    bool IsVertical() const { return fVertical; }
    // Greater values to the left or downwards.
    void SetInvert(bool invert);
    bool IsInverted() const { return fInverted; }

    void UI_Draw(limner::Limner* context) override;
    bool UI_DoMouseEvent(UI_Node* node, const ui::MouseEvent& event) override;
    bool UI_DoKeyEvent(const ui::KeyEvent& event) override;
    bool UI_DoTimerNotify(long timerID) override;
    void UI_FocusChanged(bool hasFocus) override;
    void UI_NodeChanged(NodeChange change) override;
    ui::AccessibleInfo UI_GetAccessibleInfo() const override;
    bool UI_DoAccessibleAction(const ui::AccessibleRequest& request) override;

protected:
    ~UI_Slider() override = default;

    // Where the knob's middle can be.
    virtual Rect TrackRect() const;
    // Whether greater values stand at the left, or below.
    virtual bool RunsBackwards() const { return fInverted; }
    SliderLook Look() const;

    std::optional<double> ReadTyped(std::u16string_view typed) const override;
    ui::UI_Node& ValueNode() override { return *this; }
    void ValueChanged(double oldValue) override;
    void ValueLookChanged() override { UI_Invalidate(); }
    void SendGesture(int changeMessage) override;
    void ControlStateChanged() override;

private:
    bool Press(const ui::MouseEvent& event);
    void Drag(const ui::MouseEvent& event);
    void Release(const ui::MouseEvent& event);

    Point fPressPoint;
    Point fLastPoint;
    bool fVertical = false;
    bool fInverted = false;
    bool fHasMoved = false;
};

} // namespace kroui::controls
