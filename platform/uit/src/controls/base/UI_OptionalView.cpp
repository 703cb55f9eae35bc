#include "uit/controls/UI_OptionalView.h"

#include "kroui/ui/AdapterRegistry.h"

namespace uit::controls {

using kroui::ui::MakeProperty;
using kroui::ui::PropertyType;

namespace {

const kroui::ui::AdapterRegistrar<UI_OptionalView> sRegistrar("uit::controls::UI_OptionalView");

} // namespace

void UI_OptionalView::SetActiveIndex(int index) {
    fActiveIndex = index;
    ShowActiveChild();
}

const kroui::ui::PropertyTable& UI_OptionalView::UI_GetPropertyTable() const {
    return PropertiesOfOptionalView();
}

const kroui::ui::PropertyTable& UI_OptionalView::PropertiesOfOptionalView() {
    static constexpr kroui::ui::PropertyRow kRows[] = {
        MakeProperty<PropertyType::kInt, &UI_OptionalView::ActiveIndex, &UI_OptionalView::SetActiveIndex>(
            "activeIndex"),
    };
    static const kroui::ui::PropertyTable sTable{"uit::controls::UI_OptionalView", kRows, &PropertiesOfSubView(), true};
    return sTable;
}

void UI_OptionalView::ChildrenChanged() {
    UI_SubView::ChildrenChanged();
    ShowActiveChild();
}

void UI_OptionalView::ShowActiveChild() {
    for (std::size_t i = 0; i < ChildCount(); ++i) {
        Child(i)->UI_Show(std::cmp_equal(i, fActiveIndex));
    }
}

} // namespace uit::controls
