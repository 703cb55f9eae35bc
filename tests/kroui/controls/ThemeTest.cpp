#include "kroui/ui/Theme.h"
#include "ControlsFixture.h"
#include "kroui/controls/UI_PictureTextButton.h"
#include "kroui/controls/UI_TextButton.h"

#include <cmath>

namespace kroui::ui {
namespace {

using limner::Color;

constexpr double kLeastContrast = 4.5; // WCAG 2.1, success criterion 1.4.3

// WCAG 2.1, definitions of relative luminance and contrast ratio.
double Luminance(const Color& color) {
    const auto linear = [](double c) { return c <= 0.03928 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4); };
    return 0.2126 * linear(color.red) + 0.7152 * linear(color.green) + 0.0722 * linear(color.blue);
}

double Contrast(const Color& a, const Color& b) {
    const double first = Luminance(a) + 0.05;
    const double second = Luminance(b) + 0.05;
    return std::max(first, second) / std::min(first, second);
}

const Theme* const kThemes[] = {&Theme::Dark(), &Theme::Light()};

TEST(Theme, TextStandsOutFromEveryGroundItIsWrittenOn) {
    const struct {
        int text;
        std::vector<int> grounds;
    } cases[] = {
        {kColorText,
         {kColorWindow, kColorPanel, kColorRaised, kColorRaisedHover, kColorField, kColorMenu, kColorTrack}},
        {kColorDimText,
         {kColorWindow, kColorPanel, kColorField, kColorMenu, kColorRulerBackground, kColorMeterBackground}},
        {kColorAccent, {kColorWindow, kColorPanel, kColorMenu}},
        {kColorAccentText, {kColorAccent}},
        {kColorWarning, {kColorWindow, kColorPanel, kColorField, kColorMenu}},
    };
    for (const Theme* const theme : kThemes)
        for (const auto& c : cases)
            for (const int ground : c.grounds)
                EXPECT_GE(Contrast(theme->GetColor(c.text), theme->GetColor(ground)), kLeastContrast)
                    << theme->Name() << " " << c.text << " on " << ground;
}

class ThemeTest : public test::ControlsTest {
protected:
    // Near a button's left edge, where nothing is written.
    Color GroundOf(const UI_Node& button) {
        const limner::ImagePtr picture = fWindow.Snapshot();
        const int x = static_cast<int>(button.UI_GetFrame().left) + 6;
        const int y = static_cast<int>(Middle(button).y);
        return Color::FromRGB(picture->Pixels()[static_cast<std::size_t>(y * picture->Stride() / 4 + x)] & 0xFFFFFF);
    }
};

TEST_F(ThemeTest, ButtonsThatAreOnStayReadableUnderThePointerAndPressed) {
    const auto plain = Add<controls::UI_TextButton>({20, 20, 100, 24});
    const auto picture = Add<controls::UI_PictureTextButton>({20, 60, 100, 24});
    for (const Theme* const theme : kThemes) {
        fWindow.Window().SetTheme(*theme);
        for (const bool springs : {true, false}) {
            plain->SetSpringLoaded(springs);
            plain->SetValue(springs ? 0 : 1);
            picture->SetSpringLoaded(springs);
            picture->SetValue(springs ? 0 : 1);
            const auto check = [&](const UI_Node& button, int text) {
                EXPECT_GE(Contrast(GroundOf(button), theme->GetColor(text)), kLeastContrast) << theme->Name();
            };
            fWindow.MoveTo(Middle(*plain));
            check(*plain, springs ? kColorText : kColorAccentText);
            fWindow.Press(Middle(*plain));
            check(*plain, kColorAccentText);
            fWindow.Release();
            fWindow.Press(Middle(*picture));
            check(*picture, kColorText);
            fWindow.Release();
        }
    }
}

} // namespace
} // namespace kroui::ui
