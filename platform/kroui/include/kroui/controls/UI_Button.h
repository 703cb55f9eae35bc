#pragma once

#include "kroui/controls/UI_InteractiveControlView.h"

namespace kroui::controls {

// Base of everything that is clicked: by the pointer (press, out and in again, release; outside nothing happens) or by
// Space or Enter while it has the focus. A click is a gesture: message 0 at the press, 1 when the value has changed,
// then 2, and last the committed change; 3 if the release is outside. The value is 0 or 1. By default a button springs
// back: its value is 1 only while it is held down. One that is not spring-loaded latches: each click turns it over.
class UI_Button : public UI_InteractiveControlView {
public:
    UI_Button();

    // From code: no messages. Anything but 0 is on.
    virtual void SetValue(int value);
    virtual int GetValue() const;
    bool IsChecked() const { return GetValue() != 0; }
    // Held down, with the pointer over it.
    bool IsPressed() const { return fPressed; }

    // Whether it springs back; check boxes, radio buttons and disclosure triangles never do.
    void SetSpringLoaded(bool on) { fSpringLoaded = on; }
    bool SpringLoaded() const { return fSpringLoaded; }
    // Acts at the press instead of at the release.
    void SetNotificationOnMouseDown(bool on) { fNotificationOnMouseDown = on; }
    bool NotificationOnMouseDown() const { return fNotificationOnMouseDown; }
    // Takes the keyboard focus when it is pressed; on at first.
    void SetChangeFocusOnClick(bool on) { fChangeFocusOnClick = on; }
    bool ChangeFocusOnClick() const { return fChangeFocusOnClick; }
    // Looks like the button that a panel expects to be clicked.
    void SetDefaultAppearance(bool on);
    bool DefaultAppearance() const { return fDefaultAppearance; }

    // Looks, all in view units. The content moves by the offset, and by the down offset too while held down.
    void SetContentOffsetX(float x);
    float ContentOffsetX() const { return fContentOffset.x; }
    void SetContentOffsetY(float y);
    float ContentOffsetY() const { return fContentOffset.y; }
    void SetDownOffsetX(float x);
    float DownOffsetX() const { return fDownOffset.x; }
    void SetDownOffsetY(float y);
    float DownOffsetY() const { return fDownOffset.y; }
    void SetCornerRadius(float radius);
    float CornerRadius() const { return fCornerRadius; }
    // Width of the outline, and of the outline that shows the focus.
    void SetStrokeSize1(float width);
    float StrokeSize1() const { return fStrokeSize1; }
    void SetStrokeSize2(float width);
    float StrokeSize2() const { return fStrokeSize2; }

    bool UI_DoMouseEvent(UI_Node* node, const ui::MouseEvent& event) override;
    bool UI_DoKeyEvent(const ui::KeyEvent& event) override;
    bool UI_DoTimerNotify(long timerID) override;
    void UI_NodeChanged(NodeChange change) override;
    ui::AccessibleInfo UI_GetAccessibleInfo() const override;
    bool UI_DoAccessibleAction(const ui::AccessibleRequest& request) override;
    const ui::PropertyTable& UI_GetPropertyTable() const override;
    static const ui::PropertyTable& PropertiesOfButton();

protected:
    ~UI_Button() override = default;

    // How the ground of a button is drawn: how much of the accent colour it has (0...1), whether its outline stands out
    // as under the pointer, and whether it shows the focus.
    struct Face {
        float accent = 0;
        bool hot = false;
        bool focused = false;
        bool isRound = false; // half-discs at the ends, whatever the corner radius

        bool IsLit() const { return accent > 0.5F; }
    };

    void ControlStateChanged() override;
    // Whether a click turns the value over.
    virtual bool IsToggle() const { return !fSpringLoaded; }
    // What a click does to the value. True if listeners are to be told of a change.
    virtual bool ChangeByClick();
    // Changes the value by a click whose gesture has begun, and tells everybody. Listeners may destroy the button.
    void FinishClick();
    // A whole click at once.
    void ClickByKey();
    void TakeFocusByClick();

    Face FaceOfState() const;
    void DrawFace(limner::Limner& context, const Face& face) const;
    // The colour of text and pictures on a face.
    limner::Color ContentColor(const Face& face) const;
    // The local rectangle, moved by the offsets.
    Rect ContentRect() const;

private:
    bool Press();
    bool Release(bool inside);
    void EndTracking();
    float AccentOfState() const;
    void SetPressed(bool pressed);
    void SetLook(float& member, float value, float low, float high);

    Point fContentOffset;
    Point fDownOffset;
    float fCornerRadius = 4;
    float fStrokeSize1 = 1;
    float fStrokeSize2 = 2;
    long fFlashTimer = 0; // 0: none yet
    bool fPressed = false;
    bool fTracking = false; // a press that has not acted yet is held
    bool fHeld = false;     // a press is held
    bool fSpringLoaded = true;
    bool fNotificationOnMouseDown = false;
    bool fChangeFocusOnClick = true;
    bool fDefaultAppearance = false;
};

} // namespace kroui::controls
