#include "workbench/views/EffectBrowser.h"

#include "krocore/Localizer.h"

namespace workbench {

namespace {

constexpr float kFieldMargin = 12;
constexpr float kFieldHeight = 24;

} // namespace

EffectBrowser::EffectBrowser(const EffectList::Effects& effects, EffectSearch search, EffectList::Listener listener)
    : fSearch(new SearchField([this] { fList->Filter(fSearch->GetText()); })),
      fList(new EffectList(effects, std::move(search), std::move(listener))) {
    UI_SetID("browser");
    fSearch->UI_SetID("search");
    fSearch->SetPlaceholder(krocore::Localize("$$$/Workbench/Search=Search effects"));
    fSearch->UI_SetTooltip(krocore::Localize("$$$/Workbench/SearchTip=A name, a category, a preset or a plain word "
                                             "such as \"hum\". Arrows and Enter choose, "
                                             "Escape clears (Ctrl+F)"));
    ChildPushBack(fSearch);
    ChildPushBack(fList);
}

void EffectBrowser::BeginSearch() {
    fSearch->UI_TakeFocus();
    fSearch->SelectAll();
}

void EffectBrowser::UI_Draw(kroui::limner::Limner* limner) {
    limner->FillRect(UI_GetLocalRect(), GetColor(kroui::ui::kColorPanel));
    EffectList::DrawRightLine(*this, *limner);
}

void EffectBrowser::UI_SizeChanged(const kroui::RectT<float>& rect) {
    constexpr float kListTop = kFieldHeight + kFieldMargin;
    fSearch->UI_SetFrame({kFieldMargin, kFieldMargin, rect.width - 2 * kFieldMargin, kFieldHeight});
    fList->UI_SetFrame({0, kListTop, rect.width, rect.height - kListTop});
}

bool EffectBrowser::UI_DoKeyEvent(const kroui::ui::KeyEvent& event) {
    return fSearch->UI_HasFocus() && fList->UI_DoKeyEvent(event);
}

} // namespace workbench
