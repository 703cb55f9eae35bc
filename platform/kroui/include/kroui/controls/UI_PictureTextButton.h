#pragma once

#include "kroui/controls/ImageSlot.h"
#include "kroui/controls/UI_Button.h"

namespace kroui::controls {

// A button with a picture and a text.
class UI_PictureTextButton : public UI_Button {
public:
    enum class Relationship : unsigned char { kPictureLeft = 0, kPictureRight = 1 };

    void SetImageSupplier(ImageSupplier supplier);
    void SetImageName(std::string_view name);
    const krocore::string8& ImageName() const { return fImage.Name(); }
    void SetText(std::u16string_view text);
    const krocore::string16& Text() const { return fText.Text(); }
    void SetTextReference(std::string_view reference);
    const krocore::string8& TextReference() const { return fText.Reference(); }

    // Factors on the picture's own size, 0...10.
    void SetPictureScaleX(float factor);
    float PictureScaleX() const { return fPictureScale.x; }
    void SetPictureScaleY(float factor);
    float PictureScaleY() const { return fPictureScale.y; }
    // View units: how far the picture is below the middle, the room between picture and text, and the room between the
    // edge and what stands first.
    void SetPictureVerticalOffset(float offset);
    float PictureVerticalOffset() const { return fPictureVerticalOffset; }
    void SetSpacing(float spacing);
    float Spacing() const { return fSpacing; }
    void SetTextIndent(float indent);
    float TextIndent() const { return fIndent; }
    void SetRelationship(Relationship relationship);
    Relationship GetRelationship() const { return fRelationship; }

    Size UI_GetNaturalSize() const override;
    float UI_GetBaseline() const override;
    void UI_Draw(limner::Limner* context) override;
    void UI_NodeChanged(NodeChange change) override;
    const ui::PropertyTable& UI_GetPropertyTable() const override;
    static const ui::PropertyTable& PropertiesOfPictureTextButton();

protected:
    ~UI_PictureTextButton() override = default;

    krocore::string16 ShownName() const override { return fText.Text(); }

    // The size of the picture before its factors, and the picture in a rectangle of that size times them.
    virtual Size PictureSize(float scale) const;
    virtual void DrawPicture(limner::Limner& context, const Rect& rect) const;
    // Picture and text in the content rectangle.
    void DrawContent(limner::Limner& context, const limner::Color& textColor) const;

private:
    void SetNumber(float& member, float value, float low, float high);

    ImageSlot fImage;
    ui::LocalizedText fText;
    Point fPictureScale{1, 1};
    float fPictureVerticalOffset = 0;
    float fSpacing = 6;
    float fIndent = 8;
    Relationship fRelationship = Relationship::kPictureLeft;
};

} // namespace kroui::controls
