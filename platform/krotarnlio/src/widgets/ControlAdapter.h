#pragma once

#include "kroui/controls/Messages.h"
#include "kroui/controls/UI_ControlView.h"
#include "uit/lio/WidgetAdapter.h"

#include <boost/bind/bind.hpp>

#include <optional>
#include <string_view>
#include <type_traits>

namespace krotarnlio {

// Base of widgets that are one control and nothing else. `Base`: WidgetAdapter, or ContainerAdapter for a control with
// children.
template <class Control, class Base = uit::lio::WidgetAdapter>
class ControlAdapter : public Base {
public:
    boost::intrusive_ptr<kroui::ui::UI_Node> GetNode() override { return fControl; }
    uit::lio::WidgetExtent Measure(std::optional<float> /*width*/) override {
        uit::lio::WidgetExtent extent;
        extent.size = fControl->UI_GetNaturalSize();
        const float baseline = fControl->UI_GetBaseline();
        if (baseline >= 0) extent.baseline = baseline;
        return extent;
    }
    void SetWritable(int /*row*/, bool writable) override {
        if constexpr (std::is_base_of_v<kroui::controls::UI_ControlView, Control>) fControl->SetEnabled(writable);
    }

protected:
    explicit ControlAdapter(const uit::lio::WidgetContext& context) : fControl(new Control), fContext(context) {}

    // Calls a member of the adapter for each change of the user's, as long as the adapter lives.
    template <class Adapter>
    void Listen(void (Adapter::*changed)()) {
        fControl->NotifyWhenChanged(boost::bind(changed, static_cast<Adapter*>(this)));
    }
    // Gives the control a text and has it measured again if it is another one.
    void SetText(std::u16string_view text) {
        if (text == std::u16string_view(fControl->Text())) return;
        fControl->SetText(text);
        fContext.layoutChanged();
    }

    const boost::intrusive_ptr<Control> fControl;
    const uit::lio::WidgetContext& fContext;
};

} // namespace krotarnlio
