#pragma once

#include "kroui/limner/Types.h"

#include <span>
#include <string_view>

namespace kroui::ui {

// The roles that colours play, by their index in the theme table.
enum ThemeColor : int {
    kColorWindow = 1,       // behind panels
    kColorPanel = 2,        // a panel's own ground
    kColorRaised = 3,       // buttons, pop-ups, fields
    kColorRaisedHover = 4,  // the same under the pointer
    kColorLine = 5,         // outlines and dividers
    kColorText = 6,         //
    kColorDimText = 7,      // units, captions, tick labels
    kColorDisabledText = 8, //
    kColorAccent = 9,       // what is on, selected, focused; hot text
    kColorAccentText = 10,  // on the accent
    kColorTrack = 11,       // slider tracks, meter grounds
    kColorKnob = 12,        // slider knobs
    kColorKnobLine = 13,    //
    kColorField = 14,       // text fields
    kColorCurve = 15,       // response curves (the same in both themes: graphs stay black)
    kColorWarning = 16,     //
    kColorMeter = 17,       // level below the warning range
    kColorSelection = 18,   // selected text, highlighted rows
    kColorShadow = 19,      // under menus and tips
    kColorMenu = 20,        // ground of menus and tips
    kColorRulerTick = 21,   //
    kColorRulerBackground = 125,
    kColorPathBackground = 274,
    kColorMeterBackground = 277,
    kColorGridLine = 282,
    kColorFrame = 324,
};

// A colour for every role. There are two themes; both live as long as the process.
class Theme {
public:
    static const Theme& Dark();
    static const Theme& Light();

    // The colour of a role; an index that the table does not have gives magenta, so that it is seen.
    limner::Color GetColor(int index) const;
    std::string_view Name() const { return fName; } // "dark", "light"

private:
    Theme(std::string_view name, bool isDark);

    static constexpr int kIndexCount = 325;
    std::string_view fName;
    limner::Color fColors[kIndexCount];
};

// A part of the tree that can have a theme of its own; all below it use that.
class ThemeOwner {
public:
    // Not owned; null takes the theme of whatever stands above.
    void SetTheme(const Theme* theme) { fTheme = theme; }
    const Theme* OwnTheme() const { return fTheme; }

protected:
    ~ThemeOwner() = default;

private:
    const Theme* fTheme = nullptr;
};

// Something drawn with the colours of the theme that holds where it stands.
class ThemeClient {
public:
    virtual const Theme& GetTheme() const = 0;
    limner::Color GetColor(int index) const { return GetTheme().GetColor(index); }

protected:
    ~ThemeClient() = default;
};

} // namespace kroui::ui
