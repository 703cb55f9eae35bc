#include "controls/colors/ColorPicker.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace uit::controls {

using kroui::Point;
using kroui::Rect;
using kroui::limner::Color;
using kroui::ui::Key;
using kroui::ui::MouseEvent;

namespace {

// Measures in view units.
constexpr float kShadow = kroui::controls::FloatingPanel::kShadow;
constexpr float kPadding = 12;
constexpr float kGap = 8;
constexpr float kContentWidth = 184;
constexpr float kFieldHeight = 120;
constexpr float kStripHeight = 12;
constexpr float kSwatch = 16; // with kGap between them, eight fill the width
constexpr int kSwatchesPerRow = 8;
constexpr float kNumberHeight = 20;
constexpr float kSmallRadius = 3;
constexpr float kRing = 12; // the mark at the chosen place
constexpr kroui::limner::Font kFont{12, false};

constexpr std::array<std::uint32_t, 16> kPalette = {0xFF6B57, 0xFF9F43, 0xFFC94D, 0xA5D65A, 0x5BD18B, 0x4FD1C5,
                                                    0x4DA3FF, 0x6C7BFF, 0xA77BFF, 0xE86BD0, 0xF06292, 0xA1887F,
                                                    0xFFFFFF, 0xB4B7BD, 0x6B6F76, 0x202124};

// The pictures have a cell every two units and are drawn smoothly enlarged.
constexpr float kCell = 2;
constexpr int kColumns = static_cast<int>(kContentWidth / kCell);
constexpr int kRows = static_cast<int>(kFieldHeight / kCell);
constexpr float kKeyStep = 0.02F;
constexpr int kDigits = 6;

constexpr float kLeft = kShadow + kPadding;
constexpr Rect kField{kLeft, kShadow + kPadding, kContentWidth, kFieldHeight};
constexpr Rect kStrip{kLeft, kField.top + kField.height + kGap, kContentWidth, kStripHeight};
constexpr float kPaletteTop = kStrip.top + kStrip.height + kPadding;
constexpr Rect kNumber{kLeft, kPaletteTop + 2 * kSwatch + kGap + kPadding, kContentWidth, kNumberHeight};
constexpr Rect kPanel{kShadow, kShadow, kContentWidth + 2 * kPadding, kNumber.top + kNumberHeight + kPadding - kShadow};

Rect SwatchRect(std::size_t index) {
    const auto column = index % kSwatchesPerRow;
    const auto row = index / kSwatchesPerRow;
    constexpr float kStep = kSwatch + kGap;
    return {kLeft + static_cast<float>(column) * kStep, kPaletteTop + static_cast<float>(row) * kStep, kSwatch,
            kSwatch};
}

float Fraction(float position, float start, float length) {
    return std::clamp((position - start) / length, 0.0F, 1.0F);
}

std::uint32_t ToRGB(const Color& color) {
    const auto byte = [](float channel) { return static_cast<std::uint32_t>(std::lround(channel * 255)); };
    return byte(color.red) << 16 | byte(color.green) << 8 | byte(color.blue);
}

bool IsHexDigit(char16_t c) {
    return (c >= u'0' && c <= u'9') || (c >= u'a' && c <= u'f') || (c >= u'A' && c <= u'F');
}

// A white ring with a dark one around it is seen on every colour.
void DrawRing(kroui::limner::Limner& limner, Point centre, const Color& inside) {
    constexpr Color kDark{0, 0, 0, 0.6F};
    const Rect ring{centre.x - kRing / 2, centre.y - kRing / 2, kRing, kRing};
    limner.FillRoundRect(ring.Inset(-1, -1), kRing / 2 + 1, kDark);
    limner.FillRoundRect(ring, kRing / 2, {1, 1, 1, 1});
    limner.FillRoundRect(ring.Inset(2, 2), kRing / 2 - 2, inside);
}

void DrawShadeCells(kroui::limner::Limner& limner, float hue) {
    for (int row = 0; row < kRows; ++row) {
        const float value = 1 - static_cast<float>(row) / (kRows - 1);
        for (int column = 0; column < kColumns; ++column) {
            const HSVColor cell{hue, static_cast<float>(column) / (kColumns - 1), value};
            limner.FillRect({static_cast<float>(column) * kCell, static_cast<float>(row) * kCell, kCell, kCell},
                            cell.ToColor());
        }
    }
}

void DrawHueCells(kroui::limner::Limner& limner) {
    for (int column = 0; column < kColumns; ++column) {
        const HSVColor cell{static_cast<float>(column) / (kColumns - 1), 1, 1};
        limner.FillRect({static_cast<float>(column) * kCell, 0, kCell, kStripHeight}, cell.ToColor());
    }
}

} // namespace

void ColorPicker::Open(kroui::ui::UI_Window& window, const Rect& anchor, const Color& color, ChangeHandler changed,
                       boost::function<void()> closed) {
    fColor = HSVColor::FromColor(color, fColor);
    fChanged = std::move(changed);
    fClosed = std::move(closed);
    const float top = TopOn(SideOf(anchor, kPanel.height, window), anchor, kPanel.height);
    ShowPanel(window, {anchor.left, top, kPanel.width, kPanel.height});
}

void ColorPicker::Close() {
    if (auto* window = UI_GetWindow()) window->HideOverlay(this);
}

void ColorPicker::ShowColor(const Color& color) {
    fColor = HSVColor::FromColor(color, fColor);
    UI_Invalidate();
}

void ColorPicker::UI_Draw(kroui::limner::Limner* limner) {
    DrawPanel(*limner);
    DrawShades(*limner);
    DrawPalette(*limner);
    DrawNumber(*limner);
}

void ColorPicker::DrawShades(kroui::limner::Limner& limner) {
    const auto* supplier = UI_GetDrawSupplier();
    if (supplier == nullptr) return;
    constexpr float kPictureScale = 1 / kCell;
    if (!fShades || fShadesHue != fColor.hue) {
        fShadesHue = fColor.hue;
        fShades = supplier->DrawImage({kContentWidth, kFieldHeight}, kPictureScale,
                                      [this](kroui::limner::Limner& l) { DrawShadeCells(l, fShadesHue); });
    }
    if (!fHues) fHues = supplier->DrawImage({kContentWidth, kStripHeight}, kPictureScale, DrawHueCells);
    if (fShades) limner.DrawImage(*fShades, kField, 1);
    if (fHues) limner.DrawImage(*fHues, kStrip, 1);
    DrawRing(limner, {kField.left + fColor.saturation * kField.width, kField.top + (1 - fColor.value) * kField.height},
             fColor.ToColor());
    DrawRing(limner, {kStrip.left + fColor.hue * kStrip.width, kStrip.Centre().y},
             HSVColor{fColor.hue, 1, 1}.ToColor());
}

void ColorPicker::DrawPalette(kroui::limner::Limner& limner) const {
    const auto chosen = ToRGB(fColor.ToColor());
    for (std::size_t i = 0; i < kPalette.size(); ++i) {
        const auto rect = SwatchRect(i);
        limner.FillRoundRect(rect, kSmallRadius, Color::FromRGB(kPalette[i]));
        const auto isChosen = kPalette[i] == chosen;
        limner.FrameRoundRect(isChosen ? rect.Inset(-2, -2) : rect, isChosen ? kSmallRadius + 2 : kSmallRadius,
                              GetColor(isChosen ? kroui::ui::kColorAccent : kroui::ui::kColorLine), isChosen ? 2 : 1);
    }
}

void ColorPicker::DrawNumber(kroui::limner::Limner& limner) const {
    const Rect preview{kNumber.left, kNumber.top, 2 * kSwatch + kGap, kNumber.height};
    limner.FillRoundRect(preview, kSmallRadius, fColor.ToColor());
    limner.FrameRoundRect(preview, kSmallRadius, GetColor(kroui::ui::kColorLine), 1);
    const Rect field{preview.Right() + kGap, kNumber.top, kNumber.Right() - preview.Right() - kGap, kNumber.height};
    const bool isTyping = !fTyped.empty();
    limner.FillRoundRect(field, kSmallRadius, GetColor(kroui::ui::kColorField));
    limner.FrameRoundRect(field, kSmallRadius, GetColor(isTyping ? kroui::ui::kColorAccent : kroui::ui::kColorLine), 1);
    limner.DrawText(NumberText(), kFont, GetColor(kroui::ui::kColorText), field.Inset(kGap, 0), {});
}

krocore::string16 ColorPicker::NumberText() const {
    krocore::string16 text = u"#";
    if (!fTyped.empty()) return text + fTyped;
    constexpr std::u16string_view kHex = u"0123456789ABCDEF";
    const auto rgb = ToRGB(fColor.ToColor());
    for (int digit = kDigits - 1; digit >= 0; --digit) {
        text += kHex[rgb >> 4 * digit & 15];
    }
    return text;
}

bool ColorPicker::UI_DoMouseEvent(UI_Node* /*node*/, const MouseEvent& event) {
    switch (event.action) {
    case MouseEvent::Action::kPressed: return Press(event.position);
    case MouseEvent::Action::kDragged:
        if (fDragged != Part::kNone) DragTo(event.position);
        break;
    case MouseEvent::Action::kReleased: EndDrag(); break;
    case MouseEvent::Action::kCaptureLost:
        if (fDragged == Part::kNone) {
            Close();
        } else {
            AbandonDrag();
        }
        break;
    default: break;
    }
    return true;
}

bool ColorPicker::Press(Point point) {
    fTyped.clear();
    if (!kPanel.Contains(point)) {
        Close();
        return true;
    }
    for (std::size_t i = 0; i < kPalette.size(); ++i) {
        if (SwatchRect(i).Inset(-2, -2).Contains(point)) ChooseOnce(Color::FromRGB(kPalette[i]));
    }
    const auto margin = kRing / 2; // the mark can be taken where it stands out
    fDragged = kField.Inset(-margin, 0).Contains(point)           ? Part::kField
               : kStrip.Inset(-margin, -kGap / 2).Contains(point) ? Part::kHues
                                                                  : Part::kNone;
    if (fDragged == Part::kNone) return true;
    fBefore = fColor;
    SetColor(fColor, ChangeMessage::kStarted);
    DragTo(point);
    return true;
}

void ColorPicker::DragTo(Point point) {
    auto color = fColor;
    if (fDragged == Part::kField) {
        color.saturation = Fraction(point.x, kField.left, kField.width);
        color.value = 1 - Fraction(point.y, kField.top, kField.height);
    } else if (fDragged == Part::kHues) {
        color.hue = Fraction(point.x, kStrip.left, kStrip.width);
    }
    SetColor(color, ChangeMessage::kChanged);
}

void ColorPicker::EndDrag() {
    if (std::exchange(fDragged, Part::kNone) != Part::kNone) SetColor(fColor, ChangeMessage::kEnded);
}

void ColorPicker::AbandonDrag() {
    if (std::exchange(fDragged, Part::kNone) != Part::kNone) SetColor(fBefore, ChangeMessage::kAbandoned);
}

void ColorPicker::ChooseOnce(const Color& color) {
    SetColor(fColor, ChangeMessage::kStarted);
    SetColor(HSVColor::FromColor(color, fColor), ChangeMessage::kChanged);
    SetColor(fColor, ChangeMessage::kEnded);
}

void ColorPicker::Step(float saturation, float value, float hue) {
    const auto moved = [](float from, float by) { return std::clamp(from + by, 0.0F, 1.0F); };
    const HSVColor color{moved(fColor.hue, hue), moved(fColor.saturation, saturation), moved(fColor.value, value)};
    SetColor(fColor, ChangeMessage::kStarted);
    SetColor(color, ChangeMessage::kChanged);
    SetColor(fColor, ChangeMessage::kEnded);
}

void ColorPicker::SetColor(const HSVColor& color, ChangeMessage change) {
    fColor = color;
    UI_Invalidate();
    if (fChanged) fChanged(fColor.ToColor(), change);
}

bool ColorPicker::UI_DoKeyEvent(const kroui::ui::KeyEvent& event) {
    const bool isDragging = fDragged != Part::kNone;
    switch (event.key) {
    case Key::kEscape:
        if (isDragging) {
            AbandonDrag();
        } else {
            Close();
        }
        return true;
    case Key::kEnter:
    case Key::kTab: Close(); return true;
    case Key::kBackspace:
        if (!fTyped.empty()) fTyped.pop_back();
        UI_Invalidate();
        return true;
    default: break;
    }
    if (isDragging) return true;
    switch (event.key) {
    case Key::kLeft: Step(-kKeyStep, 0, 0); break;
    case Key::kRight: Step(kKeyStep, 0, 0); break;
    case Key::kUp: Step(0, kKeyStep, 0); break;
    case Key::kDown: Step(0, -kKeyStep, 0); break;
    case Key::kPageUp: Step(0, 0, -kKeyStep); break;
    case Key::kPageDown: Step(0, 0, kKeyStep); break;
    default: break;
    }
    return true;
}

bool ColorPicker::UI_DoTextEvent(const kroui::ui::TextEvent& event) {
    for (const auto c : event.text) {
        if (IsHexDigit(c) && fTyped.size() < kDigits) fTyped += c >= u'a' ? static_cast<char16_t>(c - u'a' + u'A') : c;
    }
    if (fTyped.size() == kDigits) {
        const auto digits = krocore::ToUTF8(fTyped);
        std::uint32_t rgb = 0;
        std::from_chars(digits.data(), digits.data() + digits.size(), rgb, 16);
        fTyped.clear();
        ChooseOnce(Color::FromRGB(rgb));
    }
    UI_Invalidate();
    return true;
}

void ColorPicker::UI_NodeChanged(NodeChange change) {
    UI_Node::UI_NodeChanged(change);
    if (change != kDetaching) return;
    AbandonDrag();
    fTyped.clear();
    fChanged.clear();
    if (const auto closed = std::exchange(fClosed, {})) closed();
}

kroui::ui::AccessibleInfo ColorPicker::UI_GetAccessibleInfo() const {
    auto info = UI_Node::UI_GetAccessibleInfo();
    info.role = kroui::ui::Role::kGroup;
    info.value = NumberText();
    return info;
}

} // namespace uit::controls
