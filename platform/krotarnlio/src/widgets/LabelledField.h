#pragma once

#include "kroui/controls/UI_ControlView.h"

namespace krotarnlio {

// A control with its label in front. Disabled, both are.
class LabelledField final : public kroui::controls::UI_ControlView {
public:
    LabelledField(krocore::string16 label, boost::intrusive_ptr<kroui::controls::UI_ControlView> field);

    // From the left edge to where the label ends.
    float LabelWidth() const;
    const krocore::string16& Text() const { return fLabel; }
    void SetText(krocore::string16 label);

    kroui::Size UI_GetNaturalSize() const override;
    float UI_GetBaseline() const override;
    void UI_Draw(kroui::limner::Limner* context) override;
    void UI_SizeChanged(const kroui::RectT<float>& rect) override;
    kroui::ui::AccessibleInfo UI_GetAccessibleInfo() const override;

protected:
    ~LabelledField() override = default;

    void ControlStateChanged() override;

private:
    float FieldLeft() const;
    void PlaceField();

    krocore::string16 fLabel;
    const boost::intrusive_ptr<kroui::controls::UI_ControlView> fField;
};

} // namespace krotarnlio
