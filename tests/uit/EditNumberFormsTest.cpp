// The forms of an edit number that scripts ask for: narrow columns, descriptions, two rulers, knobs, scales of the
// drag.

#include "uit/controls/UI_EditNumber.h"

#include "kroui/controls/UI_TextField.h"
#include "kroui/limner/CairoSupplier.h"
#include "kroui/limner/RecordingLimner.h"
#include "kroui/ui/HeadlessWindow.h"

#include <gmock/gmock.h>

namespace uit::controls {
namespace {

using kroui::Point;
using kroui::Rect;
using kroui::Size;
using kroui::limner::RecordingLimner;
using kroui::ui::HeadlessWindow;
using kroui::ui::Key;
using testing::Contains;
using testing::Not;
using testing::StartsWith;
using Edit = UI_EditNumber;

class EditNumberFormsTest : public testing::Test {
protected:
    EditNumberFormsTest() {
        window.Window().SetContent(root);
        root->UI_SetFrame({0, 0, 600, 400});
    }
    boost::intrusive_ptr<Edit> Add(const Rect& frame) {
        boost::intrusive_ptr<Edit> edit(new Edit);
        edit->UI_SetFrame(frame);
        root->ChildPushBack(edit);
        return edit;
    }
    // A band of an equaliser with thirty.
    boost::intrusive_ptr<Edit> AddBand(float left) {
        const boost::intrusive_ptr<Edit> band = Add({left, 20, 22, 220});
        band->SetVertical(true);
        band->SetMinMaxValue(-12, 12, 0);
        band->SetDecimalPlaces(1);
        band->SetMaxDigits(2);
        band->SetDigits(2);
        band->SetFontSize(10);
        band->SetFormatFlags(krocore::kFormatAlwaysSign | krocore::kFormatNoTrailingZeros);
        band->SetDescription2(u"12.5k");
        band->SetUseLabel(false);
        return band;
    }
    std::vector<std::string> Drawn(Edit& edit) const {
        RecordingLimner limner;
        edit.UI_Draw(&limner);
        return limner.Operations();
    }
    static Point InWindow(const Edit& edit, Point local) { return edit.UI_LocalToWindow(local); }

    kroui::limner::CairoSupplier supplier;
    HeadlessWindow window{supplier, {600, 400}};
    boost::intrusive_ptr<kroui::ui::UI_SubView> root{new kroui::ui::UI_SubView};
};

TEST_F(EditNumberFormsTest, NarrowBandCutsNothingOff) {
    const auto band = AddBand(100);
    for (const double value : {-12.0, -4.5, 0.0, 9.9, 12.0}) {
        band->SetValue(value);
        RecordingLimner limner;
        band->UI_Draw(&limner);
        // Each text's width at the font it was drawn with, against the width of the band.
        for (const std::string& operation : limner.Operations()) {
            if (!operation.starts_with("Text ")) continue;
            const std::size_t end = operation.find('"', 6);
            const float size = std::stof(operation.substr(end + 2));
            EXPECT_GE(size, 7.5);
            EXPECT_LE(supplier.MeasureText(krocore::ToUTF16(operation.substr(6, end - 6)), {size}).width, 22)
                << operation;
        }
    }
    const EditNumberLayout& layout = band->Layout();
    EXPECT_LT(layout.slider.Bottom(), layout.description2.top + 0.5F);
    EXPECT_LE(layout.description2.Bottom(), layout.number.top);
    EXPECT_GE(layout.number.left, 0);
    EXPECT_LE(layout.number.Right(), 22);
    EXPECT_EQ(layout.track.left, 11) << "in the middle";
}

TEST_F(EditNumberFormsTest, MaxDigitsGreaterNumbersShowFewerPlaces) {
    const auto edit = AddBand(0);
    const std::pair<double, const char16_t*> rows[] = {{4.5, u"+4.5"}, {9.94, u"+9.9"}, {9.96, u"+10"},
                                                       {-12, u"-12"},  {0, u"+0"},      {-0.04, u"+0"}};
    for (const auto& [value, text] : rows) {
        edit->SetValue(value);
        EXPECT_EQ(edit->FormatValue(), text) << value;
    }
}

TEST_F(EditNumberFormsTest, NarrowBandIsTypedInAFieldOverItsNeighbours) {
    const auto band = AddBand(100);
    const auto neighbour = AddBand(122);
    window.DoubleClick(InWindow(*band, band->Layout().number.Centre()));
    ASSERT_NE(band->EntryField(), nullptr);
    EXPECT_GT(band->EntryField()->UI_GetFrame().width, 22);
    window.Type(u"-3.5");
    window.PressKey(Key::kTab);
    EXPECT_EQ(band->GetValue(), -3.5);
    EXPECT_EQ(band->EntryField(), nullptr);
    EXPECT_TRUE(neighbour->UI_HasFocus());
    window.DoubleClick(InWindow(*band, band->Layout().number.Centre()));
    window.Type(u"7");
    window.Click({500, 300});
    EXPECT_EQ(band->GetValue(), 7) << "a click elsewhere ends the entry";
    EXPECT_EQ(band->EntryField(), nullptr);
    window.DoubleClick(InWindow(*band, band->Layout().number.Centre()));
    root->UI_Show(false);
    EXPECT_EQ(band->EntryField(), nullptr) << "is hidden with all around its control";
    root->UI_Show(true);
    window.DoubleClick(InWindow(*band, band->Layout().number.Centre()));
    root->ChildRemove(band.get());
    EXPECT_EQ(band->EntryField(), nullptr) << "goes with its control";
    window.Type(u"5");
    EXPECT_EQ(band->GetValue(), 7);
}

TEST_F(EditNumberFormsTest, NaturalSizeOfEveryFormHoldsAllParts) {
    RulerSettings ruler;
    ruler.type = RulerSettings::kLinear;
    ruler.value1 = -60;
    ruler.value2 = 0;
    for (int form = 0; form < 32; ++form) {
        const auto edit = Add({});
        edit->SetMinMaxValue(-60, 0, 0);
        edit->SetVertical(form & 1);
        edit->SetLabel(u"Threshold:");
        edit->SetUseLabel(form & 2);
        edit->SetUseInline(form & 4);
        edit->SetDescription1(form & 8 ? u"Loud" : u"");
        edit->SetDescription2(form & 8 ? u"Quiet or very quiet" : u"");
        edit->SetUnitLabel(u"dB");
        if (form & 16) {
            ruler.textPlacement = form & 4 ? 0 : 1;
            edit->SetRulerSettings(ruler);
            edit->SetSecondRulerSettings(ruler);
        }
        const Size size = edit->UI_GetNaturalSize();
        edit->UI_SetFrame({0, 0, size.width, size.height});
        const EditNumberLayout& layout = edit->Layout();
        const Rect parts[] = {layout.label,        layout.slider,       layout.number, layout.unit,
                              layout.description1, layout.description2, layout.track};
        for (const Rect& part : parts) {
            EXPECT_GE(part.left, 0) << form;
            EXPECT_GE(part.top, 0) << form;
            EXPECT_LE(part.Right(), size.width + 0.01) << form;
            EXPECT_LE(part.Bottom(), size.height + 0.01) << form;
        }
        for (const Rect* const part : {&layout.label, &layout.slider, &layout.number, &layout.unit}) {
            for (const Rect* const other : {&layout.description1, &layout.description2}) {
                const bool isApart = part->IsEmpty() || other->IsEmpty() || !part->Intersects(*other);
                EXPECT_TRUE(isApart) << form;
            }
        }
        const float baseline = edit->UI_GetBaseline();
        EXPECT_GT(baseline, layout.number.top) << form;
        EXPECT_LT(baseline, layout.number.Bottom()) << form;
    }
}

TEST_F(EditNumberFormsTest, SecondRulerStandsOnTheFreeSideAndDecidesNothing) {
    const auto edit = Add({0, 0, 400, 80});
    edit->SetMinMaxValue(0, 1000, 0);
    RulerSettings first;
    first.type = RulerSettings::kLogarithmic;
    first.value1 = 1;
    first.value2 = 1000;
    RulerSettings second;
    second.type = RulerSettings::kLinear;
    second.value1 = 0; // in a measure of its own
    second.value2 = 100;
    second.label1.SetReference("Slow");
    edit->SetRulerSettings(first);
    edit->SetSecondRulerSettings(second);
    window.Paint();
    const EditNumberLayout& layout = edit->Layout();
    window.Click({layout.track.left + layout.track.width / 3, layout.track.top});
    EXPECT_NEAR(edit->GetValue(), 10, 1);
    // Text "60" 9 #colour left top ...: over six tenths of the track.
    const std::vector<std::string> drawn = Drawn(*edit);
    EXPECT_THAT(drawn, Contains(StartsWith("Text \"Slow\" 9")));
    EXPECT_THAT(drawn, Contains(StartsWith("Text \"10\" 9")));
    const auto label = std::find_if(drawn.begin(), drawn.end(), [](const std::string& operation) {
        return operation.starts_with("Text \"60\" 9");
    });
    ASSERT_NE(label, drawn.end());
    float left = 0;
    float top = 0;
    float width = 0;
    ASSERT_EQ(std::sscanf(label->c_str(), "Text \"60\" 9 %*s %f %f %f", &left, &top, &width), 3);
    EXPECT_NEAR(left + width / 2, layout.track.left + 0.6 * layout.track.width, 1);
    EXPECT_LT(top, layout.track.top) << "the first ruler stands below";
    edit->SetSecondRulerSettings({});
    EXPECT_THAT(Drawn(*edit), Not(Contains(StartsWith("Text \"Slow\" 9"))));
}

TEST_F(EditNumberFormsTest, HotTextScaleRangeMakesALogarithmicDragFromZeroUseful) {
    const auto edit = Add({0, 0, 200, 24});
    edit->SetUseSlider(false);
    edit->SetMinMaxValue(0, 20000, 0);
    edit->SetIncrement(1);
    edit->SetHotTextScale(1);
    edit->SetHotTextScaleRange(20, 20000);
    edit->SetValue(20);
    const Point number = edit->Layout().number.Centre();
    // The longest travel is 600 pixels for three decades.
    window.Drag(number, {number.x + 200, number.y}, 2);
    EXPECT_NEAR(edit->GetValue(), 200, 1);
    window.Drag(number, {number.x - 300, number.y}, 2);
    EXPECT_EQ(edit->GetValue(), 0) << "the lower end is the bound";
    edit->SetHotTextScaleRange(-1, 5); // makes no sense
    edit->SetValue(2);                 // a ten-thousandth of the upper bound: where the usual scale begins
    window.Drag(number, {number.x + 150, number.y}, 2);
    EXPECT_NEAR(edit->GetValue(), 20, 0.5);
}

TEST_F(EditNumberFormsTest, DragDirectionCountsOnlyThatWay) {
    const auto edit = Add({0, 0, 200, 24});
    edit->SetUseSlider(false);
    edit->SetIncrement(1); // a step every two pixels
    const Point number = edit->Layout().number.Centre();
    edit->SetNumberDragDirection(Edit::DragDirection::kVertical);
    window.Drag(number, {number.x + 40, number.y - 20}, 2);
    EXPECT_EQ(edit->GetValue(), 10);
    window.MoveTo(number);
    EXPECT_EQ(window.CurrentCursor(), kroui::ui::Cursor::kVertical);
    edit->SetNumberDragDirection(Edit::DragDirection::kHorizontal);
    window.Drag(number, {number.x + 40, number.y - 20}, 2);
    EXPECT_EQ(edit->GetValue(), 30);
}

TEST_F(EditNumberFormsTest, FewStepsAreTakenOneByOne) {
    const auto edit = Add({0, 0, 400, 24});
    edit->SetMinMaxValue(-12, 12, 0);
    edit->SetIncrement(1);
    edit->SetDecimalPlaces(1);
    const Rect track = edit->Layout().track;
    const Point knob = InWindow(*edit, {track.Centre().x, track.top});
    window.Drag(knob, {knob.x + 3.3F * track.width / 24, knob.y}, 5);
    EXPECT_EQ(edit->GetValue(), 3);
}

TEST_F(EditNumberFormsTest, FillBeginsAtZeroWhereTheRangeHasBothSigns) {
    const auto edit = Add({0, 0, 400, 24});
    edit->SetMinMaxValue(-100, 100, 0);
    edit->SetValue(-50);
    window.MoveTo({10, 300});
    window.Paint();
    const kroui::limner::ImagePtr picture = window.Snapshot();
    const Rect track = edit->Layout().track;
    const auto isLit = [&](float part) {
        const auto x = static_cast<std::size_t>(track.left + part * track.width);
        const auto y = static_cast<std::size_t>(track.top);
        return picture->Pixels()[y * static_cast<std::size_t>(picture->Stride()) / 4 + x] == 0xFF4DA3FFU;
    };
    EXPECT_TRUE(isLit(0.4F));
    EXPECT_FALSE(isLit(0.1F));
    EXPECT_FALSE(isLit(0.7F));
}

TEST_F(EditNumberFormsTest, KnobsHaveTheirShapes) {
    for (const bool isVertical : {false, true}) {
        const auto edit = Add({0, 0, isVertical ? 60.0F : 300.0F, isVertical ? 200.0F : 24.0F});
        edit->SetVertical(isVertical);
        const char* const cap = isVertical ? " 20 12 4 " : " 12 16 4 ";
        const auto hasBox = [&](std::string_view size) {
            const std::vector<std::string> drawn = Drawn(*edit);
            return std::any_of(drawn.begin(), drawn.end(), [&](const std::string& operation) {
                return operation.starts_with("FrameRoundRect") && operation.find(size) != std::string::npos;
            });
        };
        EXPECT_EQ(hasBox(cap), isVertical);
        edit->SetSliderKnob(Edit::SliderLook::Knob::kDisc);
        EXPECT_TRUE(hasBox(" 16 16 8 "));
        edit->SetSliderKnob(Edit::SliderLook::Knob::kCap);
        EXPECT_TRUE(hasBox(cap));
        edit->SetSliderArrow(Edit::SliderLook::Arrow::kUpLeft);
        EXPECT_FALSE(hasBox(cap));
        EXPECT_THAT(Drawn(*edit), Contains(StartsWith("ClosePath")));
    }
}

} // namespace
} // namespace uit::controls
