#pragma once

#include "kroui/controls/UI_ControlView.h"
#include "uit/TimecodeFormat.h"

namespace uit::controls {

// A time that the user reads, in the host's format. Takes no events.
class UI_TimecodeDisplay : public kroui::controls::UI_ControlView {
public:
    // Seconds. Repaints if the text is another.
    void SetValue(double seconds);
    double GetValue() const { return fValue; }
    void SetTimecodeFormat(const TimecodeSettings& settings);
    const TimecodeSettings& GetTimecodeFormat() const { return fFormat.Settings(); }
    krocore::string16 ShownText() const { return fFormat.Format(fValue); }

    // Room for a day, or for the time shown if that is longer.
    kroui::Size UI_GetNaturalSize() const override;
    float UI_GetBaseline() const override;
    void UI_Draw(kroui::limner::Limner* context) override;
    kroui::ui::AccessibleInfo UI_GetAccessibleInfo() const override;

protected:
    ~UI_TimecodeDisplay() override = default;

private:
    TimecodeFormat fFormat;
    double fValue = 0;
};

} // namespace uit::controls
