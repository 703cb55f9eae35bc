#include "uit/controls/ColorField.h"

#include "controls/colors/ColorPicker.h"

#include "kroui/ui/AdapterRegistry.h"
#include "kroui/ui/PixelGrid.h"

namespace uit::controls {

using kroui::ui::Key;
using kroui::ui::MakeProperty;
using kroui::ui::MouseEvent;
using kroui::ui::PropertyType;

namespace {

const kroui::ui::AdapterRegistrar<ColorField> sRegistrar("uit::controls::ColorField");

constexpr float kRadius = 3;
constexpr float kFocusGap = 2; // between the focus ring and the swatch
constexpr float kDisabledOpacity = 0.4F;

krocore::string16 HexText(const kroui::limner::Color& color) {
    constexpr std::string_view kHex = "0123456789ABCDEF";
    std::string text = "#";
    for (const auto channel : {color.red, color.green, color.blue}) {
        const auto byte = static_cast<unsigned>(std::lround(std::clamp(channel, 0.0F, 1.0F) * 255));
        text += kHex[byte >> 4];
        text += kHex[byte & 15];
    }
    return krocore::FromASCII(text);
}

} // namespace

ColorField::ColorField() {
    SetWantsKeyboardFocus(true);
}

ColorField::~ColorField() = default;

void ColorField::SetColor(const kroui::limner::Color& color) {
    if (color == fColor) return;
    fColor = color;
    UI_Invalidate();
    if (fPicker) fPicker->ShowColor(color);
}

void ColorField::SetAllowUserColorChange(bool allow) {
    if (allow == fAllowUserColorChange) return;
    fAllowUserColorChange = allow;
    if (!allow) ClosePicker();
    UI_Invalidate();
}

void ColorField::UI_Draw(kroui::limner::Limner* limner) {
    const kroui::ui::PixelGrid grid(*this, *limner);
    const auto bounds = grid.Snap(UI_GetLocalRect());
    const bool isFocused = ShowsFocus() && fAllowUserColorChange;
    const auto gap = grid.Line(kFocusGap);
    const auto swatch = isFocused ? bounds.Inset(gap, gap) : bounds;
    limner->FillRoundRect(swatch, kRadius, fColor.WithAlpha(fColor.alpha * (IsEnabled() ? 1 : kDisabledOpacity)));
    const bool isLit = CanOpen() && (IsHovered() || fIsPressed || fPicker);
    limner->FrameRoundRect(swatch, kRadius,
                           ThemeClient::GetColor(isLit ? kroui::ui::kColorAccent : kroui::ui::kColorLine), grid.Line());
    if (isFocused) {
        limner->FrameRoundRect(bounds, kRadius + gap, ThemeClient::GetColor(kroui::ui::kColorAccent), grid.Line());
    }
}

bool ColorField::UI_DoMouseEvent(UI_Node* node, const MouseEvent& event) {
    if (!CanOpen() || node != nullptr) return UI_InteractiveControlView::UI_DoMouseEvent(node, event);
    switch (event.action) {
    case MouseEvent::Action::kPressed:
        if (event.button != 1) break;
        UI_TakeFocus();
        fIsPressed = true;
        UI_Invalidate();
        return true;
    case MouseEvent::Action::kReleased:
        if (std::exchange(fIsPressed, false) && UI_GetLocalRect().Contains(event.position)) OpenPicker();
        UI_Invalidate();
        return true;
    case MouseEvent::Action::kCaptureLost:
        fIsPressed = false;
        UI_Invalidate();
        break;
    default: break;
    }
    return UI_InteractiveControlView::UI_DoMouseEvent(node, event);
}

bool ColorField::UI_DoKeyEvent(const kroui::ui::KeyEvent& event) {
    const bool opens = event.key == Key::kSpace || event.key == Key::kEnter;
    if (!opens || !CanOpen() || event.modifiers != kroui::ui::kNoModifier) {
        return UI_InteractiveControlView::UI_DoKeyEvent(event);
    }
    OpenPicker();
    return true;
}

bool ColorField::UI_CanTakeFocus() const {
    return fAllowUserColorChange && UI_InteractiveControlView::UI_CanTakeFocus();
}

void ColorField::UI_NodeChanged(NodeChange change) {
    UI_InteractiveControlView::UI_NodeChanged(change);
    if (change == kDetaching || change == kHidden) {
        fIsPressed = false;
        ClosePicker();
    }
}

kroui::ui::Cursor ColorField::UI_GetCursor(kroui::Point /*point*/) const {
    return CanOpen() ? kroui::ui::Cursor::kHand : kroui::ui::Cursor::kArrow;
}

kroui::ui::AccessibleInfo ColorField::UI_GetAccessibleInfo() const {
    auto info = UI_InteractiveControlView::UI_GetAccessibleInfo();
    info.role = fAllowUserColorChange ? kroui::ui::Role::kButton : kroui::ui::Role::kImage;
    info.value = HexText(fColor);
    info.focusable = info.focusable && fAllowUserColorChange;
    if (CanOpen()) info.actions = kroui::ui::AccessibleActions(kroui::ui::AccessibleAction::kPress);
    return info;
}

bool ColorField::UI_DoAccessibleAction(const kroui::ui::AccessibleRequest& request) {
    return request.action == kroui::ui::AccessibleAction::kPress && UI_DoKeyEvent({.key = Key::kEnter});
}

const kroui::ui::PropertyTable& ColorField::UI_GetPropertyTable() const {
    return PropertiesOfColorField();
}

const kroui::ui::PropertyTable& ColorField::PropertiesOfColorField() {
    static constexpr kroui::ui::PropertyRow kRows[] = {
        MakeProperty<PropertyType::kBool, &ColorField::AllowUserColorChange, &ColorField::SetAllowUserColorChange>(
            "allowUserColorChange"),
    };
    static const kroui::ui::PropertyTable sTable{"uit::controls::ColorField", kRows,
                                                 &PropertiesOfInteractiveControlView(), true};
    return sTable;
}

void ColorField::ControlStateChanged() {
    if (!IsEnabled()) {
        fIsPressed = false;
        ClosePicker();
    }
    UI_InteractiveControlView::ControlStateChanged();
}

void ColorField::OpenPicker() {
    auto* window = UI_GetWindow();
    if (window == nullptr || fPicker) return;
    fPicker = new ColorPicker;
    const auto corner = UI_LocalToWindow({});
    const auto& frame = UI_GetFrame();
    fPicker->Open(
        *window, {corner.x, corner.y, frame.width, frame.height}, fColor,
        [this](const kroui::limner::Color& color, ChangeMessage change) { Choose(color, change); },
        [this] {
            fPicker.reset();
            if (fIsChanging) Choose(fCommitted, ChangeMessage::kAbandoned);
            UI_Invalidate();
        });
    UI_Invalidate();
}

void ColorField::ClosePicker() {
    if (const auto picker = fPicker) picker->Close();
}

// The message goes out after the colour is set; the committed change follows the end of a gesture that changed it.
void ColorField::Choose(const kroui::limner::Color& color, ChangeMessage change) {
    if (change == ChangeMessage::kStarted) fCommitted = fColor;
    if (change == ChangeMessage::kChanged && color == fColor) return;
    fIsChanging = change == ChangeMessage::kStarted || change == ChangeMessage::kChanged;
    if (change == ChangeMessage::kAbandoned) {
        fColor = fCommitted;
    } else if (change == ChangeMessage::kChanged) {
        fColor = color;
    }
    UI_Invalidate();
    SendInteractive(change);
    if (change == ChangeMessage::kEnded && fColor != fCommitted) SendChanged();
}

} // namespace uit::controls
