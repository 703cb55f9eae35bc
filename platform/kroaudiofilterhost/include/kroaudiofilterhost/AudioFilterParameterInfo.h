#pragma once

#include "krocore/String.h"

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>

namespace kroaudiofilterhost {

// What one parameter of a filter means: its name, unit, default and the conversions between the stored normalised value
// (nominally 0...1), the natural value in its unit, and text. Owned by the filter and as long-lived; after the filter
// is made it changes only in what depends on the sample rate. User-interface thread, except for the two number
// conversions and what answers with yes or no, which are safe on the sound thread too.
class AudioFilterParameterInfo {
public:
    enum class Kind {
        kNumber,
        kSwitch, // off below 0.5 normalised, on from there
        kChoice, // one of a list of items
    };
    // How the natural value of a number follows the stored one.
    enum class Scale {
        kLinear,
        kLogarithmic, // in equal ratios
    };

    AudioFilterParameterInfo() = default;
    AudioFilterParameterInfo(const AudioFilterParameterInfo&) = delete;
    AudioFilterParameterInfo& operator=(const AudioFilterParameterInfo&) = delete;
    virtual ~AudioFilterParameterInfo();

    // Neither conversion clamps: a value outside the range lands outside the range.
    virtual float ToNatural(float normalised) const = 0;
    virtual float ToNormalised(float natural) const = 0;

    // Names the parameter in files and commands: ASCII letters and digits, the same in every language.
    virtual std::string GetID() const = 0;
    // What a user reads: "Gain 1".
    virtual krocore::string16 GetName() const = 0;
    // "dB"; empty when the parameter has none.
    virtual krocore::string16 GetUnit() const { return {}; }
    // Normalised.
    virtual float GetDefault() const { return 0.0F; }
    virtual Kind GetKind() const { return Kind::kNumber; }
    virtual int GetDecimalPlaces() const { return 2; }
    virtual Scale GetScale() const { return Scale::kLinear; }
    // Whether only whole natural values differ: a count, an order.
    virtual bool IsWhole() const { return false; }
    // Natural, as far as the present sample rate lets it go.
    float GetMinimum() const { return std::min(ToNatural(0.0F), ToNatural(1.0F)); }
    float GetMaximum() const { return std::max(ToNatural(0.0F), ToNatural(1.0F)); }
    // Whether the parameter may change while the engine runs.
    virtual bool IsAutomatable() const { return true; }
    // Whether a change takes effect only when the filter is prepared again, with another latency perhaps.
    virtual bool NeedsPrepare() const { return false; }
    // The filter tells this value; the setters of the filter refuse it.
    virtual bool IsReadOnly() const { return false; }
    // The id of the switch that makes all parameters which name it one value while it is on: whoever changes one of
    // them changes all. The filter itself does not. Empty for a parameter that stands alone.
    virtual std::string GetLinkID() const { return {}; }

    // The id of the curve that the parameter draws with others, see AudioFilter::GetCurves. Empty for none.
    virtual std::string GetCurveID() const { return {}; }

    // The items of a choice; an index that is none gives an empty name.
    virtual int GetItemCount() const { return 0; }
    virtual krocore::string16 GetItemName(int item) const;
    // The item that a stored value stands for (the nearest), and back. 0 for what is no choice.
    virtual int ToItem(float normalised) const;
    virtual float FromItem(int item) const;

    // "-5 dB", "On", "Hann". Numbers are written as the current number locale writes them.
    krocore::string16 ToText(float normalised) const;

    // The normalised value that a typed text means, or nothing when it means none: a number with or without the unit
    // (see krocore::ParseTypedNumber), "on" / "off" / "yes" / "no" / "true" / "false" / "1" / "0" for a switch, an
    // item's name for a choice (case is ignored). "-inf" is the lowest natural value. Not clamped otherwise.
    std::optional<float> FromText(std::u16string_view text) const;

private:
    std::optional<float> SwitchFromText(std::string_view text) const;
    std::optional<float> ChoiceFromText(std::string_view text) const;
    std::optional<float> NumberFromText(std::u16string_view text) const;
};

} // namespace kroaudiofilterhost
