#pragma once

#include "workbench/views/EffectList.h"
#include "workbench/views/SearchField.h"

namespace workbench {

// The left side of the window: the effects, and a field over them that leaves only those that match. While the field
// has the focus, the arrow keys and Enter choose in the list.
class EffectBrowser final : public kroui::ui::UI_Node {
public:
    static constexpr float kWidth = EffectList::kWidth;

    EffectBrowser(const EffectList::Effects& effects, EffectSearch search, EffectList::Listener listener);

    void Select(const qoc::components::EffectDescription& effect) { fList->Select(effect); }
    // Puts the focus into the field, with all of its text selected.
    void BeginSearch();

    void UI_Draw(kroui::limner::Limner* limner) override;
    void UI_SizeChanged(const kroui::RectT<float>& rect) override;
    bool UI_DoKeyEvent(const kroui::ui::KeyEvent& event) override;

private:
    boost::intrusive_ptr<SearchField> fSearch;
    boost::intrusive_ptr<EffectList> fList;
};

} // namespace workbench
