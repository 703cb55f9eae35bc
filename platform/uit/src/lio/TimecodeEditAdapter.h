#pragma once

#include "NumberAdapter.h"

#include "uit/controls/UI_TimecodeEdit.h"

namespace uit::lio {

// The widget `aud_timecode_edit`: a time, its cell in seconds, edited in the host's format.
class TimecodeEditAdapter final : public NumberAdapter {
public:
    static const WidgetClass kClass;

    explicit TimecodeEditAdapter(const WidgetContext& context);

    void SetAttribute(int row, const orrin::any_regular_t& value) override;

private:
    struct Table;

    TimecodeEditAdapter(const WidgetContext& context, const boost::intrusive_ptr<controls::UI_TimecodeEdit>& edit);

    const boost::intrusive_ptr<controls::UI_TimecodeEdit> fEdit;
    orrin::any_regular_t fFormat;
    bool fIsDuration = false;
};

} // namespace uit::lio
