#include "kroui/controls/TextMeasure.h"

#include <algorithm>
#include <cmath>

namespace kroui::controls {

namespace {

// Parts of the font's size, close to those of common sans families.
constexpr float kEstimatedAdvance = 0.64F;
constexpr float kEstimatedAscent = 0.93F;
constexpr float kEstimatedHeight = 1.17F;

constexpr std::uint32_t kMostDigits = 100;

} // namespace

float TextWidth(const ui::UI_Node& node, std::u16string_view text, const limner::Font& font) {
    if (text.empty()) return 0;
    const limner::SupplierInterface* const supplier = node.UI_GetDrawSupplier();
    if (supplier) return std::ceil(supplier->MeasureText(text, font).width);
    return std::ceil(static_cast<float>(text.size()) * font.size * kEstimatedAdvance);
}

float DigitsWidth(const ui::UI_Node& node, std::uint32_t count, const limner::Font& font) {
    return TextWidth(node, krocore::string16(std::min(count, kMostDigits), u'0'), font);
}

float CentredBaseline(const ui::UI_Node& node, float height, const limner::Font& font) {
    const limner::SupplierInterface* const supplier = node.UI_GetDrawSupplier();
    const limner::TextExtent line =
        supplier ? supplier->MeasureText(u"0", font)
                 : limner::TextExtent{0, font.size * kEstimatedHeight, font.size * kEstimatedAscent};
    return (height - line.height) / 2 + line.ascent;
}

} // namespace kroui::controls
