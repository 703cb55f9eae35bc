#pragma once

#include <optional>

namespace kroui::controls {
class UI_Popup;
}

namespace qocui::ui {

// The FFT sizes that a panel offers in a pop-up, powers of two, and how the effect stores them:
// (size - 32) / range. A value; the pop-up stays its owner's.
class FFTSizeChoice {
public:
    // `range`: the effect's own; sizes above range + 32 are stored above 1.
    constexpr FFTSizeChoice(int smallest, int largest, float range)
        : fSmallest(smallest), fLargest(largest), fRange(range) {}

    // Replaces the items by the sizes in decimal, smallest first.
    void Fill(kroui::controls::UI_Popup& popup) const;
    // Shows the size that is stored so; none if it is none of the items.
    void Show(kroui::controls::UI_Popup& popup, float stored) const;
    // How an item's size is stored; nothing for an item that does not exist.
    std::optional<float> Stored(int item) const;

private:
    int fSmallest;
    int fLargest;
    float fRange;
};

} // namespace qocui::ui
