#pragma once

// Measures of menus, in view units.
namespace kroui::controls::menu {

inline constexpr float kPadding = 4;    // between panel edge and rows
inline constexpr float kRowRadius = 3;  //
inline constexpr float kTextLeft = 26;  // text from the panel's edge; the mark stands before it
inline constexpr float kTextRight = 16; //
inline constexpr float kMarkSize = 14;  //
inline constexpr float kSeparatorHeight = 9;
inline constexpr float kLeastRowHeight = 22;
inline constexpr float kRowLead = 10; // row height above font size
inline constexpr float kArrowStripHeight = 16;
inline constexpr float kArrowWidth = 8;
inline constexpr float kImageGap = 8;    // between picture and text
inline constexpr float kImageMargin = 3; // above and below a picture
inline constexpr float kSearchHeight = 24;
inline constexpr float kSearchGap = 4;         // below the search field
inline constexpr float kFewestCharacters = 16; // that the search field shows

} // namespace kroui::controls::menu
