#pragma once

#include "kroui/Geometry.h"

namespace uit::controls {

// Where the parts of an edit number stand: in a row - label, slider with its ruler, number, unit - or, vertical, one
// above the other. Descriptions stand over and under the slider.
struct EditNumberLayout {
    // What the parts take, in view units. 0: the part is missing.
    struct Needs {
        float labelWidth = 0;
        float numberWidth = 0; // the digits alone
        float unitWidth = 0;
        float sliderLength = 0; // wanted, and the least of one that stretches
        float rulerBefore = 0;  // from the track's middle, left of it or above it
        float rulerBehind = 0;
        float description1Width = 0; // over the slider, in the smallest font it may have
        float description2Width = 0; // under it
        bool hasRuler = false;
        bool stretches = true;
        bool isInline = true; // the label beside the slider, otherwise above it
        bool isVertical = false;
    };

    kroui::Rect label;
    kroui::Rect track;     // between the middles of the knob at its ends
    kroui::Rect slider;    // what takes presses for the slider
    kroui::Rect rulerRoom; // how far the ruler's labels may reach along the track
    kroui::Rect number;    // with its padding
    kroui::Rect unit;
    kroui::Rect description1;
    kroui::Rect description2;

    static EditNumberLayout In(kroui::Size size, const Needs& needs);
    // The size at which nothing is cut off and the slider has the wanted length.
    static kroui::Size Natural(const Needs& needs);
    // The top of the row that the number stands in, at that size.
    static float NaturalRowTop(const Needs& needs);
};

} // namespace uit::controls
