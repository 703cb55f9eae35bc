#pragma once

#include "kroui/ui/LocalizedText.h"
#include "kroui/ui/UI_SubView.h"

namespace uit::controls {

// A frame around a group of controls whose top line is interrupted by the group's name. The line stands at half the
// name's height, whether there is a name or not.
class UI_OutlineBoxWithLabel : public kroui::ui::UI_SubView {
public:
    void SetLabel(const krocore::string16& label);
    const krocore::string16& Label() const { return fLabel.Text(); }

    // Room for the label.
    kroui::Size UI_GetNaturalSize() const override;
    void UI_Draw(kroui::limner::Limner* limner) override;
    kroui::ui::AccessibleInfo UI_GetAccessibleInfo() const override;
    const kroui::ui::PropertyTable& UI_GetPropertyTable() const override;
    static const kroui::ui::PropertyTable& PropertiesOfOutlineBoxWithLabel();

    // For property rows.
    void SetLabelReference(std::string_view reference);
    const krocore::string8& LabelReference() const { return fLabel.Reference(); }

protected:
    ~UI_OutlineBoxWithLabel() override = default;

private:
    kroui::Rect LabelRect() const;

    kroui::ui::LocalizedText fLabel;
};

} // namespace uit::controls
