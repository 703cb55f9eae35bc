#include "controls/curves/PointEditDialog.h"

#include <algorithm>
#include <cmath>

namespace uit::controls {

using kroui::Point;
using kroui::Rect;
using kroui::limner::Limner;
using kroui::ui::Key;
using kroui::ui::MouseEvent;

namespace {

constexpr kroui::limner::Font kFont{12, false};
constexpr float kPadding = 12;
constexpr float kGap = 8;
constexpr float kRowHeight = 24;
constexpr float kFieldWidth = 84;
constexpr float kUnitGap = 5;
constexpr float kPointGap = 14; // from the point to the panel

float WidthOf(const kroui::limner::SupplierInterface& supplier, std::u16string_view text) {
    return text.empty() ? 0 : std::ceil(supplier.MeasureText(text, kFont).width);
}

} // namespace

PointEditDialog::PointEditDialog() {
    UI_SetID("PointEditDialog");
    const auto make = [this](Row& row, std::string_view id) {
        row.field.reset(new TextField);
        row.field->UI_SetID(id);
        row.field->SetAlignment(kroui::limner::TextAlignment::kRight);
        row.field->SetFinishHandler([this](TextField::Finish finish) { OnFinish(finish); });
        ChildPushBack(row.field);
    };
    make(fHorizontal, "HorizontalField");
    make(fVertical, "VerticalField");
}

void PointEditDialog::Open(kroui::ui::UI_Window& window, Point point, const Value& horizontal, const Value& vertical,
                           Accept accept, boost::function<void()> closed) {
    SetRow(fHorizontal, horizontal);
    SetRow(fVertical, vertical);
    Arrange(window, point);
    fAccept = std::move(accept);
    fClosed = std::move(closed);
    TextField& first = horizontal.canChange ? *fHorizontal.field : *fVertical.field;
    first.UI_TakeFocus();
    first.SelectAll();
}

void PointEditDialog::SetRow(Row& row, const Value& value) {
    row.axis = value.axis;
    row.before = value.text;
    row.field->SetText(value.text);
    row.field->SetError({});
    row.field->SetEnabled(value.canChange);
}

// Beside the point, on the side with more room, and wholly in the window.
void PointEditDialog::Arrange(kroui::ui::UI_Window& window, Point point) {
    const kroui::limner::SupplierInterface& supplier = window.Supplier();
    fLabelWidth = std::max(WidthOf(supplier, fHorizontal.axis.label), WidthOf(supplier, fVertical.axis.label));
    const float unit = std::max(WidthOf(supplier, fHorizontal.axis.unit), WidthOf(supplier, fVertical.axis.unit));
    const float left = kPadding + fLabelWidth + kGap;
    const float width = left + kFieldWidth + (unit > 0 ? kUnitGap + unit : 0) + kPadding;
    const float height = 2 * (kPadding + kRowHeight) + kGap;
    const bool isRight = point.x < window.GetSize().width / 2;
    ShowPanel(window,
              {isRight ? point.x + kPointGap : point.x - kPointGap - width, point.y - height / 2, width, height});
    const float top = kShadow + kPadding;
    fHorizontal.field->UI_SetFrame({kShadow + left, top, kFieldWidth, kRowHeight});
    fVertical.field->UI_SetFrame({kShadow + left, top + kRowHeight + kGap, kFieldWidth, kRowHeight});
}

void PointEditDialog::Close() {
    if (auto* const window = UI_GetWindow()) window->HideOverlay(this);
}

void PointEditDialog::UI_Draw(Limner* limner) {
    DrawPanel(*limner);
    const Rect panel = Panel();
    for (const Row* const row : {&fHorizontal, &fVertical}) {
        const Rect field = row->field->UI_GetFrame();
        const int color = row->field->IsEnabled() ? kroui::ui::kColorText : kroui::ui::kColorDisabledText;
        limner->DrawText(row->axis.label, kFont, GetColor(color),
                         {panel.left + kPadding, field.top, fLabelWidth, field.height},
                         {kroui::limner::TextAlignment::kRight, kroui::limner::TextTruncation::kNone, false});
        const float unit = field.Right() + kUnitGap;
        limner->DrawText(row->axis.unit, kFont, GetColor(kroui::ui::kColorDimText),
                         {unit, field.top, panel.Right() - unit, field.height}, {});
    }
}

bool PointEditDialog::UI_DoMouseEvent(UI_Node* /*node*/, const MouseEvent& event) {
    if (event.IsAction(MouseEvent::Action::kPressed) && !Panel().Contains(event.position)) Close();
    return true;
}

bool PointEditDialog::UI_DoKeyEvent(const kroui::ui::KeyEvent& event) {
    if (TextField* const field = FocusField()) return field->UI_DoKeyEvent(event);
    if (event.key == Key::kEscape) Close();
    if (event.key == Key::kEnter) AcceptAll();
    return true;
}

bool PointEditDialog::UI_DoTextEvent(const kroui::ui::TextEvent& event) {
    TextField* const field = FocusField();
    return field != nullptr && field->UI_DoTextEvent(event);
}

void PointEditDialog::UI_NodeChanged(NodeChange change) {
    UI_Node::UI_NodeChanged(change);
    if (change != kDetaching) return;
    fAccept.clear();
    if (const auto closed = std::exchange(fClosed, {})) closed();
}

kroui::ui::AccessibleInfo PointEditDialog::UI_GetAccessibleInfo() const {
    auto info = UI_Node::UI_GetAccessibleInfo();
    info.role = kroui::ui::Role::kGroup;
    info.name = krocore::Localize("$$$/uit/PointEditDialog/Name=Edit Point");
    return info;
}

PointEditDialog::TextField* PointEditDialog::FocusField() const {
    for (const Row* const row : {&fHorizontal, &fVertical})
        if (row->field->UI_HasFocus()) return row->field.get();
    return nullptr;
}

void PointEditDialog::OnFinish(TextField::Finish finish) {
    switch (finish) {
    case TextField::Finish::kEnter: AcceptAll(); break;
    case TextField::Finish::kEscape: Close(); break;
    case TextField::Finish::kTab:
    case TextField::Finish::kBackTab: MoveFocus(); break;
    case TextField::Finish::kFocusLost: break;
    }
}

void PointEditDialog::MoveFocus() {
    TextField& other = FocusField() == fHorizontal.field.get() ? *fVertical.field : *fHorizontal.field;
    if (!other.IsEnabled()) return;
    other.UI_TakeFocus();
    other.SelectAll();
}

void PointEditDialog::AcceptAll() {
    std::optional<double> horizontal;
    std::optional<double> vertical;
    if (!Check(fHorizontal, horizontal) || !Check(fVertical, vertical)) return;
    const Accept accept = fAccept;
    if (accept && (horizontal || vertical)) accept(horizontal, vertical);
    Close();
}

// A field that was not touched gives no value, so that nothing is rounded to what it shows.
bool PointEditDialog::Check(Row& row, std::optional<double>& value) {
    if (row.field->GetText() == row.before || !row.field->IsEnabled()) return true;
    value = row.axis.Read(row.field->GetText());
    if (value) return true;
    const krocore::string16 message = krocore::Localize(
        "$$$/uit/PointEditDialog/NotANumber=\"@0\" is not a number. Escape leaves the point as it is.");
    row.field->SetError(krocore::ReplacePlaceholders(message, {row.field->GetText()}));
    row.field->UI_TakeFocus();
    row.field->SelectAll();
    if (row.field->UI_GetWindow()) row.field->UI_GetWindow()->ShowTip(*row.field);
    return false;
}

} // namespace uit::controls
