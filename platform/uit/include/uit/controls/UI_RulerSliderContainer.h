#pragma once

namespace uit::controls {

// What is told of a ruler along a slider's track.
struct UI_RulerSliderContainer {
    // Only whether there is a ruler counts: where it stands follows from its texts.
    enum RulerPlacement : int { kRulerLeftTop = 0, kRulerRightBottom = 1 };
    // Where its texts and so its marks are.
    enum RulerTextPlacement : int { kTextLeftTop = 0, kTextRightBottom = 1, kTextBoth = 2 };
};

} // namespace uit::controls
