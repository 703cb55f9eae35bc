#pragma once

#include "ControlAdapter.h"

#include "uit/controls/UI_TimecodeDisplay.h"

namespace uit::lio {

// The widget `aud_timecode_display`: a time, its cell in seconds, shown in the host's format.
class TimecodeDisplayAdapter final : public ControlAdapter {
public:
    static const WidgetClass kClass;

    explicit TimecodeDisplayAdapter(const WidgetContext& context);

    void SetAttribute(int row, const orrin::any_regular_t& value) override;

private:
    struct Table;

    TimecodeDisplayAdapter(const WidgetContext& context,
                           const boost::intrusive_ptr<controls::UI_TimecodeDisplay>& display);

    const boost::intrusive_ptr<controls::UI_TimecodeDisplay> fDisplay;
    orrin::any_regular_t fFormat;
    bool fIsDuration = false;
};

} // namespace uit::lio
