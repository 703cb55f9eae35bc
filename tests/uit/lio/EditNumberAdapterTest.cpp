#include "WidgetFixture.h"

#include "uit/controls/UI_EditNumber.h"

namespace uit::lio {
namespace {

using controls::UI_EditNumber;
using kroui::Point;
using kroui::ui::Key;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

class EditNumberAdapterTest : public WidgetTest {
protected:
    // A gain of -10...10 dB on a track of 200 pixels, with more attributes.
    void MakeGain(const Attributes& more = {}) {
        const Attributes gain{
            {"min_max_filter", Limits(-10, 10)}, {"name", "Gain:"}, {"unit_label", "dB"}, {"decimal_places", 1},
            {"min_slider_width", 200},           {"bind", 1.0}};
        Make("aud_edit_number", Merged(gain, more));
    }
    UI_EditNumber& Edit() const { return static_cast<UI_EditNumber&>(*Node()); }
    Point At(const kroui::Rect& part) const { return Edit().UI_LocalToWindow(part.Centre()); }
    Point OnTrack(double fraction) const {
        const kroui::Rect& track = Edit().Layout().track;
        return Edit().UI_LocalToWindow({track.left + static_cast<float>(fraction) * track.width, track.top});
    }
    // Looks and behaviour: how it looks, and the values that a drag of the number, a click on the track and a key give.
    std::vector<std::string> Portrait() {
        std::vector<std::string> portrait = Look();
        const Point number = At(Edit().Layout().number);
        window.Drag(number, {number.x + 30, number.y});
        window.Drag(number, {number.x, number.y - 30});
        const kroui::Rect& track = Edit().Layout().track;
        window.Click(Edit().UI_LocalToWindow({track.left + track.width / 4, track.top + track.height / 4}));
        window.PressKey(Key::kUp);
        window.Advance(1);
        for (const double value : Numbers("bind"))
            portrait.push_back(std::to_string(value));
        return portrait;
    }
};

TEST_F(EditNumberAdapterTest, EveryAttributeHasAnEffect) {
    const struct {
        const char* attribute;
        any_regular_t value;
        Attributes company; // what it works together with
    } kCases[] = {
        {"digits", 9, {}},
        {"min_max_filter", Limits(-96, 12), {}},
        {"max_digits", 1, {{"bind", 2.5}}},
        {"name", "Level:", {}},
        {"decimal_places", 3, {}},
        {"ruler_settings", Dictionary({{"type", 1}}), {}},
        {"first_ruler_settings", Dictionary({{"type", 1}, {"value1", 0}, {"value2", 5}}), {{"ruler_type", 1}}},
        {"ruler_type", 1, {}},
        {"ruler_label1", "Slow", {{"ruler_type", 1}}},
        {"log_step", 2, {{"ruler_type", 2}, {"min_max_filter", Limits(20, 20000)}}},
        {"use_slider", false, {}},
        {"min_slider_width", 120, {}},
        {"unit_label", "%", {}},
        {"slider_knob", name_t("knob_cap"), {}},
        {"slider_arrow", name_t("arrow_up_left"), {}},
        {"invert_slider", true, {}},
        {"logarithmic", true, {{"min_max_filter", Limits(20, 20000)}}},
        {"horizontal_direction", true, {}},
        {"increment", 3, {}},
        {"horizontal", false, {}},
        {"width", 300, {}},
        {"hottext_scale", name_t("hotttext_scale_log"), {{"min_max_filter", Limits(20, 20000)}, {"bind", 100}}},
        {"hottext_scale_range",
         Limits(90, 110),
         {{"hottext_scale", name_t("hotttext_scale_log")}, {"min_max_filter", Limits(0, 20000)}, {"bind", 100}}},
        {"trailing_zeroes", false, {}},
        {"always_show_sign", true, {}},
        {"use_inline", false, {}},
        {"description1", "soft", {}},
        {"description2", "hard", {}},
        {"bind", -3.5, {}},
    };
    MakeGain();
    const auto portrait = Portrait();
    MakeGain();
    ASSERT_EQ(Portrait(), portrait) << "nothing else differs";
    for (const auto& [attribute, value, company] : kCases) {
        MakeGain(company);
        const auto without = Portrait();
        MakeGain(Merged(company, {{attribute, value}}));
        EXPECT_NE(Portrait(), without) << attribute;
    }
}

TEST_F(EditNumberAdapterTest, AttributesMeanWhatTheySay) {
    MakeGain({{"bind", 2.5}, {"always_show_sign", true}, {"decimal_places", 2}});
    EXPECT_THAT(Texts(), ElementsAre("Gain:", "+2.50", "dB"));
    MakeGain({{"bind", 2.5}, {"trailing_zeroes", false}, {"decimal_places", 3}, {"name", "$$$/Test/Level=Level:"}});
    EXPECT_THAT(Texts(), ElementsAre("Level:", "2.5", "dB"));
    MakeGain({{"invert_slider", true}});
    window.Click(OnTrack(0.25));
    EXPECT_NEAR(Edit().GetValue(), 5, 0.11);
    MakeGain({{"min_max_filter", Limits(10, 1000)}, {"logarithmic", true}});
    window.Click(OnTrack(0.5));
    EXPECT_NEAR(Edit().GetValue(), 100, 2);
    MakeGain({{"horizontal_direction", true}});
    const Point number = At(Edit().Layout().number);
    window.Drag(number, {number.x, number.y - 40});
    EXPECT_EQ(Edit().GetValue(), 1) << "up and down counts for nothing";
    MakeGain({{"horizontal", false}, {"width", 24}});
    EXPECT_EQ(Node()->UI_GetFrame().width, 24);
    EXPECT_EQ(Edit().Layout().track.height, 200);
    MakeGain({{"increment", 0.25}, {"decimal_places", 2}});
    window.Wheel(At(Edit().Layout().number), 1);
    EXPECT_EQ(Edit().GetValue(), 1.25);
}

TEST_F(EditNumberAdapterTest, RulerSettingsAreTheSheetsDictionaries) {
    MakeGain({{"min_max_filter", Limits(-100, 0)},
              {"ruler_settings", Dictionary({{"type", 1},
                                             {"position", 0},
                                             {"text_placement", name_t("left_top")},
                                             {"step_factor", 51},
                                             {"value1", -100},
                                             {"value2", 0},
                                             {"label2", "Full"}})}});
    EXPECT_THAT(Texts(), Contains("-50"));
    EXPECT_THAT(Texts(), Contains("Full"));
    const auto gap = [this] { return Edit().Layout().track.top - Edit().UI_GetFrame().height / 2; };
    EXPECT_GT(gap(), 0) << "the texts are above";
    // Ends that the dictionary leaves open are those of the bounds, and go along with them.
    Set("ruler_settings", Dictionary({{"type", 1}, {"text_placement", name_t("right_bottom")}}));
    Set("min_max_filter", Limits(0, 400));
    Place();
    EXPECT_LT(gap(), 0);
    EXPECT_THAT(Texts(), Contains("400"));
    Set("ruler_settings", dictionary_t());
    Place();
    EXPECT_THAT(Texts(), Not(Contains("400")));
}

TEST_F(EditNumberAdapterTest, DragWritesEachChangeOnceAndEscapeTheOldValue) {
    MakeGain();
    window.Press(OnTrack(0.55)); // the knob, at 1
    window.MoveTo({OnTrack(0.55).x + 20, OnTrack(0).y});
    window.MoveTo({OnTrack(0.55).x + 40, OnTrack(0).y});
    EXPECT_THAT(Numbers("bind"), ElementsAre(3, 5));
    window.PressKey(Key::kEscape);
    window.Release();
    EXPECT_THAT(Numbers("bind"), ElementsAre(3, 5, 1));
    window.DoubleClick(At(Edit().Layout().number));
    window.Type(u"-7,5");
    window.PressKey(Key::kEnter);
    EXPECT_THAT(Numbers("bind"), ElementsAre(3, 5, 1, -7.5));
}

TEST_F(EditNumberAdapterTest, CellThatKeepsAnotherValueIsShownAndDoesNotDisturbTheDrag) {
    MakeGain();
    cell = [](const any_regular_t& value) { return any_regular_t(std::min(value.get<double>(), 4.0)); };
    const Point start = OnTrack(0.55);
    window.Press(start);
    for (const float pixels : {30.0F, 60.0F, 70.0F, 80.0F}) {
        window.MoveTo({start.x + pixels, start.y});
        EXPECT_LE(Edit().GetValue(), 4);
    }
    window.MoveTo({start.x + 20, start.y});
    window.Release();
    EXPECT_EQ(Edit().GetValue(), 3) << "twenty pixels from where it began";
    // What a parameter of 32 bits makes of a value.
    MakeGain();
    cell = [](const any_regular_t& value) {
        const auto normalised = static_cast<float>((value.get<double>() + 10) / 20);
        return any_regular_t(static_cast<double>(normalised) * 20 - 10);
    };
    window.Drag(OnTrack(0.55), OnTrack(0.95), 37);
    EXPECT_EQ(Numbers("bind").back(), 9);
}

TEST_F(EditNumberAdapterTest, BoundsOfACellHoldTheShownValueOnly) {
    MakeGain({{"bind", 8.0}});
    Set("min_max_filter", Limits(-2, 2));
    EXPECT_EQ(Edit().GetValue(), 2);
    Set("min_max_filter", Limits(-20, 20));
    EXPECT_EQ(Edit().GetValue(), 8);
    EXPECT_TRUE(writes.empty());
    EXPECT_EQ(layoutChanges, 2);
    Set("bind", -INFINITY);
    EXPECT_EQ(Edit().GetValue(), -20);
    EXPECT_EQ(layoutChanges, 2) << "a value moves nothing";
}

TEST_F(EditNumberAdapterTest, LabelWithAColonEndsAtTheGuide) {
    const struct {
        const char* name;
        Attributes more;
        bool hasGuide;
    } kCases[] = {
        {"Gain:", {}, true},
        {"\xE5\xA2\x9E\xE7\x9B\x8A\xEF\xBC\x9A", {}, true}, // the colon of Chinese texts
        {"Gain", {}, false},
        {"", {}, false},
        {"Gain:", {{"use_inline", false}}, false},
        {"Gain:", {{"horizontal", false}}, false},
    };
    for (const auto& [name, more, hasGuide] : kCases) {
        MakeGain(Merged(more, {{"name", name}}));
        const std::optional<float> colon = adapter->Measure({}).colon;
        ASSERT_EQ(colon.has_value(), hasGuide) << name;
        if (hasGuide) {
            EXPECT_EQ(*colon, Edit().Layout().label.Right());
        }
    }
}

TEST_F(EditNumberAdapterTest, WithoutDigitsHasRoomForEveryNumberWithinTheBounds) {
    MakeGain({{"min_max_filter", Limits(-12000, 5)}, {"decimal_places", 2}});
    const float room = Edit().Layout().number.width;
    EXPECT_GE(room, supplier.MeasureText(u"-12000.00", {12}).width);
    Set("min_max_filter", Limits(0, 5));
    Place();
    EXPECT_LT(Edit().Layout().number.width, room);
}

TEST_F(EditNumberAdapterTest, WrongValuesAreRefusedAndChangeNothing) {
    const struct {
        const char* attribute;
        any_regular_t value;
        const char* phrase;
    } kCases[] = {
        {"bind", "loud", "needs a number, not a string"},
        {"bind", NAN, "needs a number, not the result"},
        {"name", 5, "needs a string, not a number"},
        {"decimal_places", 1.5, "needs a whole number from 0 to 15"},
        {"digits", -1, "needs a whole number from 0 to 40"},
        {"use_slider", 1, "needs a bool, not a number"},
        {"min_slider_width", -5, "needs a number from 0 to 10000"},
        {"increment", -1, "needs a number from 0"},
        {"slider_arrow", name_t("arrow_down"), "needs @arrow_none, @arrow_up_left or @arrow_down_right"},
        {"hottext_scale", "log", "needs @hottext_scale_linear"},
        {"hottext_scale_range", Limits(0, 10), "needs different bounds above 0"},
        {"min_max_filter", Dictionary({{"min_value", 0}}), "needs both min_value and max_value"},
        {"min_max_filter", Dictionary({{"min_value", 0}, {"max_value", "x"}}),
         "has an entry 'max_value' that needs a number, not a string"},
        {"min_max_filter", array_t{0, 1}, "needs a dictionary, not an array"},
        {"ruler_type", 5, "needs a whole number from 0 to 4"},
        {"log_step", 1, "needs a number from 1.01"},
        {"ruler_settings", Dictionary({{"type", 1}, {"size", 3}}), "has an entry 'size' that is not known"},
        {"ruler_settings", Dictionary({{"text_placement", name_t("above")}}),
         "has an entry 'text_placement' that needs @left_top, @right_bottom or @both"},
        {"ruler_settings", Dictionary({{"value1", INFINITY}}),
         "has an entry 'value1' that needs a number that is not infinite"},
    };
    MakeGain();
    const auto before = Look();
    for (const auto& [attribute, value, phrase] : kCases) {
        EXPECT_THAT(Refusal(attribute, value), HasSubstr(phrase)) << attribute;
        EXPECT_EQ(Look(), before) << attribute;
    }
}

TEST_F(EditNumberAdapterTest, CellThatCannotBeWrittenDisablesIt) {
    MakeGain();
    adapter->SetWritable(Row("bind"), false);
    window.Drag(OnTrack(0.55), OnTrack(0.9));
    EXPECT_TRUE(writes.empty());
    adapter->SetWritable(Row("bind"), true);
    window.Drag(OnTrack(0.55), OnTrack(0.9));
    EXPECT_FALSE(writes.empty());
}

TEST_F(EditNumberAdapterTest, ControlThatOutlivesItsAdapterWritesNothing) {
    MakeGain();
    const boost::intrusive_ptr<kroui::ui::UI_Node> node = adapter->GetNode();
    const Point from = OnTrack(0.55);
    adapter.reset();
    window.Drag(from, {from.x + 50, from.y});
    EXPECT_TRUE(writes.empty());
    root->ChildRemove(node.get());
}

TEST_F(EditNumberAdapterTest, WriteThatTakesThePanelAwayIsSafe) {
    MakeGain();
    const Point from = OnTrack(0.55);
    cell = [this](const any_regular_t& value) {
        root->ChildRemove(Node());
        adapter.reset();
        return value;
    };
    window.Drag(from, {from.x + 50, from.y});
    EXPECT_EQ(writes.size(), 1U);
}

} // namespace
} // namespace uit::lio
