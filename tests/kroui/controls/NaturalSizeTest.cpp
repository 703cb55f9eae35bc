// The sizes and baselines that layouts ask of controls, and the controls that only show something.

#include "ControlsFixture.h"
#include "kroui/controls/UI_Checkbox.h"
#include "kroui/controls/UI_DisplayNumber.h"
#include "kroui/controls/UI_Divider.h"
#include "kroui/controls/UI_HotTextNumber.h"
#include "kroui/controls/UI_Popup.h"
#include "kroui/controls/UI_RadioButton.h"
#include "kroui/controls/UI_StaticText.h"
#include "kroui/controls/UI_TextButton.h"
#include "kroui/limner/RecordingLimner.h"

#include <cstdio>

using namespace kroui;
using namespace kroui::controls;
using testing::Contains;
using testing::StartsWith;

namespace {

class NaturalSizeTest : public test::ControlsTest {
protected:
    template <class Control, class... Arguments>
    ui::UI_Node& With(void (Control::*set)(Arguments...), std::common_type_t<Arguments>... arguments) {
        const boost::intrusive_ptr<Control> control = Add<Control>({});
        (control.get()->*set)(arguments...);
        return *control;
    }
    static std::vector<std::string> Drawn(ui::UI_Node& node) {
        limner::RecordingLimner limner;
        node.UI_Draw(&limner);
        return limner.Operations();
    }
    // The rectangle of the first text that a node draws.
    static Rect TextRect(ui::UI_Node& node) {
        for (const std::string& operation : Drawn(node)) {
            Rect rect;
            const std::size_t end = operation.rfind("\" 12 #");
            if (!operation.starts_with("Text ") || end == std::string::npos) continue;
            std::sscanf(operation.c_str() + end, "\" 12 %*s %f %f %f %f", &rect.left, &rect.top, &rect.width,
                        &rect.height);
            return rect;
        }
        return {};
    }
};

TEST_F(NaturalSizeTest, EveryControlShowsItsWholeTextOnItsBaseline) {
    const std::u16string_view text = u"Use appropriate settings";
    ui::UI_Node* const controls[] = {
        &With(&UI_StaticText::SetText, text),    &With(&UI_TextButton::SetText, text),
        &With(&UI_Checkbox::SetText, text),      &With(&UI_RadioButton::SetText, text),
        &With(&UI_DisplayNumber::SetText, text), &With(&UI_HotText::SetText, text),
    };
    const limner::TextExtent extent = fSupplier.MeasureText(text, {});
    for (ui::UI_Node* const control : controls) {
        const Size size = control->UI_GetNaturalSize();
        control->UI_SetFrame({0, 0, size.width, size.height});
        const Rect rect = TextRect(*control);
        EXPECT_GE(rect.width, extent.width - 0.01F);
        EXPECT_GE(rect.left, 0);
        EXPECT_LE(rect.left + extent.width, size.width + 0.01F);
        EXPECT_NEAR(control->UI_GetBaseline(), rect.Centre().y - extent.height / 2 + extent.ascent, 0.01);
    }
}

TEST_F(NaturalSizeTest, HotTextNumberHasRoomForItsBounds) {
    const auto number = Add<UI_HotTextNumber>({});
    number->SetMinMaxValue(-100, 5, 0);
    const float width = number->UI_GetNaturalSize().width;
    EXPECT_GE(width, fSupplier.MeasureText(u"-100", {}).width + 2 * HotTextLook::kPadding);
    number->SetTextLabel(u"dB");
    EXPECT_GE(number->UI_GetNaturalSize().width, width + fSupplier.MeasureText(u"dB", {}).width);
}

TEST_F(NaturalSizeTest, StaticTextTakesItsWidthOrSoManyLines) {
    const auto text = Add<UI_StaticText>({});
    text->SetText(u"Threshold");
    EXPECT_EQ(text->UI_GetNaturalSize().width, std::ceil(fSupplier.MeasureText(u"Threshold", {}).width));
    text->SetText(u"A paragraph that has more words than a narrow column has room for in a single line");
    text->SetMultiLine(true);
    text->UI_SetFrame({0, 0, 100, 10});
    EXPECT_EQ(text->UI_GetNaturalSize().width, 100);
    EXPECT_GT(text->UI_GetNaturalSize().height, 3 * fSupplier.MeasureText(u"0", {}).height);
}

TEST_F(NaturalSizeTest, DisplayNumberAlignsColonsAndRepaintsOnlyAnotherText) {
    const auto first = Add<UI_DisplayNumber>({0, 0, 200, 24});
    const auto second = Add<UI_DisplayNumber>({0, 24, 200, 24});
    first->SetLabel(u"Gain:");
    second->SetLabel(u"Much longer:");
    const float width = std::max(first->MeasureLabelWidth(), second->MeasureLabelWidth());
    for (const auto& control : {first, second}) {
        control->SetLabelWidth(width);
        control->SetDigits(6);
        control->SetDecimalPlaces(1);
        control->SetUnitLabel(u"dB");
        control->SetValue(-12.34);
        EXPECT_EQ(TextRect(*control).Right(), width);
    }
    EXPECT_THAT(Drawn(*first), Contains(StartsWith("Text \"-12.3\" 12 #D7D9DE")));
    EXPECT_EQ(first->UI_GetAccessibleInfo().value, u"-12.3 dB");
    fWindow.Paint();
    first->SetValue(-12.32);
    EXPECT_FALSE(fWindow.Window().NeedsPaint());
    first->SetText(u"off");
    fWindow.Paint();
    ASSERT_FALSE(fWindow.LastDamage().empty());
    EXPECT_GT(fWindow.LastDamage().front().left, width) << "the label stays as it is";
}

TEST_F(NaturalSizeTest, DividerFollowsItsShapeUnlessTold) {
    const auto divider = Add<UI_Divider>({0, 0, 9, 100});
    EXPECT_THAT(Drawn(*divider), Contains(StartsWith("FillRect 4 0 1 100")));
    divider->SetOrientation(UI_Divider::Orientation::kHorizontal);
    EXPECT_THAT(Drawn(*divider), Contains(StartsWith("FillRect 0 50 9 1")));
    EXPECT_GT(divider->UI_GetNaturalSize().width, divider->UI_GetNaturalSize().height);
    divider->SetOrientation(UI_Divider::Orientation::kVertical);
    EXPECT_LT(divider->UI_GetNaturalSize().width, divider->UI_GetNaturalSize().height);
}

} // namespace
