// The smaller widgets of scripts, and how they are found.

#include "WidgetFixture.h"

#include "kroui/controls/UI_TextField.h"
#include "uit/controls/UI_CompExpList.h"
#include "uit/controls/UI_PictureToggleButton.h"
#include "uit/controls/UI_TimecodeEdit.h"
#include "uit/lio/PictureSupplier.h"

namespace uit::lio {
namespace {

using kroui::Point;
using kroui::ui::HeadlessWindow;
using kroui::ui::Key;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

class ToolkitWidgetsTest : public WidgetTest {
protected:
    // Pictures of so many pixels by name, each in its own size.
    void SetPictures(const std::vector<std::pair<std::string, float>>& pictures) {
        context.image = [this, pictures](std::string_view name, float) {
            for (const auto& [known, width] : pictures)
                if (known == name)
                    return supplier.DrawImage({width, 10}, 1, [](auto& limner) {
                        limner.FillRect({0, 0, 4, 4}, {1, 1, 1, 1});
                    });
            return kroui::limner::ImagePtr();
        };
    }
    static any_regular_t Levels(const std::vector<std::pair<double, double>>& levels) {
        array_t points;
        for (const auto& [in, out] : levels)
            points.emplace_back(Dictionary({{"x", in}, {"y", out}, {"mark", in}}));
        return points;
    }
    static double Entry(const any_regular_t& curve, std::size_t point, const char* key) {
        return curve.get<array_t>()[point].get<dictionary_t>().find(name_t(key))->get<double>();
    }
};

TEST_F(ToolkitWidgetsTest, FactoryKnowsItsWidgetsAndNoOthers) {
    const AdapterFactoryProc factory = GetAdapterFactoryProc();
    for (const char* const name : {"aud_edit_number", "aud_curve_editor", "aud_picture_toggle_button",
                                   "aud_comp_exp_list", "aud_timecode_display", "aud_timecode_edit"}) {
        ASSERT_TRUE(factory(name)) << name;
        EXPECT_EQ(factory(name)->name, name);
        const auto adapter = factory(name)->create(context);
        EXPECT_TRUE(adapter->GetNode()) << name;
        EXPECT_GT(adapter->Measure({}).size.height, 0) << name << ": also where nothing can be measured";
    }
    EXPECT_FALSE(factory("aud_edit"));
    EXPECT_FALSE(factory(""));
}

TEST_F(ToolkitWidgetsTest, PictureToggleShowsItsCellAndWritesClicks) {
    SetPictures({{"On.png", 16}, {"Off.png", 12}, {"Small.png", 8}});
    Make("aud_picture_toggle_button", {{"on_image", "On.png"}, {"off_image", "Off.png"}, {"bind", false}});
    EXPECT_THAT(Look(), Contains(StartsWith("Image 12x10")));
    window.Click(HeadlessWindow::CentreOf(*Node()));
    EXPECT_THAT(writes, ElementsAre(std::pair("bind", any_regular_t(true))));
    EXPECT_THAT(Look(), Contains(StartsWith("Image 16x10")));
    Set("bind", false);
    EXPECT_THAT(Look(), Contains(StartsWith("Image 12x10")));
    EXPECT_EQ(writes.size(), 1U);
    Set("off_image", "Small.png");
    EXPECT_THAT(Look(), Contains(StartsWith("Image 8x10")));
    const kroui::Size before = adapter->Measure({}).size;
    Set("width", 40);
    Set("height", 30);
    EXPECT_EQ(adapter->Measure({}).size.width - before.width, 40 - 16);
    EXPECT_EQ(adapter->Measure({}).size.height - before.height, 30 - 10);
    Set("name", "Bypass");
    EXPECT_EQ(Node()->UI_GetAccessibleInfo().name, u"Bypass");
    EXPECT_THAT(Refusal("bind", 1), HasSubstr("needs a bool, not a number"));
    EXPECT_THAT(Refusal("on_image", true), HasSubstr("needs a string, not a bool"));
    EXPECT_THAT(Refusal("width", -1), HasSubstr("needs a number from 0"));
}

TEST_F(ToolkitWidgetsTest, PicturesHaveADarkVariantOnDarkThemes) {
    SetPictures({{"P_Plus_N.png", 16}, {"P_Plus_N_D.png", 14}, {"Off.png", 12}, {"plain", 11}, {"plain_D", 9}});
    boost::intrusive_ptr<kroui::ui::UI_SubView> node(new kroui::ui::UI_SubView);
    const kroui::controls::ImageSupplier supply = MakePictureSupplier(context, *node);
    const auto width = [&](const char* name, bool enabled) {
        const auto picture = supply(name, enabled, 1);
        return picture ? picture->PixelWidth() : 0;
    };
    node->SetTheme(&kroui::ui::Theme::Dark());
    EXPECT_EQ(width("P_Plus_N.png", true), 14);
    EXPECT_EQ(width("Off.png", true), 12) << "the only one there is";
    EXPECT_EQ(width("plain", true), 9);
    EXPECT_EQ(width("P_Plus_N.png", false), 0);
    node->SetTheme(&kroui::ui::Theme::Light());
    EXPECT_EQ(width("P_Plus_N.png", true), 16);
    EXPECT_EQ(width("missing", true), 0);
}

TEST_F(ToolkitWidgetsTest, CompExpListChangesTheCurveInItsOwnOrder) {
    // A point that stands out of order, and a spare one behind.
    const any_regular_t levels = Levels({{0, -10}, {-100, -100}, {-20, -20}, {-1, -1}});
    Make("aud_comp_exp_list", {{"bind", levels}, {"bind_point_count", 3}, {"width", 300}});
    EXPECT_EQ(Node()->UI_GetFrame().width, 300);
    EXPECT_THAT(Texts(), Contains("2.0:1")); // from -20 to 0 the level rises by 10 dB
    auto& list = static_cast<controls::UI_CompExpList&>(*Node());
    ASSERT_EQ(list.GetPoints().size(), 3U);
    const kroui::Rect row = list.RowRect(1);
    window.Click(list.UI_LocalToWindow({row.left + 20, row.Centre().y}));
    window.PressKey(Key::kEnter);
    window.Type(u"4:1");
    window.PressKey(Key::kEnter);
    ASSERT_EQ(writes.size(), 1U);
    const any_regular_t& curve = writes.back().second;
    ASSERT_EQ(curve.get<array_t>().size(), 4U);
    EXPECT_DOUBLE_EQ(Entry(curve, 0, "y"), -15); // a quarter of 20 dB above -20
    EXPECT_EQ(Entry(curve, 0, "mark"), 0);
    EXPECT_EQ(curve.get<array_t>()[1], levels.get<array_t>()[1]);
    EXPECT_EQ(curve.get<array_t>()[3], levels.get<array_t>()[3]);
    EXPECT_THAT(Refusal("bind", "steep"), HasSubstr("needs an array, not a string"));
    EXPECT_THAT(Texts(), Contains("4.0:1"));
}

TEST_F(ToolkitWidgetsTest, TimecodesFollowTheHostsFormat) {
    const any_regular_t frames = Dictionary({{"format", 2}, {"sample_rate", 48000}}); // 25 frames a second
    const any_regular_t bars = Dictionary({{"format", 9},
                                           {"beatinfo_beats_per_minute", 60},
                                           {"beatinfo_beats_per_bar", 3},
                                           {"beatinfo_note_len", 4},
                                           {"beatinfo_ticks_per_quarter", 100},
                                           {"beatinfo_beat_offset_ms", 0}});
    const struct {
        any_regular_t format;
        bool isDuration;
        const char* text; // of 4.2 seconds
    } kCases[] = {
        {any_regular_t(), false, "0:04.200"},
        {dictionary_t(), false, "0:04.200"},
        {frames, false, "00:00:04:05"},
        {Dictionary({{"format", 7}, {"custom_fps", 10}}), false, "00:00:04:02"},
        {Dictionary({{"format", 6}, {"current_fps", 50}}), false, "00:00:04:10"},
        {Dictionary({{"format", 8}, {"sample_rate", 1000}}), false, "4200"},
        {bars, false, "2:2.20"}, // bar 2 begins at 3 seconds, its second beat at 4
        {bars, true, "1:1.20"},
    };
    for (const char* const widget : {"aud_timecode_display", "aud_timecode_edit"})
        for (const auto& [format, isDuration, text] : kCases) {
            Make(widget, {{"bind", 4.2}, {"bind_format", format}, {"is_duration", isDuration}});
            EXPECT_THAT(Texts(), ElementsAre(text)) << widget;
            EXPECT_TRUE(adapter->Measure({}).baseline);
        }
    Make("aud_timecode_edit", {{"bind", 4.2}, {"bind_format", frames}, {"min_max_filter", Limits(1, 10)}});
    window.DoubleClick(HeadlessWindow::CentreOf(*Node()));
    window.Type(u"0:05:12");
    window.PressKey(Key::kEnter);
    EXPECT_THAT(Numbers("bind"), ElementsAre(5.48));
    window.PressKey(Key::kEnd);
    EXPECT_EQ(Numbers("bind").back(), 10);
    Set("bind_format", bars);
    EXPECT_EQ(layoutChanges, 1);
    EXPECT_THAT(Refusal("bind_format", Dictionary({{"format", "frames"}})),
                HasSubstr("has an entry 'format' that needs a number"));
    EXPECT_THAT(Refusal("bind_format", 3), HasSubstr("needs a dictionary, not a number"));
    EXPECT_THAT(Refusal("bind", "now"), HasSubstr("needs a number, not a string"));
}

TEST_F(ToolkitWidgetsTest, TimecodeDisplayIsNotDimmedForWhatNobodyCanWrite) {
    Make("aud_timecode_display", {{"bind", 4.2}});
    adapter->SetWritable(Row("bind"), false);
    EXPECT_TRUE(static_cast<kroui::controls::UI_ControlView*>(Node())->IsEnabled());
    Set("bind", 1e6); // more than a day
    EXPECT_EQ(layoutChanges, 1);
    EXPECT_TRUE(writes.empty());
}

} // namespace
} // namespace uit::lio
