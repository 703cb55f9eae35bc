#include "uit/controls/UI_OutlineBoxWithLabel.h"

#include "kroui/ui/HeadlessWindow.h"

#include <gmock/gmock.h>

namespace uit::controls {

namespace {

using kroui::limner::ImagePtr;

struct Box {
    explicit Box(float scale) : window(supplier, {200, 100}, scale), box(new UI_OutlineBoxWithLabel) {
        box->UI_SetFrame({10, 10, 160, 60});
        window.Window().SetContent(box);
    }
    ImagePtr Paint() {
        window.Paint();
        return window.Snapshot();
    }

    kroui::limner::CairoSupplier supplier;
    kroui::ui::HeadlessWindow window;
    boost::intrusive_ptr<UI_OutlineBoxWithLabel> box;
};

std::uint32_t PixelAt(const kroui::limner::Image& image, int x, int y) {
    return image.Pixels()[static_cast<std::size_t>(y) * static_cast<std::size_t>(image.Stride() / 4) +
                          static_cast<std::size_t>(x)];
}

} // namespace

TEST(UI_OutlineBoxWithLabel, TopLineIsInterruptedByTheLabelOnly) {
    for (const int scale : {1, 2}) {
        Box b(static_cast<float>(scale));
        const auto row = 18 * scale; // half of the label's 16 units below the top of the box
        const auto plain = b.Paint();
        const auto line = PixelAt(*plain, 90 * scale, row);
        const auto ground = PixelAt(*plain, 2 * scale, 2 * scale);
        ASSERT_NE(line, ground);
        b.box->SetLabel(u"Precision");
        const auto labelled = b.Paint();
        // Right before the gap, in it before the text, and far right of it.
        EXPECT_EQ(PixelAt(*labelled, 20 * scale, row), line) << scale;
        EXPECT_EQ(PixelAt(*labelled, 23 * scale, row), ground) << scale;
        EXPECT_EQ(PixelAt(*labelled, 160 * scale, row), line) << scale;
        // The sides and the bottom are whole, each line drawn once.
        EXPECT_EQ(PixelAt(*labelled, 10 * scale, 40 * scale), line) << scale;
        EXPECT_EQ(PixelAt(*labelled, 90 * scale, 69 * scale), line) << scale;
        for (auto y = row + scale; y < row + 4 * scale; ++y) {
            EXPECT_EQ(PixelAt(*labelled, 10 * scale, y), PixelAt(*plain, 10 * scale, y)) << y;
        }
    }
}

TEST(UI_OutlineBoxWithLabel, LongLabelStaysInsideTheFrame) {
    Box b(1);
    b.box->SetLabel(u"A label that is much longer than the box that it stands on");
    const auto image = b.Paint();
    b.box->SetLabel(u"");
    const auto plain = b.Paint();
    for (int y = 10; y < 26; ++y) {
        for (int x = 160; x < 200; ++x) {
            ASSERT_EQ(PixelAt(*image, x, y), PixelAt(*plain, x, y)) << x << " " << y;
        }
    }
}

TEST(UI_OutlineBoxWithLabel, OnlyAnotherLabelIsPaintedAgain) {
    Box b(1);
    b.box->SetLabel(u"Precision");
    b.Paint();
    b.box->SetLabel(u"Precision");
    EXPECT_EQ(b.window.Paint(), 0);
    b.box->SetLabel(u"Settings");
    EXPECT_EQ(b.window.Paint(), 160 * 16);
}

TEST(UI_OutlineBoxWithLabel, NamesItsGroup) {
    Box b(1);
    b.box->SetLabelReference("($$$/Test/Pitch=Pitch Settings)");
    EXPECT_EQ(b.box->UI_GetAccessibleInfo().role, kroui::ui::Role::kGroup);
    EXPECT_EQ(b.box->UI_GetAccessibleInfo().name, u"Pitch Settings");
    EXPECT_EQ(b.box->LabelReference(), "($$$/Test/Pitch=Pitch Settings)");
}

} // namespace uit::controls
