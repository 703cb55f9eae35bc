#pragma once

#include "uit/controls/EditNumberLayout.h"
#include "uit/controls/SliderRulers.h"

#include "kroui/controls/HotTextLook.h"
#include "kroui/controls/NumberDrag.h"
#include "kroui/controls/NumberEntry.h"
#include "kroui/controls/UI_InteractiveControlView.h"
#include "kroui/controls/ValueControl.h"
#include "kroui/ui/LocalizedText.h"

namespace uit::controls {

// A number with everything around it: a label that ends at its colon, a slider with a ruler, the number itself to drag
// or type, and its unit. One control: whatever part the user takes hold of, its own messages tell of one gesture. It is
// vertical if it is told to be or the ruler given in code is: then the parts stand one above the other, so narrow if
// wanted that the band of an equaliser takes 22 view units, with the number in as small a font as that takes. Texts are
// measured and the ruler's marks computed when it is first drawn.
class UI_EditNumber : public kroui::controls::UI_InteractiveControlView, public kroui::controls::ValueControl {
public:
    using RulerBase = kroui::utility::RulerBase;
    using RulerPlacement = UI_RulerSliderContainer::RulerPlacement;
    using RulerTextPlacement = UI_RulerSliderContainer::RulerTextPlacement;
    using SliderLook = kroui::controls::SliderLook;
    using DragDirection = kroui::controls::NumberDrag::Direction;

    UI_EditNumber();

    // --- texts ---

    void SetLabel(std::u16string_view label);
    const krocore::string16& GetLabel() const { return fLabel.Text(); }
    void SetUnitLabel(std::u16string_view label);
    const krocore::string16& GetUnitLabel() const { return fUnitLabel.Text(); }
    // Whether the label is shown.
    void SetUseLabel(bool use);
    bool UseLabel() const { return fUseLabel; }
    // Whether the label stands beside the slider (at first) or above it.
    void SetUseInline(bool use);
    bool UseInline() const { return fUseInline; }
    // Width of the label's column, so that the colons of several edit numbers meet; 0: as the label needs.
    void SetLabelWidth(float width);
    float MeasureLabelWidth() const;

    // Small texts over and under the slider, in its middle.
    void SetDescription1(std::u16string_view text);
    void SetDescription2(std::u16string_view text);
    // Of the label, the number and the unit; 12 at first. Descriptions are smaller.
    void SetFontSize(float size);
    static constexpr float kLargestDescription = 10;
    static constexpr float kSmallestDescription = 7.5F;

    // --- number ---

    // Characters that the number has room for, and the unit (0: as it needs).
    void SetDigits(std::uint32_t digits);
    std::uint32_t GetDigits() const { return fDigits; }
    void SetUnitLabelLength(std::uint32_t characters);
    std::uint32_t UnitLabelLength() const { return fUnitLabelLength; }
    // 0 left, 1 centre, 2 right (at first) in that room.
    void SetHotTextNumberAlignment(int alignment);
    // How a drag of the number goes through the range: 0 linear, 1 logarithmic.
    void SetHotTextScale(int scale) { SetScale(scale); }
    // The values between which that drag is logarithmic, where the bounds would not do (a lower one of 0); nothing if
    // they are not above 0 and different.
    void SetHotTextScaleRange(double low, double high);
    // Which movements of the pointer drag the number; both at first.
    void SetNumberDragDirection(DragDirection direction) { fNumberDrag.SetDirection(direction); }

    // --- slider and ruler ---

    void SetUseSlider(bool use);
    // The parts one above the other.
    void SetVertical(bool vertical);
    void SetSliderKnob(SliderLook::Knob knob);
    void SetSliderArrow(SliderLook::Arrow arrow);
    // The track's length in view units; the least one if the slider stretches with the control, as it does at first.
    void SetSliderLength(float length);
    void SetSliderStretches(bool stretches);
    // Greater values to the left or downwards. A ruler beside a track that lies, with the greater value first, says the
    // same: its first value stands at the left, and inverting the slider as well changes nothing. Beside an upright
    // track greater values stand above, whichever way the ruler is given.
    void SetInvertSlider(bool invert);
    // A logarithmic track. A ruler that is shown decides instead.
    void SetLogarithmic(bool logarithmic);
    bool IsLogarithmic() const { return fLogarithmic; }

    // Shares the ruler; null takes it away. Its range is the caller's; `label` becomes its first label if not empty.
    void SetRuler(boost::intrusive_ptr<RulerBase> ruler, RulerPlacement placement, RulerTextPlacement textPlacement,
                  std::u16string_view label);
    // The same from a script's settings; type kNone takes it away.
    void SetRulerSettings(const RulerSettings& settings);
    // Another ruler, at the side that the first one leaves free. It has no say in where values lie.
    void SetSecondRulerSettings(const RulerSettings& settings);
    // The ruler, made from the archive's properties if none has been given. Never null; not shown if its type or its
    // placement is none. After changing it call RecalcLayout.
    const boost::intrusive_ptr<RulerBase>& GetRuler();

    // What an archive says of the ruler; values and texts of the ends as GetRuler has them. Refused if a number is not
    // finite.
    void SetArchiveRuler(const RulerSettings& settings);
    const RulerSettings& GetArchiveRuler() const { return fRulers.Settings(); }

    // For property rows: texts as archives write them.
    void SetLabelReference(std::string_view reference);
    const krocore::string8& LabelReference() const { return fLabel.Reference(); }
    void SetUnitLabelReference(std::string_view reference);
    const krocore::string8& UnitLabelReference() const { return fUnitLabel.Reference(); }

    // --- layout ---

    // Places the parts anew and repaints, as after a change of the ruler.
    void RecalcLayout();
    // The size that shows everything; estimated while no drawing supplier is known. A control without a size takes it
    // when it gets into a window.
    kroui::Size NaturalSize() const;
    kroui::Size UI_GetNaturalSize() const override { return NaturalSize(); }
    // Of the number.
    float UI_GetBaseline() const override;
    // Where the parts are, in the control's coordinates.
    EditNumberLayout Layout() const { return PlacedParts().layout; }
    // The field while the number is being typed; null otherwise.
    kroui::controls::UI_TextField* EntryField() const { return fEntry.IsOpen() ? fEntry.Field() : nullptr; }

    void UI_Draw(kroui::limner::Limner* context) override;
    bool UI_DoMouseEvent(UI_Node* node, const kroui::ui::MouseEvent& event) override;
    bool UI_DoKeyEvent(const kroui::ui::KeyEvent& event) override;
    bool UI_DoTextEvent(const kroui::ui::TextEvent& event) override;
    bool UI_DoTimerNotify(long timerID) override;
    void UI_FocusChanged(bool hasFocus) override;
    void UI_NodeChanged(NodeChange change) override;
    void UI_SizeChanged(const kroui::RectT<float>& rect) override;
    kroui::ui::Cursor UI_GetCursor(kroui::Point point) const override;
    kroui::ui::AccessibleInfo UI_GetAccessibleInfo() const override;
    bool UI_DoAccessibleAction(const kroui::ui::AccessibleRequest& request) override;
    const kroui::ui::PropertyTable& UI_GetPropertyTable() const override;
    static const kroui::ui::PropertyTable& PropertiesOfEditNumber();

protected:
    ~UI_EditNumber() override = default;

    // Whether the parts stand one above the other.
    virtual bool IsVertical() const;

    krocore::string16 ShownName() const override;
    std::optional<double> ReadTyped(std::u16string_view typed) const override;
    UI_Node& ValueNode() override { return *this; }
    void ValueChanged(double oldValue) override;
    void ValueLookChanged() override;
    void SendGesture(int changeMessage) override;
    void ControlStateChanged() override;
    double GesturePosition(double value) const override;
    double GestureValueAt(double position) const override;

private:
    enum class Part : std::uint8_t { kNone, kLabel, kSlider, kNumber };

    // What the user holds, and what the pointer is over.
    struct Pointing {
        Part pressed = Part::kNone;
        Part hovered = Part::kNone;
        kroui::Point last;
        bool hasMoved = false; // since the press
    };
    // Where the parts are at the size and with the texts that the control has.
    struct Placed {
        EditNumberLayout layout;
        bool rulerFits = true; // a control that is too low for it does without
    };
    // Values between which a drag of the number is logarithmic; not above 0: the bounds serve.
    struct HotTextRange {
        double low = 0;
        double high = 0;
    };

    // What the slider shows; none while it is not shown itself.
    SliderRuler Ruler() const { return fUseSlider ? fRulers.ShownFirst() : SliderRuler(); }
    SliderRuler SecondRuler() const { return fUseSlider ? fRulers.ShownSecond() : SliderRuler(); }
    void LayoutChanged();
    Placed PlacedParts() const { return fPlaced ? *fPlaced : Place(); }
    Placed Place() const;
    void KeepPlaces();
    EditNumberLayout::Needs Needs() const;
    void TakeNaturalSize();

    Part PartAt(kroui::Point point) const;
    double SliderPosition(double value) const;
    double SliderValueAt(double position) const;
    bool IsSliderLinear() const;
    bool RunsBackwards() const;
    SliderLook Slider() const;
    kroui::limner::Font NumberFont(std::u16string_view text) const;
    kroui::limner::TextAlignment NumberAlignment() const;
    kroui::Rect EntryFrame(const kroui::controls::HotTextLook::Places& places) const;
    kroui::controls::HotTextLook Number(std::u16string_view text) const;
    void DrawLabel(kroui::limner::Limner& context) const;
    void DrawDescription(kroui::limner::Limner& context, std::u16string_view text, const kroui::Rect& place) const;
    void DrawSlider(kroui::limner::Limner& context);
    void DrawNumber(kroui::limner::Limner& context) const;
    void SetHoverPart(Part part);

    bool Press(const kroui::ui::MouseEvent& event);
    void PressSlider(const kroui::ui::MouseEvent& event);
    void PressNumber(const kroui::ui::MouseEvent& event);
    void Drag(const kroui::ui::MouseEvent& event);
    void Release(const kroui::ui::MouseEvent& event);
    bool OpenEntry();

    kroui::controls::NumberEntry fEntry{*this, fGesture};
    kroui::controls::NumberDrag fNumberDrag;
    Pointing fPointing;

    kroui::ui::LocalizedText fLabel;
    kroui::ui::LocalizedText fUnitLabel;
    krocore::string16 fDescription1;
    krocore::string16 fDescription2;
    SliderRulers fRulers;
    HotTextRange fHotTextRange;
    float fFontSize = 12;
    float fLabelWidth = 0;
    float fSliderLength = 0;
    std::uint32_t fDigits = 5;
    std::uint32_t fUnitLabelLength = 0;
    kroui::limner::TextAlignment fAlignment = kroui::limner::TextAlignment::kRight;
    SliderLook::Knob fKnob = SliderLook::Knob::kByDirection;
    SliderLook::Arrow fArrow = SliderLook::Arrow::kNone;
    bool fVertical = false;
    bool fUseLabel = true;
    bool fUseInline = true;
    bool fUseSlider = true;
    bool fSliderStretches = true;
    bool fInvertSlider = false;
    bool fLogarithmic = false;

    std::optional<Placed> fPlaced; // kept from drawing or a press on until something changes
};

} // namespace uit::controls
