#pragma once

#include "uit/controls/UI_RulerSliderContainer.h"

#include "kroui/controls/SliderLook.h"
#include "kroui/utility/RulerBase.h"

namespace uit::controls {

// A ruler along a slider's track: the room it takes, where values lie by it, and how it is drawn. A view of what a
// control holds.
struct SliderRuler {
    using Placement = UI_RulerSliderContainer::RulerPlacement;
    using TextPlacement = UI_RulerSliderContainer::RulerTextPlacement;

    const kroui::utility::RulerBase* ruler = nullptr; // null: none, takes no room
    // Marks stand where the labels do: on one side or on both.
    TextPlacement textPlacement = TextPlacement::kTextRightBottom;

    // Room from the track's middle to the far end of what stands left of or above it, and right of or below it.
    float ReachBefore() const { return Reach(Placement::kRulerLeftTop); }
    float ReachBehind() const { return Reach(Placement::kRulerRightBottom); }

    // Where a value lies by the ruler, 0...1 upwards whichever way the ruler runs, and back.
    double Position(double value) const;
    double ValueAt(double position) const;
    bool IsAscending() const { return ruler->GetFirstValue() < ruler->GetLastValue(); }
    // Whether the ruler turns the slider round: beside a track that lies, with the greater value first. Upright,
    // greater values stand above whichever way the ruler is given.
    bool RunsBackwards(bool isVertical) const {
        return ruler && !isVertical && !ruler->IsDegenerate() && !IsAscending();
    }

    // Draws along the look's track; labels may reach as far as `room` along it.
    void Draw(kroui::limner::Limner& context, const kroui::ui::UI_Node& node, const kroui::controls::SliderLook& look,
              const kroui::Rect& room) const;

    // Labels of this width in the middle over an end of the track need this much beside it.
    static constexpr float kOverhang = 14;
    // What texts beside a vertical track take.
    static constexpr float kTextWidth = 30;

private:
    bool StandsOn(Placement side) const;
    float Reach(Placement side) const;
    void DrawSide(kroui::limner::Limner& context, const kroui::ui::UI_Node& node,
                  const kroui::controls::SliderLook& look, const kroui::Rect& room, Placement side) const;
};

} // namespace uit::controls
