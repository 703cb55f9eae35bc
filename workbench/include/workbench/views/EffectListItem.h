#pragma once

#include "kroui/controls/UI_ControlView.h"
#include "qoc/components/EffectCatalogue.h"

namespace workbench {

// One line of the effect list. A click reports as a committed change.
class EffectListItem final : public kroui::controls::UI_ControlView {
public:
    static constexpr float kHeight = 22;

    // The description is static.
    explicit EffectListItem(const qoc::components::EffectDescription& effect);

    const qoc::components::EffectDescription& Effect() const { return fEffect; }
    // Shown behind the name: by what a search has found it.
    void SetFoundBy(std::u16string_view text);
    void Select(bool selected) { SetDownState(selected); }
    bool IsSelected() const { return DownState(); }

    void UI_Draw(kroui::limner::Limner* limner) override;
    bool UI_DoMouseEvent(kroui::ui::UI_Node* node, const kroui::ui::MouseEvent& event) override;
    kroui::ui::AccessibleInfo UI_GetAccessibleInfo() const override;

private:
    const qoc::components::EffectDescription& fEffect;
    krocore::string16 fName;
    krocore::string16 fFoundBy;
};

} // namespace workbench
