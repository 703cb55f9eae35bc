#pragma once

#include "kroui/controls/UI_Button.h"

namespace workbench {

// A round button of the transport, with a sign in place of a text.
class TransportButton final : public kroui::controls::UI_Button {
public:
    enum class Sign : std::uint8_t { kPlay, kPause, kStop, kLoop };

    explicit TransportButton(Sign sign);

    void SetSign(Sign sign);

    void UI_Draw(kroui::limner::Limner* limner) override;

private:
    Sign fSign;
};

} // namespace workbench
