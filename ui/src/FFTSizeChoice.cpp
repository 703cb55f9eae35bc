#include "qocui/ui/FFTSizeChoice.h"

#include "krocore/String.h"
#include "krocore/WholeNumber.h"
#include "kroui/controls/UI_Popup.h"

#include <string>

namespace qocui::ui {

namespace {

constexpr float kOffset = 32;
constexpr int kMostShown = 1'000'000; // beyond all sizes

krocore::string16 TextOf(int size) {
    return krocore::FromASCII(std::to_string(size));
}

} // namespace

void FFTSizeChoice::Fill(kroui::controls::UI_Popup& popup) const {
    popup.DeleteAllItems();
    for (int size = fSmallest; size <= fLargest; size *= 2)
        popup.AddItem(TextOf(size));
}

void FFTSizeChoice::Show(kroui::controls::UI_Popup& popup, float stored) const {
    // In single precision, which undoes the rounding of the stored value: in double precision 128 comes out below 128.
    const float size = stored * fRange + kOffset;
    popup.SetValueString(TextOf(krocore::TruncatedWithin(size, -kMostShown, kMostShown)), true);
}

std::optional<float> FFTSizeChoice::Stored(int item) const {
    if (item < 0) return std::nullopt;
    int size = fSmallest;
    for (int i = 0; i < item && size <= fLargest; ++i)
        size *= 2;
    if (size > fLargest) return std::nullopt;
    return (static_cast<float>(size) - kOffset) / fRange;
}

} // namespace qocui::ui
