#pragma once

#include "ControlAdapter.h"

#include "kroui/controls/UI_DisplayNumber.h"

#include <span>

namespace krotarnlio {

// Base of "display_text" and "display_number": a label and a value that the user can't change.
class DisplayAdapter : public ControlAdapter<kroui::controls::UI_DisplayNumber> {
public:
    uit::lio::WidgetExtent Measure(std::optional<float> width) override;

protected:
    explicit DisplayAdapter(const uit::lio::WidgetContext& context) : ControlAdapter(context) {}

    void SetLabel(const krocore::string16& label);
};

// "display_text".
//   name        the label; one that ends with a colon is aligned there
//   value       a text, a number or a name
//   characters  that the value has room for; as many as it has if not given
class DisplayTextAdapter final : public DisplayAdapter {
public:
    explicit DisplayTextAdapter(const uit::lio::WidgetContext& context);
    static std::span<const uit::lio::AttributeRow> Rows();
    void SetAttribute(int row, const orrin::any_regular_t& value) override;

private:
    void SetShown(const krocore::string16& text);

    bool fHasRoom = false; // whatever the value is
};

// "display_number".
//   name            the label
//   value           a number
//   units           the text behind it
//   digits          as many as there is room for; the number has no more, unless its integer part does
//   decimal_places  if given, the number always has so many
class DisplayNumberAdapter final : public DisplayAdapter {
public:
    explicit DisplayNumberAdapter(const uit::lio::WidgetContext& context);
    static std::span<const uit::lio::AttributeRow> Rows();
    void SetAttribute(int row, const orrin::any_regular_t& value) override;

private:
    void SetUnits(const krocore::string16& units);
    void ShowValue(double value);

    unsigned fDigits = 0; // 0: as the number needs
    bool fHasPlaces = false;
};

} // namespace krotarnlio
