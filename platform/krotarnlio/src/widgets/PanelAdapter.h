#pragma once

#include "../ContainerAdapter.h"

#include "krocore/String.h"
#include "kroui/ui/UI_SubView.h"

namespace krotarnlio {

// A page of controls that keeps its room while it is hidden, so that another one can stand in the same place: "panel".
// Shown while its cell has its value and, among the pages of a row of tabs, while its tab is chosen.
//   name      of the page, for those who can't see it
//   value     what the cell is compared with, true if not given; also which of the tabs is the page's own
//   value_on  another word for value
//   bind      the cell; without one the page is always shown
class PanelAdapter final : public ContainerAdapter {
public:
    explicit PanelAdapter(const uit::lio::WidgetContext& context);
    ~PanelAdapter() override;
    static std::span<const uit::lio::AttributeRow> Rows();

    void SetAttribute(int row, const orrin::any_regular_t& value) override;
    boost::intrusive_ptr<kroui::ui::UI_Node> GetNode() override;
    bool ShowsChildren() const override { return fIsChosen && (!fIsBound || fCell == fValue); }
    bool KeepsRoom() const override { return true; }

    // The value that the script gives; none if it gives none.
    const orrin::any_regular_t* Value() const { return fHasValue ? &fValue : nullptr; }
    // For the row of tabs around it.
    void SetChosen(bool chosen);

private:
    class Page;

    const uit::lio::WidgetContext& fContext;
    boost::intrusive_ptr<Page> fPage;
    orrin::any_regular_t fValue{true};
    orrin::any_regular_t fCell;
    bool fHasValue = false;
    bool fIsBound = false;
    bool fIsChosen = true;
};

} // namespace krotarnlio
