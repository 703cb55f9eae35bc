#pragma once

#include "kroui/controls/UI_HotTextNumber.h"
#include "uit/TimecodeFormat.h"

namespace uit::controls {

// A time that the user drags, steps or types in the host's format; the value is in seconds. Steps are the format's
// units (frames, samples, ticks; tenths of a second in the decimal format). Within 0 and a day at first.
class UI_TimecodeEdit : public kroui::controls::UI_HotTextNumber {
public:
    UI_TimecodeEdit();

    void SetTimecodeFormat(const TimecodeSettings& settings);
    const TimecodeSettings& GetTimecodeFormat() const { return fFormat.Settings(); }

protected:
    ~UI_TimecodeEdit() override = default;

    krocore::string16 ShownText() const override { return fFormat.Format(GetValue()); }
    krocore::string16 EntryText() const override { return ShownText(); }
    std::optional<double> ReadEntry(std::u16string_view typed) const override { return fFormat.Parse(typed); }
    float NaturalTextWidth() const override;
    double GestureIncrement() const override { return fFormat.Increment(); }
    // Steps are counted from where they begin, so that places in bars keep their offset.
    double GestureResolution() const override { return 0; }
    double GestureCommandIncrement() const override;

private:
    TimecodeFormat fFormat;
};

} // namespace uit::controls
