#include "kroui/controls/UI_PictureTextButton.h"

#include "controls/base/ControlDrawing.h"
#include "kroui/controls/TextMeasure.h"
#include "kroui/ui/AdapterRegistry.h"
#include "kroui/ui/UI_Window.h"

#include <algorithm>
#include <utility>

namespace kroui::controls {

using drawing::Assign;
using ui::MakeProperty;
using ui::PropertyType;

namespace {

const ui::AdapterRegistrar<UI_PictureTextButton> sRegistrar("kroui::controls::UI_PictureTextButton");

constexpr float kPictureMargin = 2; // above and below the picture
constexpr float kLargestFactor = 10;
constexpr float kLargestDistance = 1000;

} // namespace

void UI_PictureTextButton::SetImageSupplier(ImageSupplier supplier) {
    fImage.SetSupplier(std::move(supplier));
    UI_Invalidate();
}

void UI_PictureTextButton::SetImageName(std::string_view name) {
    if (fImage.SetName(name)) UI_Invalidate();
}

void UI_PictureTextButton::SetText(std::u16string_view text) {
    if (text == std::u16string_view(fText.Text())) return;
    fText.SetText(text);
    UI_Invalidate();
}

void UI_PictureTextButton::SetTextReference(std::string_view reference) {
    fText.SetReference(reference);
    UI_Invalidate();
}

void UI_PictureTextButton::SetPictureScaleX(float factor) {
    SetNumber(fPictureScale.x, factor, 0, kLargestFactor);
}

void UI_PictureTextButton::SetPictureScaleY(float factor) {
    SetNumber(fPictureScale.y, factor, 0, kLargestFactor);
}

void UI_PictureTextButton::SetPictureVerticalOffset(float offset) {
    SetNumber(fPictureVerticalOffset, offset, -kLargestDistance, kLargestDistance);
}

void UI_PictureTextButton::SetSpacing(float spacing) {
    SetNumber(fSpacing, spacing, 0, kLargestDistance);
}

void UI_PictureTextButton::SetTextIndent(float indent) {
    SetNumber(fIndent, indent, 0, kLargestDistance);
}

void UI_PictureTextButton::SetNumber(float& member, float value, float low, float high) {
    if (Assign(member, drawing::Bounded(value, low, high))) UI_Invalidate();
}

void UI_PictureTextButton::SetRelationship(Relationship relationship) {
    if (relationship > Relationship::kPictureRight) relationship = Relationship::kPictureLeft;
    if (Assign(fRelationship, relationship)) UI_Invalidate();
}

Size UI_PictureTextButton::PictureSize(float scale) const {
    return fImage.PictureSize(IsEnabled(), scale);
}

void UI_PictureTextButton::DrawPicture(limner::Limner& context, const Rect& rect) const {
    fImage.Draw(context, rect, IsEnabled());
}

void UI_PictureTextButton::DrawContent(limner::Limner& context, const limner::Color& textColor) const {
    const Rect area = ContentRect();
    const Size natural = PictureSize(context.ScaleFactor());
    const Size size{natural.width * fPictureScale.x, natural.height * fPictureScale.y};
    const float taken = fIndent + (size.width > 0 ? size.width + fSpacing : 0);
    const bool isPictureLeft = fRelationship == Relationship::kPictureLeft;
    const float pictureLeft = isPictureLeft ? area.left + fIndent : area.Right() - fIndent - size.width;
    const float textLeft = area.left + (isPictureLeft ? taken : fIndent);
    const float textRight = area.Right() - (isPictureLeft ? 0 : taken);

    const ui::PixelGrid grid(*this, context);
    const float pictureTop = area.Centre().y - size.height / 2 + fPictureVerticalOffset;
    DrawPicture(context, grid.Snap({pictureLeft, pictureTop, size.width, size.height}));
    context.DrawText(fText.Text(), {}, textColor, {textLeft, area.top, textRight - textLeft, area.height},
                     {limner::TextAlignment::kLeft, limner::TextTruncation::kEnd});
}

Size UI_PictureTextButton::UI_GetNaturalSize() const {
    const Size natural = PictureSize(UI_GetWindow() ? UI_GetWindow()->ScaleFactor() : 1.0F);
    const Size picture{natural.width * fPictureScale.x, natural.height * fPictureScale.y};
    const float text = TextWidth(*this, fText.Text());
    const float between = picture.width > 0 && text > 0 ? fSpacing : 0;
    return {2 * fIndent + picture.width + between + text, std::max(kRowHeight, picture.height + 2 * kPictureMargin)};
}

float UI_PictureTextButton::UI_GetBaseline() const {
    return CentredBaseline(*this, UI_GetNaturalSize().height);
}

void UI_PictureTextButton::UI_Draw(limner::Limner* context) {
    Face face = FaceOfState();
    face.accent *= drawing::kAccentUnderPicture;
    DrawFace(*context, face);
    DrawContent(*context, ContentColor(face));
}

void UI_PictureTextButton::UI_NodeChanged(NodeChange change) {
    UI_Button::UI_NodeChanged(change);
    if (change == kAttached || change == kThemeChanged) fImage.Forget();
}

const ui::PropertyTable& UI_PictureTextButton::UI_GetPropertyTable() const {
    return PropertiesOfPictureTextButton();
}

const ui::PropertyTable& UI_PictureTextButton::PropertiesOfPictureTextButton() {
    using T = UI_PictureTextButton;
    static constexpr ui::PropertyRow kRows[] = {
        MakeProperty<PropertyType::kBytes, &T::ImageName, &T::SetImageName>("imageName"),
        MakeProperty<PropertyType::kFloat, &T::PictureScaleX, &T::SetPictureScaleX>("pictureScaleX"),
        MakeProperty<PropertyType::kFloat, &T::PictureScaleY, &T::SetPictureScaleY>("pictureScaleY"),
        MakeProperty<PropertyType::kFloat, &T::PictureVerticalOffset, &T::SetPictureVerticalOffset>(
            "pictureVerticalOffset"),
        MakeProperty<PropertyType::kEnumeration, &T::GetRelationship, &T::SetRelationship>("relationship"),
        MakeProperty<PropertyType::kFloat, &T::Spacing, &T::SetSpacing>("spacing"),
        MakeProperty<PropertyType::kUnicode, &T::TextReference, &T::SetTextReference>("text"),
        MakeProperty<PropertyType::kFloat, &T::TextIndent, &T::SetTextIndent>("textIndent"),
    };
    static const ui::PropertyTable sTable{"kroui::controls::UI_PictureTextButton", kRows, &PropertiesOfButton()};
    return sTable;
}

} // namespace kroui::controls
