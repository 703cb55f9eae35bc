#pragma once

#include "uit/controls/RulerSettings.h"
#include "uit/controls/SliderRuler.h"

namespace uit::controls {

// The rulers along a slider's track. The first is given by code, or else made from settings and then follows the
// slider's bounds; it decides where values lie. The second stands on the side that the first one leaves free and has no
// say in that.
class SliderRulers {
public:
    using RulerPtr = boost::intrusive_ptr<kroui::utility::RulerBase>;

    // Values and direction of the settings are the slider's: see SetBounds and SetVertical.
    const RulerSettings& Settings() const { return fSettings; }
    // Makes the first ruler anew if its type is another.
    void SetSettings(const RulerSettings& settings);
    // A ruler made from settings follows; later words of its user stand until the bounds move.
    void SetBounds(double low, double high);
    // A ruler that the caller shares and whose values are the caller's, in place of the one of the settings; null for
    // that one again. The settings' placements become these.
    void Give(RulerPtr ruler, int placement, int textPlacement);
    void SetSecond(RulerPtr ruler) { fSecond = std::move(ruler); }
    // Rulers stand as the slider does.
    void SetVertical(bool vertical);

    // The first one, made now if there is none; never null.
    const RulerPtr& First();
    // Whether the ruler given stands upright.
    bool IsGivenVertical() const { return fIsGiven && fFirst->IsVertical(); }
    // Both as the slider sees them, without a ruler where none is to be shown.
    SliderRuler ShownFirst() const;
    SliderRuler ShownSecond() const;

    // Brings both to the track of the look, for drawing.
    void AlignTo(const kroui::controls::SliderLook& look);

private:
    void MakeFirst();
    bool IsFirstShown() const;

    RulerSettings fSettings;
    RulerPtr fFirst; // if there are settings of a type, always there
    RulerPtr fSecond;
    bool fIsGiven = false;
    bool fIsVertical = false;
};

} // namespace uit::controls
