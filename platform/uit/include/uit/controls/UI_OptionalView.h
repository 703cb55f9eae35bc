#pragma once

#include "kroui/ui/UI_SubView.h"

namespace uit::controls {

// Shows one of its children and hides the others.
class UI_OptionalView : public kroui::ui::UI_SubView {
public:
    // Which child is shown, counted from 0; an index that no child has shows none. The index stays as children come and
    // go.
    void SetActiveIndex(int index);
    int ActiveIndex() const { return fActiveIndex; }
    void ShowChild(int index) { SetActiveIndex(index); }

    const kroui::ui::PropertyTable& UI_GetPropertyTable() const override;
    static const kroui::ui::PropertyTable& PropertiesOfOptionalView();

protected:
    ~UI_OptionalView() override = default;

    void ChildrenChanged() override;

private:
    void ShowActiveChild();

    int fActiveIndex = 0;
};

} // namespace uit::controls
