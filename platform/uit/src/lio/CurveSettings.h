#pragma once

#include "AttributeTable.h"
#include "uit/lio/AttributeValues.h"

#include "uit/controls/UI_CurveEditor.h"

namespace uit::lio {

// How a curve editor looks and what it allows, as a script says it. A value.
struct CurveSettings {
    struct Axis {
        double start = 0; // the left end, or the upper one
        double end = 1;
        controls::RulerSettings ruler;
        krocore::string16 label; // a unit, at the ruler
        krocore::string16 editLabel;
        krocore::string16 editUnit;
        bool drawMinorTicks = false;
        friend bool operator==(const Axis&, const Axis&) = default;
    };

    CurveSettings();

    Axis horizontal;
    Axis vertical;
    float contentWidth = 400;
    float contentHeight = 200;
    std::vector<krocore::string16> pointLabels;
    std::vector<bool> visiblePoints; // those beyond it are visible
    int maxPointCount = 128;
    bool drawLinearReference = false;
    bool drawCurve = true;
    bool drawPointLabelsAtBottom = false;
    bool useSplines = false;
    bool uniqueHorizontalPositions = true;
    bool enableAddPoints = true;
    bool enableDeletePoints = true;

    // The attributes of the names that the dictionary has as entries. Throws and changes nothing if there is one that
    // is not known or can't be used.
    void SetAll(const orrin::any_regular_t& dictionary);
    // Tells an editor all but the number of points.
    void ApplyTo(controls::UI_CurveEditor& editor) const;

    friend bool operator==(const CurveSettings&, const CurveSettings&) = default;
};

// Arrays of texts and of bools.
std::vector<krocore::string16> TextsOf(const orrin::any_regular_t& value);
std::vector<bool> BoolsOf(const orrin::any_regular_t& value);

inline constexpr int kMostCurvePoints = 128;

// What `aud_curve_editor` has apart from its bound cells; each may be an entry of `settings` as well.
inline constexpr Attribute<CurveSettings> kCurveAttributes[] = {
    {{"content_width", AttributeKind::kFollows},
     [](CurveSettings& s, const orrin::any_regular_t& v) { s.contentWidth = LengthOf(v); }},
    {{"content_height", AttributeKind::kFollows},
     [](CurveSettings& s, const orrin::any_regular_t& v) { s.contentHeight = LengthOf(v); }},
    {{"horizontal_start", AttributeKind::kFollows},
     [](CurveSettings& s, const orrin::any_regular_t& v) { s.horizontal.start = FiniteNumberOf(v); }},
    {{"horizontal_end", AttributeKind::kFollows},
     [](CurveSettings& s, const orrin::any_regular_t& v) { s.horizontal.end = FiniteNumberOf(v); }},
    {{"vertical_start", AttributeKind::kFollows},
     [](CurveSettings& s, const orrin::any_regular_t& v) { s.vertical.start = FiniteNumberOf(v); }},
    {{"vertical_end", AttributeKind::kFollows},
     [](CurveSettings& s, const orrin::any_regular_t& v) { s.vertical.end = FiniteNumberOf(v); }},
    {{"horizontal_label1", AttributeKind::kFollows},
     [](CurveSettings& s, const orrin::any_regular_t& v) { s.horizontal.label = TextOf(v); }},
    {{"vertical_label1", AttributeKind::kFollows},
     [](CurveSettings& s, const orrin::any_regular_t& v) { s.vertical.label = TextOf(v); }},
    {{"horizontal_edit_label", AttributeKind::kFollows},
     [](CurveSettings& s, const orrin::any_regular_t& v) { s.horizontal.editLabel = TextOf(v); }},
    {{"vertical_edit_label", AttributeKind::kFollows},
     [](CurveSettings& s, const orrin::any_regular_t& v) { s.vertical.editLabel = TextOf(v); }},
    {{"horizontal_edit_unit", AttributeKind::kFollows},
     [](CurveSettings& s, const orrin::any_regular_t& v) { s.horizontal.editUnit = TextOf(v); }},
    {{"vertical_edit_unit", AttributeKind::kFollows},
     [](CurveSettings& s, const orrin::any_regular_t& v) { s.vertical.editUnit = TextOf(v); }},
    {{"horizontal_ruler_type", AttributeKind::kFollows},
     [](CurveSettings& s, const orrin::any_regular_t& v) { s.horizontal.ruler.type = RulerTypeOf(v); }},
    {{"vertical_ruler_type", AttributeKind::kFollows},
     [](CurveSettings& s, const orrin::any_regular_t& v) { s.vertical.ruler.type = RulerTypeOf(v); }},
    {{"horizontal_step_factor", AttributeKind::kFollows},
     [](CurveSettings& s, const orrin::any_regular_t& v) { s.horizontal.ruler.stepFactor = StepFactorOf(v); }},
    {{"vertical_step_factor", AttributeKind::kFollows},
     [](CurveSettings& s, const orrin::any_regular_t& v) { s.vertical.ruler.stepFactor = StepFactorOf(v); }},
    {{"horizontal_log_seed", AttributeKind::kFollows},
     [](CurveSettings& s, const orrin::any_regular_t& v) { s.horizontal.ruler.logSeed = LogSeedOf(v); }},
    {{"vertical_log_seed", AttributeKind::kFollows},
     [](CurveSettings& s, const orrin::any_regular_t& v) { s.vertical.ruler.logSeed = LogSeedOf(v); }},
    {{"horizontal_log_step", AttributeKind::kFollows},
     [](CurveSettings& s, const orrin::any_regular_t& v) { s.horizontal.ruler.logStep = LogStepOf(v); }},
    {{"vertical_log_step", AttributeKind::kFollows},
     [](CurveSettings& s, const orrin::any_regular_t& v) { s.vertical.ruler.logStep = LogStepOf(v); }},
    {{"draw_horizontal_minor_ticks", AttributeKind::kFollows},
     [](CurveSettings& s, const orrin::any_regular_t& v) { s.horizontal.drawMinorTicks = BoolOf(v); }},
    {{"draw_vertical_minor_ticks", AttributeKind::kFollows},
     [](CurveSettings& s, const orrin::any_regular_t& v) { s.vertical.drawMinorTicks = BoolOf(v); }},
    {{"draw_linear_reference", AttributeKind::kFollows},
     [](CurveSettings& s, const orrin::any_regular_t& v) { s.drawLinearReference = BoolOf(v); }},
    {{"draw_curve", AttributeKind::kFollows},
     [](CurveSettings& s, const orrin::any_regular_t& v) { s.drawCurve = BoolOf(v); }},
    {{"draw_point_labels_at_bottom", AttributeKind::kFollows},
     [](CurveSettings& s, const orrin::any_regular_t& v) { s.drawPointLabelsAtBottom = BoolOf(v); }},
    {{"curve_point_labels", AttributeKind::kFollows},
     [](CurveSettings& s, const orrin::any_regular_t& v) { s.pointLabels = TextsOf(v); }},
    {{"visible_points", AttributeKind::kFollows},
     [](CurveSettings& s, const orrin::any_regular_t& v) { s.visiblePoints = BoolsOf(v); }},
    {{"use_splines", AttributeKind::kFollows},
     [](CurveSettings& s, const orrin::any_regular_t& v) { s.useSplines = BoolOf(v); }},
    {{"max_point_count", AttributeKind::kFollows},
     [](CurveSettings& s, const orrin::any_regular_t& v) {
         s.maxPointCount = WholeNumberWithin(v, 0, kMostCurvePoints);
     }},
    {{"unique_horizontal_positions", AttributeKind::kFollows},
     [](CurveSettings& s, const orrin::any_regular_t& v) { s.uniqueHorizontalPositions = BoolOf(v); }},
    {{"enable_add_points", AttributeKind::kFollows},
     [](CurveSettings& s, const orrin::any_regular_t& v) { s.enableAddPoints = BoolOf(v); }},
    {{"enable_delete_points", AttributeKind::kFollows},
     [](CurveSettings& s, const orrin::any_regular_t& v) { s.enableDeletePoints = BoolOf(v); }},
};

} // namespace uit::lio
