#pragma once

#include "ControlAdapter.h"

#include "kroui/controls/Messages.h"
#include "uit/controls/UI_PictureToggleButton.h"

namespace uit::lio {

// The widget `aud_picture_toggle_button`: a button that shows one picture while its cell, a bool, is true and another
// while it is false.
class PictureToggleAdapter final : public ControlAdapter {
public:
    static const WidgetClass kClass;

    explicit PictureToggleAdapter(const WidgetContext& context);

    void SetAttribute(int row, const orrin::any_regular_t& value) override;

private:
    struct Table;

    PictureToggleAdapter(const WidgetContext& context,
                         const boost::intrusive_ptr<controls::UI_PictureToggleButton>& button);
    void UpdatePicture();
    void OnChange(kroui::controls::UI_ControlChangedMessage* message);

    const boost::intrusive_ptr<controls::UI_PictureToggleButton> fButton;
    std::string fOnImage;
    std::string fOffImage;
    kroui::Size fSize;
};

} // namespace uit::lio
