#pragma once

#include "workbench/EffectListItem.h"
#include "workbench/ScrollView.h"

#include <vector>

namespace workbench {

// The effects by category, down the left side. A click or, with the focus, the arrow keys choose one.
class EffectList final : public kroui::ui::UI_Node {
public:
    static constexpr float kWidth = 212;

    using Effects = std::vector<const qoc::components::EffectDescription*>;
    using Listener = boost::function<void(const qoc::components::EffectDescription&)>;
    // The listener hears what the user chooses.
    EffectList(const Effects& effects, Listener listener);

    // Marks the effect; tells nobody.
    void Select(const qoc::components::EffectDescription& effect);

    void UI_Draw(kroui::limner::Limner* limner) override;
    void UI_SizeChanged(const kroui::RectT<float>& rect) override;
    bool UI_DoKeyEvent(const kroui::ui::KeyEvent& event) override;
    void UI_FocusChanged(bool hasFocus) override;
    kroui::ui::AccessibleInfo UI_GetAccessibleInfo() const override;

private:
    void AddCategory(qoc::components::EffectCategory category, const Effects& effects, float& top);
    void Choose(std::size_t index);
    std::size_t SelectedIndex() const;
    void OnItem(kroui::controls::UI_ControlChangedMessage* message);

    Listener fListener;
    boost::intrusive_ptr<ScrollView> fScroll;
    boost::intrusive_ptr<kroui::ui::UI_Node> fColumn;
    std::vector<boost::intrusive_ptr<EffectListItem>> fItems;
};

} // namespace workbench
