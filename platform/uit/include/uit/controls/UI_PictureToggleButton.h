#pragma once

#include "kroui/controls/ImageSlot.h"
#include "kroui/controls/UI_Button.h"

namespace uit::controls {

// A button that latches and shows one picture while it is on and another while it is off. The ground
// shows what the pointer and the keys do, and the state only where there is no picture for off.
class UI_PictureToggleButton : public kroui::controls::UI_Button {
public:
    UI_PictureToggleButton();

    // Finds the pictures by name.
    void SetImageSupplier(const kroui::controls::ImageSupplier& supplier);
    void SetImageNames(std::string_view on, std::string_view off);
    // The size that the pictures are drawn at, in view units; 0: their own.
    void SetPictureSize(kroui::Size size);

    kroui::Size UI_GetNaturalSize() const override;
    void UI_Draw(kroui::limner::Limner* context) override;
    void UI_NodeChanged(NodeChange change) override;

protected:
    ~UI_PictureToggleButton() override = default;

private:
    kroui::Size PictureSize(float scale) const;

    kroui::controls::ImageSlot fOn;
    kroui::controls::ImageSlot fOff;
    kroui::Size fSize;
};

} // namespace uit::controls
