#include "ControlsFixture.h"
#include "kroui/controls/UI_Checkbox.h"
#include "kroui/controls/UI_Divider.h"
#include "kroui/controls/UI_OutlineBox.h"
#include "kroui/controls/UI_StaticText.h"
#include "kroui/limner/RecordingLimner.h"
#include "kroui/ui/AdapterRegistry.h"

#include <algorithm>

using namespace kroui;
using namespace kroui::controls;

namespace {

class StaticControlsTest : public test::ControlsTest {
protected:
    static std::uint32_t Pixel(const limner::Image& image, int x, int y) {
        return image.Pixels()[static_cast<std::size_t>(y * image.Stride() / 4 + x)] & 0xFFFFFF;
    }
};

TEST_F(StaticControlsTest, DividerIsOneWholePixelLineAtAnyScaleAndPlace) {
    struct Case {
        float scale;
        Rect frame;
        bool horizontal;
    };
    const Case cases[] = {
        {1, {10.3F, 20.7F, 100, 1}, true}, {1, {10, 20, 3, 50}, false},         {1.5F, {10.3F, 20.7F, 100, 4}, true},
        {1.5F, {7, 9, 1, 60}, false},      {1.25F, {3.3F, 20.1F, 80, 2}, true},
    };
    const std::uint32_t line = 0x44464C; // kColorLine of the dark theme
    for (const Case& c : cases) {
        ui::HeadlessWindow window(fSupplier, {150, 100}, c.scale);
        const auto divider = Add<UI_Divider>(c.frame);
        const boost::intrusive_ptr<ui::UI_SubView> root(new ui::UI_SubView);
        root->UI_SetFrame({0, 0, 150, 100});
        root->ChildPushBack(divider);
        window.Window().SetContent(root);
        const limner::ImagePtr image = window.Snapshot();
        const Point centre = c.frame.Centre();
        int across = 0;
        const int length = c.horizontal ? image->PixelHeight() : image->PixelWidth();
        for (int i = 0; i < length; ++i) {
            const int x = c.horizontal ? static_cast<int>(centre.x * c.scale) : i;
            const int y = c.horizontal ? i : static_cast<int>(centre.y * c.scale);
            const std::uint32_t pixel = Pixel(*image, x, y);
            EXPECT_TRUE(pixel == line || pixel == 0x1E1F22) << std::hex << pixel << " is smeared";
            across += pixel == line ? 1 : 0;
        }
        EXPECT_EQ(across, 1) << c.scale;
    }
}

TEST_F(StaticControlsTest, StaticTextNeverPaintsOutsideItsRectangle) {
    for (const auto truncation : {limner::TextTruncation::kNone, limner::TextTruncation::kEnd}) {
        for (const bool multiLine : {false, true}) {
            const auto text = Add<UI_StaticText>({100, 100, 60, 20});
            text->SetText(u"A text that is far too long for this rectangle");
            text->SetTextTruncation(truncation);
            text->SetMultiLine(multiLine);
            const limner::ImagePtr image = fWindow.Snapshot();
            int inside = 0;
            for (int y = 0; y < 300; ++y) {
                for (int x = 0; x < 400; ++x) {
                    if (Pixel(*image, x, y) == 0x1E1F22) continue;
                    ASSERT_TRUE((Rect{100, 100, 60, 20}).Contains({float(x), float(y)})) << x << ' ' << y;
                    ++inside;
                }
            }
            EXPECT_GT(inside, 50);
            fRoot->ChildRemoveAll();
        }
    }
}

TEST_F(StaticControlsTest, StaticTextDrawsInTheColourOfItsRoleOrOfDisabledText) {
    const auto text = Add<UI_StaticText>({0, 0, 60, 20});
    text->SetText(u"Gain");
    limner::RecordingLimner context;
    const auto drawn = [&] {
        context.Clear();
        text->UI_Draw(&context);
        return context.Operations().at(0);
    };
    EXPECT_THAT(drawn(), testing::HasSubstr("\"Gain\" 12 #D7D9DE 0 0 60 20 left"));
    text->SetColorRole(ui::kColorDimText);
    text->SetAlignment(limner::TextAlignment::kRight);
    EXPECT_THAT(drawn(), testing::HasSubstr("#9CA0A8 0 0 60 20 right"));
    text->SetEnabled(false);
    EXPECT_THAT(drawn(), testing::HasSubstr("#6C7078"));
}

TEST_F(StaticControlsTest, StaticTextSetAgainRepaintsNothing) {
    const auto text = Add<UI_StaticText>({10, 10, 60, 20});
    text->SetText(u"+12 cents");
    fWindow.Paint();
    text->SetText(u"+12 cents");
    EXPECT_EQ(fWindow.Paint(), 0);
    text->SetText(u"+13 cents");
    EXPECT_EQ(fWindow.Paint(), 60 * 20);
}

TEST_F(StaticControlsTest, StaticTextLetsThePointerThrough) {
    const auto box = Add<UI_OutlineBox>({0, 0, 200, 100});
    const auto text = Add<UI_StaticText>({10, 10, 60, 20}, box.get());
    EXPECT_FALSE(fWindow.Window().MousePressed(Middle(*text), 1, 1, 0));
    EXPECT_FALSE(text->UI_CanTakeFocus());
}

// A value of the same type that is another one.
ui::PropertyValue Another(const ui::PropertyValue& value) {
    if (const bool* on = std::get_if<bool>(&value)) return !*on;
    if (const float* number = std::get_if<float>(&value)) return *number + 1;
    if (std::holds_alternative<std::int32_t>(value)) return std::int32_t{std::get<std::int32_t>(value) == 1 ? 0 : 1};
    if (std::holds_alternative<krocore::string8>(value)) return krocore::string8("another");
    return std::vector<krocore::string8>{"one", "two"};
}

TEST_F(StaticControlsTest, PropertiesSetExactlyWhatTheirKeyNames) {
    for (const char* name : {"StaticText", "Divider", "OutlineBox", "StaticImage", "Checkbox", "RadioButton",
                             "TextButton", "PictureButton", "PictureTextButton", "DisclosureTriangleButton", "Popup"}) {
        const std::string className = std::string("kroui::controls::UI_") + name;
        const auto node = ui::AdapterRegistry::Get().Create(className);
        ASSERT_TRUE(node) << className;
        EXPECT_EQ(node->UI_GetPropertyTable().className, className);
        std::vector<const ui::PropertyRow*> rows;
        for (auto* table = &node->UI_GetPropertyTable(); table != &UI_ControlView::PropertiesOfControlView();
             table = table->base) {
            EXPECT_TRUE(std::ranges::is_sorted(table->rows, {}, &ui::PropertyRow::key)) << table->className;
            for (const ui::PropertyRow& row : table->rows)
                rows.push_back(&row);
        }
        for (const ui::PropertyRow* changed : rows) {
            std::vector<ui::PropertyValue> expected;
            for (const ui::PropertyRow* row : rows)
                expected.push_back(row == changed ? Another(row->get(*node)) : row->get(*node));
            changed->set(*node, Another(changed->get(*node)));
            for (std::size_t i = 0; i < rows.size(); ++i)
                EXPECT_EQ(rows[i]->get(*node), expected[i]) << className << ' ' << changed->key << ' ' << rows[i]->key;
        }
    }
    EXPECT_TRUE(UI_OutlineBox::PropertiesOfOutlineBox().holdsChildren);
}

TEST_F(StaticControlsTest, FocusedCheckboxPaintsNothingOutsideItself) {
    // Lower than box and halo together.
    const auto box = Add<UI_Checkbox>({100, 100, 40, 14});
    box->UI_TakeFocus();
    const limner::ImagePtr image = fWindow.Snapshot();
    for (int x = 90; x < 150; ++x) {
        EXPECT_EQ(Pixel(*image, x, 99), 0x1E1F22U) << x;
        EXPECT_EQ(Pixel(*image, x, 114), 0x1E1F22U) << x;
    }
}

} // namespace
