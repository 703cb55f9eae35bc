#pragma once

#include "kroui/ui/LocalizedText.h"
#include "kroui/utility/RulerBase.h"

#include <boost/intrusive_ptr.hpp>

namespace uit::controls {

// What an archive or a script says of a slider's ruler.
struct RulerSettings {
    enum Type : int { kNone = 0, kLinear = 1, kLogarithmic = 2, kDecibels = 3, kFader = 4 };
    // 0 or less: not shown. Where a ruler stands otherwise follows from its texts.
    enum Placement : int { kNowhere = 0, kLeftTop = 1, kRightBottom = 2 };

    int type = kNone; // an unknown one counts as kLinear
    int placement = kRightBottom;
    // Where the texts and so the marks are, as UI_RulerSliderContainer::RulerTextPlacement has it.
    int textPlacement = 1;
    // Wanted distance of labels in pixels.
    double stepFactor = 40;
    double logSeed = 1;
    double logStep = 10;
    // The values at the lower and the upper end of the slider; the other way round the ruler runs backwards.
    double value1 = 0;
    double value2 = 1;
    kroui::ui::LocalizedText label1; // texts in place of the numbers at the ends
    kroui::ui::LocalizedText label2;
    bool abbreviateNumbers = false;

    friend bool operator==(const RulerSettings&, const RulerSettings&) = default;

    bool HasKnownType() const { return type > kNone && type <= kFader; }
    bool IsFinite() const;
    // A ruler in the small size that sliders have; never null.
    boost::intrusive_ptr<kroui::utility::RulerBase> MakeRuler() const;
    // Tells a ruler that was made so all but its type and its values.
    void Configure(kroui::utility::RulerBase& ruler) const;
};

} // namespace uit::controls
