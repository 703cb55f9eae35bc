#include "kroui/controls/UI_HotTextNumber.h"

#include "kroui/controls/TextMeasure.h"
#include "kroui/ui/AdapterRegistry.h"

#include <algorithm>

namespace kroui::controls {

using ui::Key;
using ui::MakeProperty;
using ui::MouseEvent;
using ui::PropertyType;

namespace {

const ui::AdapterRegistrar<UI_HotTextNumber> sRegistrar("kroui::controls::UI_HotTextNumber");

template <auto Getter, auto Setter>
constexpr ui::PropertyRow DoubleRow(std::string_view key) {
    return MakeValueProperty<UI_HotTextNumber, PropertyType::kDouble, Getter, Setter>(key);
}

template <std::uint32_t Flag>
constexpr ui::PropertyRow FormatRow(std::string_view key) {
    return MakeProperty<PropertyType::kBool, &UI_HotTextNumber::HasFormat<Flag>, &UI_HotTextNumber::SetFormat<Flag>>(
        key);
}

} // namespace

UI_HotTextNumber::UI_HotTextNumber() {
    fEntry.SetReader([this](std::u16string_view typed) { return ReadEntry(typed); });
}

krocore::string16 UI_HotTextNumber::EntryText() const {
    constexpr std::uint32_t kWithoutPadding = krocore::kFormatNoTrailingZeros | krocore::kFormatNoLocalization;
    return krocore::FormatNumber(GetValue(), GetDecimalPlaces(), GetFormatFlags() & kWithoutPadding);
}

std::optional<double> UI_HotTextNumber::ReadEntry(std::u16string_view typed) const {
    return krocore::ParseTypedNumber(typed, GetTextLabel());
}

float UI_HotTextNumber::NaturalTextWidth() const {
    float widest = 0;
    for (const double bound : {GetMinValue(), GetMaxValue()})
        widest = std::max(widest, TextWidth(*this, FormatOf(bound), GetFont()));
    return widest;
}

void UI_HotTextNumber::UI_Draw(limner::Limner* context) {
    const limner::SupplierInterface* const supplier = UI_GetDrawSupplier();
    if (!supplier) return;
    const krocore::string16 text = ShownText();
    HotTextLook look = Look(text);
    look.hovered = look.hovered || fGesture.IsDragging();
    const HotTextLook::Places places = look.PlaceIn(UI_GetLocalRect(), *supplier);
    if (fEntry.IsOpen()) look.text = {};
    look.Draw(*context, *this, places);
}

bool UI_HotTextNumber::UI_DoMouseEvent(UI_Node* node, const MouseEvent& event) {
    TrackHover(node, event);
    if (node || !IsEnabled()) return false;
    switch (event.action) {
    case MouseEvent::Action::kPressed: return Press(event);
    case MouseEvent::Action::kDragged:
        fGesture.DragBy(fDrag.MoveTo(event.position) / NumberDrag::Travel(StepCount()), event.modifiers);
        return true;
    case MouseEvent::Action::kReleased: Release(event); return true;
    case MouseEvent::Action::kCaptureLost: fGesture.Abandon(); return true;
    case MouseEvent::Action::kWheel: return fEntry.IsOpen() || HandleWheel(event);
    default: return false;
    }
}

bool UI_HotTextNumber::Press(const MouseEvent& event) {
    if (event.button != 1) return false;
    UI_TakeFocus();
    if (event.clickCount == 2) {
        if (!OpenEntry()) fGesture.Reset();
        return true;
    }
    fDrag.Begin(event.position);
    fGesture.BeginDrag(GetScale() == kLinear && NumberDrag::IsInSteps(StepCount()));
    UI_Invalidate();
    return true;
}

void UI_HotTextNumber::Release(const MouseEvent& event) {
    const bool isReset = fGesture.IsDragging() && !fDrag.HasMoved() && event.Has(ui::kCommand);
    fGesture.EndDrag();
    if (isReset) fGesture.Reset();
    UI_Invalidate();
}

bool UI_HotTextNumber::UI_DoKeyEvent(const ui::KeyEvent& event) {
    if (!IsEnabled() || fEntry.IsOpen()) return false;
    const bool isEntryKey = event.key == Key::kEnter || event.key == Key::kF2;
    if (isEntryKey && event.modifiers == ui::kNoModifier && !fGesture.IsDragging()) return OpenEntry();
    return fGesture.Key(event);
}

bool UI_HotTextNumber::UI_DoTextEvent(const ui::TextEvent& event) {
    const bool canBegin = IsEnabled() && !fEntry.IsOpen() && !fGesture.IsDragging();
    if (!canBegin || !NumberEntry::IsNumberStart(event.text) || !OpenEntry()) return false;
    fEntry.Field()->TypeText(event.text);
    return true;
}

bool UI_HotTextNumber::UI_DoTimerNotify(long timerID) {
    return HandleTimer(timerID) || UI_HotText::UI_DoTimerNotify(timerID);
}

void UI_HotTextNumber::UI_FocusChanged(bool hasFocus) {
    if (!hasFocus) fGesture.Flush();
    UI_HotText::UI_FocusChanged(hasFocus);
}

void UI_HotTextNumber::UI_NodeChanged(NodeChange change) {
    if (change == kDetaching) {
        fEntry.Close();
        SettleGesture();
    }
    UI_HotText::UI_NodeChanged(change);
}

ui::Cursor UI_HotTextNumber::UI_GetCursor(Point /*point*/) const {
    return IsEnabled() ? ui::Cursor::kHorizontal : ui::Cursor::kArrow;
}

ui::AccessibleInfo UI_HotTextNumber::UI_GetAccessibleInfo() const {
    ui::AccessibleInfo info = UI_HotText::UI_GetAccessibleInfo();
    info.role = ui::Role::kNumber;
    info.value = ShownText();
    if (!GetTextLabel().empty()) info.value.append(u" ").append(GetTextLabel());
    info.actions = {};
    AddAccessibleRange(info);
    return info;
}

bool UI_HotTextNumber::UI_DoAccessibleAction(const ui::AccessibleRequest& request) {
    fEntry.Close();
    return HandleAccessible(request);
}

const ui::PropertyTable& UI_HotTextNumber::UI_GetPropertyTable() const {
    return PropertiesOfHotTextNumber();
}

const ui::PropertyTable& UI_HotTextNumber::PropertiesOfHotTextNumber() {
    using Number = UI_HotTextNumber;
    static constexpr ui::PropertyRow kRows[] = {
        DoubleRow<&Number::GetCommandIncrement, &Number::SetCommandIncrement>("cmdIncrement"),
        MakeValueProperty<Number, PropertyType::kInt, &Number::GetDecimalPlaces, &Number::SetDecimalPlaces>(
            "decimalPlaces"),
        FormatRow<krocore::kFormatAlwaysSign>("formatAlwaysSign"),
        FormatRow<krocore::kFormatLeadingSpaces>("formatLeadingSpaces"),
        FormatRow<krocore::kFormatNoLocalization>("formatNoLocalization"),
        FormatRow<krocore::kFormatNoTrailingZeros>("formatNoTrailingZeros"),
        MakeProperty<PropertyType::kBool, &Number::FormatNormal, &Number::SetFormatNormal>("formatNormal"),
        FormatRow<krocore::kFormatPadSign>("formatPadSign"),
        FormatRow<krocore::kFormatUseSeparator>("formatUseSeparator"),
        DoubleRow<&Number::GetIncrement, &Number::SetIncrement>("increment"),
        DoubleRow<&Number::GetMaxValue, &Number::SetMaxValue>("maxValue"),
        DoubleRow<&Number::GetMinValue, &Number::SetMinValue>("minValue"),
        MakeProperty<PropertyType::kBool, &Number::NumericInput, &Number::SetNumericInput>("numericInput"),
        DoubleRow<&Number::GetShiftIncrement, &Number::SetShiftIncrement>("shiftIncrement"),
        DoubleRow<&Number::GetValue, &Number::SetValue>("value"),
    };
    static const ui::PropertyTable sTable{"kroui::controls::UI_HotTextNumber", kRows, &PropertiesOfHotText()};
    return sTable;
}

void UI_HotTextNumber::SendGesture(int changeMessage) {
    using Message = UI_InteractiveControlChangedMessage;
    SendInteractive(static_cast<Message::ChangeMessage>(changeMessage));
    if (changeMessage == Message::kEnded) SendChanged();
}

void UI_HotTextNumber::ControlStateChanged() {
    if (!IsEnabled()) {
        fEntry.Close();
        SettleGesture();
    }
    UI_HotText::ControlStateChanged();
}

bool UI_HotTextNumber::OpenEntry() {
    const limner::SupplierInterface* const supplier = UI_GetDrawSupplier();
    if (!fNumericInput || !supplier || !UI_IsAttached()) return false;
    SettleGesture();
    const krocore::string16 shown = ShownText();
    const HotTextLook::Places places = Look(shown).PlaceIn(UI_GetLocalRect(), *supplier);
    constexpr auto kAlignment = limner::TextAlignment::kRight;
    const Rect frame = HotTextLook::FieldFrame(UI_GetLocalRect(), places, kAlignment);
    fEntry.Open(frame, EntryText(), GetTextLabel(), GetFont(), kAlignment);
    return true;
}

} // namespace kroui::controls
