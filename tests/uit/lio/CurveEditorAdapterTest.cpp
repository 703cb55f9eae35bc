#include "WidgetFixture.h"

#include "uit/controls/UI_CurveEditor.h"

namespace uit::lio {
namespace {

using controls::UI_CurveEditor;
using kroui::Point;
using kroui::ui::Key;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::SizeIs;

any_regular_t Curve(const std::vector<std::pair<double, double>>& places) {
    array_t points;
    for (const auto& [x, y] : places)
        points.emplace_back(Dictionary({{"x", x}, {"y", y}}));
    return points;
}

std::vector<std::pair<double, double>> PlacesOf(const any_regular_t& curve) {
    std::vector<std::pair<double, double>> places;
    for (const any_regular_t& point : curve.get<array_t>()) {
        const auto& dictionary = point.get<dictionary_t>();
        places.emplace_back(dictionary.find(name_t("x"))->get<double>(), dictionary.find(name_t("y"))->get<double>());
    }
    return places;
}

// A curve with a unit a pixel, 0...400 across and 200...0 downwards.
class CurveEditorAdapterTest : public WidgetTest {
protected:
    void MakeCurve(const any_regular_t& points, const Attributes& more = {}) {
        const Attributes curve{{"content_width", 400},  {"content_height", 200}, {"horizontal_start", 0},
                               {"horizontal_end", 400}, {"vertical_start", 200}, {"vertical_end", 0},
                               {"bind", points}};
        Make("aud_curve_editor", Merged(curve, more));
    }
    UI_CurveEditor& Editor() const { return static_cast<UI_CurveEditor&>(*Node()); }
    Point At(double x, double y) const {
        const kroui::Rect content = Editor().GetContentRect();
        return Editor().UI_LocalToWindow(
            {content.left + static_cast<float>(x), content.Bottom() - static_cast<float>(y)});
    }
    std::vector<std::pair<double, double>> Shown() const {
        std::vector<std::pair<double, double>> places;
        for (const auto& point : Editor().GetCurvePoints())
            places.emplace_back(point.coordinates.horizontal, point.coordinates.vertical);
        return places;
    }
    // The names of the cells that were written, in order.
    std::vector<std::string> Written() const {
        std::vector<std::string> names;
        for (const auto& write : writes)
            names.push_back(write.first);
        return names;
    }
    // What was last written to a cell.
    any_regular_t Last(std::string_view attribute) const {
        any_regular_t last;
        for (const auto& [name, value] : writes)
            if (name == attribute) last = value;
        return last;
    }
};

TEST_F(CurveEditorAdapterTest, EveryAttributeHasAnEffect) {
    const array_t response(400, any_regular_t(150));
    const struct {
        const char* attribute;
        any_regular_t value;
        Attributes company;
    } kCases[] = {
        {"bind", Curve({{10, 10}}), {}},
        {"bind_point_count", 1, {}},
        {"bind_response", response, {}},
        {"selected_node", 1, {}},
        {"settings", Dictionary({{"use_splines", true}, {"content_width", 333}}), {}},
        {"content_width", 300, {}},
        {"content_height", 150, {}},
        {"horizontal_start", -50, {}},
        {"horizontal_end", 500, {}},
        {"vertical_start", 300, {}},
        {"vertical_end", -30, {}},
        {"horizontal_label1", "Hz", {}},
        {"vertical_label1", "dB", {}},
        {"horizontal_edit_label", "Frequency:", {}},
        {"vertical_edit_label", "Level:", {}},
        {"horizontal_edit_unit", "Hz", {}},
        {"vertical_edit_unit", "dB", {}},
        {"horizontal_ruler_type", 2, {{"horizontal_start", 20}}},
        {"vertical_ruler_type", 2, {{"vertical_end", 10}}},
        {"horizontal_step_factor", 150, {}},
        {"vertical_step_factor", 90, {}},
        {"horizontal_log_seed", 3, {{"horizontal_ruler_type", 2}, {"horizontal_start", 20}}},
        {"vertical_log_seed", 3, {{"vertical_ruler_type", 2}, {"vertical_end", 1}}},
        {"horizontal_log_step", 4, {{"horizontal_ruler_type", 2}, {"horizontal_start", 1}}},
        {"vertical_log_step", 4, {{"vertical_ruler_type", 2}, {"vertical_end", 1}}},
        {"draw_horizontal_minor_ticks", true, {}},
        {"draw_vertical_minor_ticks", true, {}},
        {"draw_linear_reference", true, {}},
        {"draw_curve", false, {}},
        {"draw_point_labels_at_bottom", true, {{"curve_point_labels", array_t{"low", "high"}}}},
        {"curve_point_labels", array_t{"low", "high"}, {}},
        {"visible_points", array_t{true, false}, {}},
        {"use_splines", true, {}},
        {"max_point_count", 2, {}},
        {"unique_horizontal_positions", false, {}},
        {"enable_add_points", false, {}},
        {"enable_delete_points", false, {}},
    };
    // Grid and rulers come from a cache, so it takes the picture to see them; then a point is typed, added, moved past
    // the next and deleted.
    const auto portrait = [&](const Attributes& attributes) {
        MakeCurve(Curve({{100, 50}, {300, 120}}), attributes);
        const kroui::limner::ImagePtr picture =
            supplier.DrawImage({600, 300}, 1, [this](auto& limner) { Node()->UI_DrawTree(&limner); });
        const auto pixels = picture->Pixels();
        std::string portrait(reinterpret_cast<const char*>(pixels.data()), pixels.size_bytes());
        for (const std::string& line : Look())
            portrait += line;
        window.DoubleClick(At(100, 50));
        kroui::limner::RecordingLimner dialog;
        if (auto* const overlay = window.Window().TopOverlay()) overlay->UI_DrawTree(&dialog);
        for (const std::string& line : dialog.Operations())
            portrait += line;
        window.PressKey(Key::kEscape);
        window.Click(At(200, 20));
        window.Drag(At(100, 50), At(350, 60));
        window.PressKey(Key::kDelete);
        for (const auto& [name, value] : writes)
            if (name == "bind")
                for (const auto& [x, y] : PlacesOf(value))
                    portrait += std::to_string(x) + ',' + std::to_string(y) + ' ';
        return portrait;
    };
    ASSERT_TRUE(portrait({}) == portrait({})) << "nothing else differs";
    for (const auto& [attribute, value, company] : kCases) {
        EXPECT_TRUE(portrait(company) != portrait(Merged(company, {{attribute, value}}))) << attribute;
    }
}

TEST_F(CurveEditorAdapterTest, DragWritesThePointsWithWhatElseTheyHave) {
    const array_t points{Dictionary({{"x", 100}, {"y", 50}, {"band", "low"}}),
                         Dictionary({{"x", 300}, {"y", 120}, {"band", "high"}, {"movable_y", false}})};
    MakeCurve(points, {{"selected_node", -1}});
    window.Drag(At(300, 120), At(340, 160));
    const any_regular_t curve = Last("bind");
    EXPECT_THAT(PlacesOf(curve), ElementsAre(std::pair(100.0, 50.0), std::pair(340.0, 120.0)));
    EXPECT_EQ(*curve.get<array_t>()[1].get<dictionary_t>().find(name_t("band")), any_regular_t("high"));
    EXPECT_EQ(writes.front(), std::pair(std::string("selected_node"), any_regular_t(1)));
    // A point in front of it takes nothing away from it.
    window.Click(At(200, 20));
    const any_regular_t three = Last("bind");
    ASSERT_THAT(three.get<array_t>(), SizeIs(3));
    EXPECT_EQ(*three.get<array_t>()[2].get<dictionary_t>().find(name_t("band")), any_regular_t("high"));
    EXPECT_FALSE(three.get<array_t>()[1].get<dictionary_t>().contains(name_t("band")));
    window.Drag(At(340, 120), At(360, 160));
    EXPECT_EQ(PlacesOf(Last("bind"))[2], std::pair(360.0, 120.0)) << "still it does not move upwards";
}

TEST_F(CurveEditorAdapterTest, EchoDoesNotDisturbTheDrag) {
    MakeCurve(Curve({{100, 50}, {300, 120}}));
    // What parameters of 32 bits make of a point.
    cell = [](const any_regular_t& value) {
        if (!value.get_if<array_t>()) return value;
        array_t rounded;
        for (const auto& [x, y] : PlacesOf(value))
            rounded.emplace_back(
                Dictionary({{"x", static_cast<float>(x / 400) * 400.0}, {"y", static_cast<float>(y / 200) * 200.0}}));
        return any_regular_t(rounded);
    };
    window.Drag(At(100, 50), At(177, 143), 31);
    EXPECT_NEAR(Shown()[0].first, 177, 1e-4);
    EXPECT_NEAR(Shown()[0].second, 143, 1e-4);
    // A cell that keeps a point below 100.
    cell = [](const any_regular_t& value) {
        if (!value.get_if<array_t>()) return value;
        auto places = PlacesOf(value);
        places[0].second = std::min(places[0].second, 100.0);
        return Curve(places);
    };
    window.Drag(At(177, 143), At(180, 180), 8);
    EXPECT_EQ(Shown()[0].second, 100);
    EXPECT_THAT(Shown(), SizeIs(2));
}

TEST_F(CurveEditorAdapterTest, EscapeWritesTheOldPoints) {
    MakeCurve(Curve({{100, 50}, {300, 120}}));
    window.Press(At(200, 20));
    window.MoveTo(At(220, 60));
    ASSERT_THAT(Shown(), SizeIs(3));
    window.PressKey(Key::kEscape);
    window.Release();
    EXPECT_EQ(PlacesOf(Last("bind")), PlacesOf(Curve({{100, 50}, {300, 120}})));
    EXPECT_EQ(Shown(), PlacesOf(Last("bind")));
}

TEST_F(CurveEditorAdapterTest, PointCountLeavesTheArrayItsLength) {
    MakeCurve(Curve({{100, 50}, {300, 120}, {7, 8}, {9, 10}}), {{"bind_point_count", 2}, {"selected_node", -1}});
    EXPECT_THAT(Shown(), SizeIs(2));
    window.Press(At(200, 20));
    window.Release();
    EXPECT_THAT(Written(), ElementsAre("bind", "bind_point_count", "selected_node"))
        << "neither count nor selection reaches a point that is not there";
    const auto places = PlacesOf(Last("bind"));
    ASSERT_THAT(places, SizeIs(4));
    EXPECT_NEAR(places[1].first, 200, 0.01);
    EXPECT_EQ(places[2], std::pair(300.0, 120.0));
    EXPECT_EQ(places[3], std::pair(9.0, 10.0)) << "what lies ready behind stays";
    EXPECT_EQ(Last("bind_point_count"), any_regular_t(3));
    EXPECT_EQ(Last("selected_node"), any_regular_t(1));
    window.Click(At(50, 150));
    window.Click(At(350, 150));
    EXPECT_THAT(Shown(), SizeIs(4)) << "no room for more";

    MakeCurve(Curve({{100, 50}, {200, 20}, {300, 120}}), {{"bind_point_count", 3}, {"selected_node", 0}});
    window.Click(At(200, 20));
    writes.clear();
    window.PressKey(Key::kDelete);
    EXPECT_THAT(Written(), ElementsAre("selected_node", "bind_point_count", "bind"));
    EXPECT_THAT(PlacesOf(Last("bind")), SizeIs(3));
    EXPECT_THAT(Shown(), ElementsAre(std::pair(100.0, 50.0), std::pair(300.0, 120.0)));
}

TEST_F(CurveEditorAdapterTest, CellsAreShownWithoutWriting) {
    MakeCurve(Curve({{100, 50}}), {{"selected_node", 1}});
    EXPECT_EQ(Editor().GetSelectedNode(), -1);
    Set("bind", Curve({{100, 50}, {300, 120}}));
    EXPECT_EQ(Editor().GetSelectedNode(), 1) << "the point that the cell has named all along";
    Editor().SelectAll();
    Set("selected_node", Editor().GetSelectedNode());
    EXPECT_THAT(Editor().GetSelection(), SizeIs(2));
    Set("bind", array_t{Dictionary({{"x", 10}, {"y", 10}}), Dictionary({{"x", 20}, {"y", 20}, {"visible", false}})});
    window.Drag(At(20, 20), At(60, 60), 1);
    EXPECT_THAT(Shown(), Contains(std::pair(20.0, 20.0))) << "what is not seen is not taken hold of";
    writes.clear();
    Set("use_splines", true);
    Set("settings", Dictionary({{"horizontal_end", 22050}}));
    EXPECT_EQ(Editor().GetHorizontalEnd(), 22050);
    EXPECT_EQ(layoutChanges, 0);
    Set("content_width", 300);
    EXPECT_EQ(layoutChanges, 1);
    Place();
    EXPECT_EQ(Editor().GetContentRect().width, 300);
    EXPECT_TRUE(writes.empty());
}

TEST_F(CurveEditorAdapterTest, ButtonsOfThePanelPublishThroughTheCells) {
    MakeCurve(Curve({{0, 0}, {400, 200}}), {{"selected_node", -1}});
    ASSERT_TRUE(Editor().AddNewPoint());
    EXPECT_TRUE(writes.empty());
    Editor().NotifyChanged();
    EXPECT_THAT(Written(), ElementsAre("bind", "selected_node"));
    EXPECT_THAT(PlacesOf(Last("bind")), SizeIs(3));
    ASSERT_TRUE(Editor().DeleteSelectedPoints());
    Editor().NotifyChanged();
    EXPECT_THAT(PlacesOf(Last("bind")), SizeIs(2));
}

TEST_F(CurveEditorAdapterTest, WrongValuesAreRefusedAndChangeNothing) {
    const struct {
        const char* attribute;
        any_regular_t value;
        const char* phrase;
    } kCases[] = {
        {"bind", 5, "needs an array, not a number"},
        {"bind", array_t{1, 2}, "needs a dictionary, not a number"},
        {"bind", array_t{Dictionary({{"x", 1}})}, "needs points with x and y"},
        {"bind", array_t{Dictionary({{"x", 1}, {"y", "up"}})}, "has an entry 'y' that needs a number"},
        {"bind", array_t{Dictionary({{"x", INFINITY}, {"y", 1}})}, "has an entry 'x' that needs"},
        {"bind", array_t{Dictionary({{"x", 1}, {"y", 1}, {"visible", 0}})}, "has an entry 'visible' that needs a bool"},
        {"bind_point_count", -1, "needs a whole number from 0"},
        {"selected_node", 0.5, "needs a whole number from -1"},
        {"bind_response", array_t{1, "x"}, "needs a number, not a string"},
        {"horizontal_end", "far", "needs a number, not a string"},
        {"horizontal_log_seed", 0, "needs a number above 0"},
        {"curve_point_labels", array_t{1}, "needs a string"},
        {"visible_points", array_t{1}, "needs a bool"},
        {"settings", Dictionary({{"use_splines", true}, {"colour", 1}}), "has an entry 'colour' that is not known"},
        {"settings", Dictionary({{"draw_curve", false}, {"use_splines", 1}}),
         "has an entry 'use_splines' that needs a bool"},
    };
    MakeCurve(Curve({{100, 50}, {300, 120}}));
    const auto before = Look();
    for (const auto& [attribute, value, phrase] : kCases) {
        EXPECT_THAT(Refusal(attribute, value), HasSubstr(phrase)) << attribute;
        Set("draw_linear_reference", false); // shows what has been set so far
        EXPECT_EQ(Look(), before) << attribute;
    }
}

TEST_F(CurveEditorAdapterTest, WriteThatTakesThePanelAwayIsSafe) {
    MakeCurve(Curve({{100, 50}, {300, 120}}), {{"bind_point_count", 2}});
    cell = [this](const any_regular_t& value) {
        root->ChildRemove(Node());
        adapter.reset();
        return value;
    };
    const Point from = At(100, 50);
    window.Drag(from, {from.x + 50, from.y});
    EXPECT_EQ(writes.size(), 1U);
}

} // namespace
} // namespace uit::lio
