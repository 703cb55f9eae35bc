#include "kroui/controls/UI_Button.h"

#include "controls/base/ControlDrawing.h"
#include "kroui/ui/UI_NodeManager.h"

#include <algorithm>

namespace kroui::controls {

using drawing::Assign;
using ui::Key;
using ui::MakeProperty;
using ui::MouseEvent;
using ui::PropertyType;
using ChangeMessage = UI_InteractiveControlChangedMessage::ChangeMessage;

namespace {

constexpr float kLargestOffset = 1000;
constexpr float kLargestStroke = 20;
constexpr float kLargestRadius = 100;

// How long a push button looks pressed when a key pushes it.
constexpr float kFlashSeconds = 0.12F;

// How much accent the ground of a lit button has in each state.
constexpr float kAccentNormal = 1;
constexpr float kAccentHovered = 0.9F;
constexpr float kAccentPressed = 0.8F;
constexpr float kAccentDisabled = 0.25F;

bool IsActivationKey(const ui::KeyEvent& event) {
    return (event.key == Key::kSpace || event.key == Key::kEnter) && event.modifiers == ui::kNoModifier;
}

} // namespace

UI_Button::UI_Button() {
    SetWantsKeyboardFocus(true);
}

void UI_Button::SetValue(int value) {
    SetDownState(value != 0);
}

int UI_Button::GetValue() const {
    return DownState() ? 1 : 0;
}

void UI_Button::SetDefaultAppearance(bool on) {
    if (Assign(fDefaultAppearance, on)) UI_Invalidate();
}

void UI_Button::SetContentOffsetX(float x) {
    SetLook(fContentOffset.x, x, -kLargestOffset, kLargestOffset);
}

void UI_Button::SetContentOffsetY(float y) {
    SetLook(fContentOffset.y, y, -kLargestOffset, kLargestOffset);
}

void UI_Button::SetDownOffsetX(float x) {
    SetLook(fDownOffset.x, x, -kLargestOffset, kLargestOffset);
}

void UI_Button::SetDownOffsetY(float y) {
    SetLook(fDownOffset.y, y, -kLargestOffset, kLargestOffset);
}

void UI_Button::SetCornerRadius(float radius) {
    SetLook(fCornerRadius, radius, 0, kLargestRadius);
}

void UI_Button::SetStrokeSize1(float width) {
    SetLook(fStrokeSize1, width, 0, kLargestStroke);
}

void UI_Button::SetStrokeSize2(float width) {
    SetLook(fStrokeSize2, width, 0, kLargestStroke);
}

void UI_Button::SetLook(float& member, float value, float low, float high) {
    if (Assign(member, drawing::Bounded(value, low, high))) UI_Invalidate();
}

bool UI_Button::UI_DoMouseEvent(UI_Node* node, const MouseEvent& event) {
    if (node || !IsEnabled()) return UI_InteractiveControlView::UI_DoMouseEvent(node, event);
    const bool isInside = UI_GetLocalRect().Contains(event.position);
    switch (event.action) {
    case MouseEvent::Action::kPressed:
        if (event.button == 1) return Press();
        break;
    case MouseEvent::Action::kDragged:
        if (fHeld) SetPressed(isInside);
        return fHeld;
    case MouseEvent::Action::kReleased: return Release(isInside);
    case MouseEvent::Action::kCaptureLost: EndTracking(); break;
    default: break;
    }
    return UI_InteractiveControlView::UI_DoMouseEvent(node, event);
}

bool UI_Button::Press() {
    TakeFocusByClick();
    fHeld = true;
    fTracking = true;
    SetPressed(true);
    SendInteractive(ChangeMessage::kStarted);
    // A listener may have disabled the button.
    if (fTracking && fNotificationOnMouseDown) {
        fTracking = false;
        FinishClick();
    }
    return true;
}

bool UI_Button::Release(bool inside) {
    if (!fHeld) return false;
    if (fTracking && inside) {
        fTracking = false;
        EndTracking();
        FinishClick();
    } else {
        EndTracking();
    }
    return true;
}

void UI_Button::EndTracking() {
    const bool isAbandoned = fTracking;
    fHeld = false;
    fTracking = false;
    SetPressed(false);
    if (isAbandoned) SendInteractive(ChangeMessage::kAbandoned);
}

void UI_Button::SetPressed(bool pressed) {
    if (!Assign(fPressed, pressed)) return;
    if (IsToggle()) {
        UI_Invalidate();
    } else {
        SetDownState(pressed);
    }
}

bool UI_Button::ChangeByClick() {
    if (IsToggle()) SetValue(IsChecked() ? 0 : 1);
    return true;
}

void UI_Button::FinishClick() {
    const bool isChanged = ChangeByClick();
    if (isChanged) SendInteractive(ChangeMessage::kChanged);
    SendInteractive(ChangeMessage::kEnded);
    if (isChanged) SendChanged();
}

void UI_Button::ClickByKey() {
    SendInteractive(ChangeMessage::kStarted);
    if (!IsToggle()) {
        if (fFlashTimer == 0) fFlashTimer = ui::UI_NodeManager::Get().GetUniqueTimerID();
        SetPressed(true);
        UI_InstallTimer(kFlashSeconds, fFlashTimer);
    }
    FinishClick();
}

void UI_Button::TakeFocusByClick() {
    if (fChangeFocusOnClick) UI_TakeFocus();
}

bool UI_Button::UI_DoKeyEvent(const ui::KeyEvent& event) {
    if (!IsEnabled()) return false;
    if (fHeld && event.key == Key::kEscape) {
        EndTracking();
        return true;
    }
    if (!IsActivationKey(event)) return UI_InteractiveControlView::UI_DoKeyEvent(event);
    if (!event.isRepeat && !fHeld) ClickByKey();
    return true;
}

bool UI_Button::UI_DoTimerNotify(long timerID) {
    if (timerID != fFlashTimer) return UI_InteractiveControlView::UI_DoTimerNotify(timerID);
    UI_RemoveTimer(fFlashTimer, true);
    if (!fHeld) SetPressed(false);
    return true;
}

void UI_Button::UI_NodeChanged(NodeChange change) {
    UI_InteractiveControlView::UI_NodeChanged(change);
    if (change == kDetaching || change == kHidden) EndTracking();
}

void UI_Button::ControlStateChanged() {
    if (!IsEnabled() && (fHeld || fPressed)) EndTracking();
    UI_InteractiveControlView::ControlStateChanged();
}

float UI_Button::AccentOfState() const {
    const bool isOn = fDefaultAppearance || IsChecked();
    if (!IsEnabled()) return isOn ? kAccentDisabled : 0;
    // What is lit anyway shows the press by fading.
    const bool isLitAnyway = fDefaultAppearance || (IsToggle() && IsChecked());
    if (fPressed) return isLitAnyway ? kAccentPressed : kAccentNormal;
    if (!isOn) return 0;
    return IsHovered() ? kAccentHovered : kAccentNormal;
}

UI_Button::Face UI_Button::FaceOfState() const {
    return {AccentOfState(), IsEnabled() && (IsHovered() || fPressed), ShowsFocus() && !fPressed, false};
}

void UI_Button::DrawFace(limner::Limner& context, const Face& face) const {
    const ui::PixelGrid grid(*this, context);
    const Rect rect = grid.Snap(UI_GetLocalRect());
    const float corner = face.isRound ? rect.height / 2 : fCornerRadius;
    const limner::Color ground = GetColor(face.hot ? ui::kColorRaisedHover : ui::kColorRaised);
    const limner::Color accent = GetColor(ui::kColorAccent);
    if (face.IsLit()) {
        // The colour of text takes the accent farther from that of what is written on it, in either theme.
        context.FillRoundRect(rect, corner, accent);
        if (face.accent < 1) context.FillRoundRect(rect, corner, GetColor(ui::kColorText).WithAlpha(1 - face.accent));
    } else {
        context.FillRoundRect(rect, corner, ground);
        if (face.accent > 0) context.FillRoundRect(rect, corner, accent.WithAlpha(face.accent));
    }

    const float outline = grid.Line(fStrokeSize1);
    const float ring = grid.Line(fStrokeSize2);
    if (face.focused && face.IsLit()) {
        // On the accent the ring stands inside, in the colour of what is written there.
        const float radius = std::max(0.0F, corner - ring);
        context.FrameRoundRect(rect.Inset(ring, ring), radius, GetColor(ui::kColorAccentText), outline);
    } else if (face.focused) {
        context.FrameRoundRect(rect, corner, accent, ring);
    } else if (!face.IsLit() && outline > 0) {
        context.FrameRoundRect(rect, corner, face.hot ? accent : GetColor(ui::kColorLine), outline);
    }
}

limner::Color UI_Button::ContentColor(const Face& face) const {
    // On a tinted ground the colour of disabled text would hardly be seen.
    if (!IsEnabled()) return GetColor(face.accent > 0 ? ui::kColorDimText : ui::kColorDisabledText);
    return GetColor(face.IsLit() ? ui::kColorAccentText : ui::kColorText);
}

Rect UI_Button::ContentRect() const {
    const Rect rect = UI_GetLocalRect().Offset(fContentOffset.x, fContentOffset.y);
    return fPressed ? rect.Offset(fDownOffset.x, fDownOffset.y) : rect;
}

ui::AccessibleInfo UI_Button::UI_GetAccessibleInfo() const {
    ui::AccessibleInfo info = UI_InteractiveControlView::UI_GetAccessibleInfo();
    info.role = ui::Role::kButton;
    if (IsToggle()) {
        info.value = drawing::OnOffText(IsChecked());
        info.checked = IsChecked();
    }
    if (IsEnabled()) info.actions = ui::AccessibleActions(ui::AccessibleAction::kPress);
    return info;
}

bool UI_Button::UI_DoAccessibleAction(const ui::AccessibleRequest& request) {
    if (request.action != ui::AccessibleAction::kPress || !IsEnabled() || fHeld) return false;
    ClickByKey();
    return true;
}

const ui::PropertyTable& UI_Button::UI_GetPropertyTable() const {
    return PropertiesOfButton();
}

const ui::PropertyTable& UI_Button::PropertiesOfButton() {
    using T = UI_Button;
    static constexpr ui::PropertyRow kRows[] = {
        MakeProperty<PropertyType::kBool, &T::ChangeFocusOnClick, &T::SetChangeFocusOnClick>("changeFocusOnClick"),
        MakeProperty<PropertyType::kFloat, &T::ContentOffsetX, &T::SetContentOffsetX>("contentOffsetX"),
        MakeProperty<PropertyType::kFloat, &T::ContentOffsetY, &T::SetContentOffsetY>("contentOffsetY"),
        MakeProperty<PropertyType::kFloat, &T::CornerRadius, &T::SetCornerRadius>("cornerRadius"),
        MakeProperty<PropertyType::kBool, &T::DefaultAppearance, &T::SetDefaultAppearance>("defaultAppearance"),
        MakeProperty<PropertyType::kFloat, &T::DownOffsetX, &T::SetDownOffsetX>("downOffsetX"),
        MakeProperty<PropertyType::kFloat, &T::DownOffsetY, &T::SetDownOffsetY>("downOffsetY"),
        MakeProperty<PropertyType::kBool, &T::NotificationOnMouseDown, &T::SetNotificationOnMouseDown>(
            "notificationOnMouseDown"),
        MakeProperty<PropertyType::kBool, &T::SpringLoaded, &T::SetSpringLoaded>("springLoaded"),
        MakeProperty<PropertyType::kFloat, &T::StrokeSize1, &T::SetStrokeSize1>("strokeSize1"),
        MakeProperty<PropertyType::kFloat, &T::StrokeSize2, &T::SetStrokeSize2>("strokeSize2"),
    };
    static const ui::PropertyTable sTable{"kroui::controls::UI_Button", kRows, &PropertiesOfInteractiveControlView()};
    return sTable;
}

} // namespace kroui::controls
