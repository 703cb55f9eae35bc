#pragma once

#include "ControlAdapter.h"

#include "kroui/controls/UI_StaticText.h"

#include <span>

namespace krotarnlio {

// A text that the user reads: "static_text". One that ends with a colon is aligned there with other labels.
//   name        the text
//   characters  the widest it gets, in digits: a longer text goes on in further lines
class StaticTextAdapter final : public ControlAdapter<kroui::controls::UI_StaticText> {
public:
    explicit StaticTextAdapter(const uit::lio::WidgetContext& context) : ControlAdapter(context) {}
    static std::span<const uit::lio::AttributeRow> Rows();

    void SetAttribute(int row, const orrin::any_regular_t& value) override;
    uit::lio::WidgetExtent Measure(std::optional<float> width) override;
    void Place(const kroui::Rect& frame) override;

private:
    float LineWidth() const;
    bool NeedsLines(float width) const;

    unsigned fCharacters = 0; // 0: as many as there are
};

} // namespace krotarnlio
