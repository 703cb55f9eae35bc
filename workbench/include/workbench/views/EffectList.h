#pragma once

#include "kroui/controls/ScrollView.h"
#include "kroui/controls/UI_StaticText.h"
#include "workbench/views/EffectListItem.h"
#include "workbench/views/EffectSearch.h"

#include <vector>

namespace workbench {

// The effects by category, or those of them that match a search. A click or, with the focus, the arrow keys choose one;
// Enter chooses the first if the chosen one is not shown.
class EffectList final : public kroui::ui::UI_Node {
public:
    static constexpr float kWidth = 212;

    using Effects = std::vector<const qoc::components::EffectDescription*>;
    using Listener = boost::function<void(const qoc::components::EffectDescription&)>;
    // The listener hears what the user chooses.
    EffectList(const Effects& effects, EffectSearch search, Listener listener);

    // Marks the effect; tells nobody.
    void Select(const qoc::components::EffectDescription& effect);
    // Shows the effects that the search finds by the text.
    void Filter(std::u16string_view text);
    // The edge towards the rest of the window.
    static void DrawRightLine(const kroui::ui::UI_Node& node, kroui::limner::Limner& limner);

    void UI_Draw(kroui::limner::Limner* limner) override;
    void UI_SizeChanged(const kroui::RectT<float>& rect) override;
    bool UI_DoKeyEvent(const kroui::ui::KeyEvent& event) override;
    void UI_FocusChanged(bool hasFocus) override;
    kroui::ui::AccessibleInfo UI_GetAccessibleInfo() const override;

private:
    using Item = boost::intrusive_ptr<EffectListItem>;
    struct Category {
        boost::intrusive_ptr<kroui::controls::UI_StaticText> heading;
        std::vector<Item> items;
    };

    void AddCategory(qoc::components::EffectCategory category, const Effects& effects);
    void Arrange();
    void ArrangeCategory(const Category& category, float& top);
    void RevealSelected();
    std::vector<EffectListItem*> ShownItems() const;
    bool ChooseByKey(kroui::ui::Key key);
    void Choose(const EffectListItem& item);
    void OnItem(kroui::controls::UI_ControlChangedMessage* message);

    EffectSearch fSearch;
    bool fIsFiltered = false;
    Listener fListener;
    boost::intrusive_ptr<kroui::controls::ScrollView> fScroll;
    boost::intrusive_ptr<kroui::ui::UI_Node> fColumn;
    boost::intrusive_ptr<kroui::controls::UI_StaticText> fNothing; // shown if nothing matches
    std::vector<Category> fCategories;
};

} // namespace workbench
