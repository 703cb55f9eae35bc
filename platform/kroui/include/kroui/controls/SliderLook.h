#pragma once

#include "kroui/ui/UI_Node.h"

namespace kroui::controls {

// How a slider lies in its node and what it shows; drawn by all controls that have one. Horizontal values grow to the
// right, vertical ones upwards, the other way round if inverted.
struct SliderLook {
    // The knob: by the slider's direction (a disc on a horizontal one, a fader's cap on a vertical one), or always one.
    enum class Knob : unsigned char { kByDirection = 0, kDisc = 1, kCap = 2 };
    // A knob that points across the track, at a ruler's marks.
    enum class Arrow : unsigned char { kNone = 0, kUpLeft = 1, kDownRight = 2 };

    // From the knob's middle at one end to its middle at the other; its thickness counts for nothing.
    Rect track;
    double position = 0; // of the knob, 0...1
    double origin = 0;   // where the filled part begins, 0...1
    bool vertical = false;
    bool inverted = false;
    bool enabled = true;
    bool hovered = false;
    bool pressed = false;
    bool focused = false;
    Knob knob = Knob::kByDirection;
    Arrow arrow = Arrow::kNone;

    // How far the knob reaches beyond its middle along and across the track.
    static constexpr float kKnobReach = 8;
    static constexpr float kVerticalKnobWidth = 20;
    static constexpr float kVerticalKnobHeight = 12;

    float Length() const { return vertical ? track.height : track.width; }
    // The coordinate along the track of a position, and back; 0...1 only.
    float PixelAt(double at) const;
    double PositionAt(Point point) const;
    // A pointer movement as a part of the track, positive towards greater values.
    double Fraction(float dx, float dy) const;
    Rect KnobRect() const;
    // Everything that looks different when the knob goes to another position.
    Rect ChangedArea(double otherPosition) const;

    void Draw(limner::Limner& context, const ui::UI_Node& node) const;

private:
    Point At(double at) const;
    void DrawTrack(limner::Limner& context, const ui::UI_Node& node) const;
    void DrawKnob(limner::Limner& context, const ui::UI_Node& node) const;
    void DrawArrow(limner::Limner& context, const Rect& knob, const limner::Color& fill, const limner::Pen& line) const;
    void DrawMark(limner::Limner& context, const ui::UI_Node& node, const Rect& knob) const;
    bool HasCap() const { return knob == Knob::kByDirection ? vertical : knob == Knob::kCap; }
};

} // namespace kroui::controls
