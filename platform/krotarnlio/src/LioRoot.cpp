#include "LioRoot.h"

#include <algorithm>
#include <utility>

namespace krotarnlio {

using kroui::ui::UI_Node;
using orrin::any_regular_t;
using orrin::name_t;

// Holds the widgets of a layout.
class LioRoot::TopNode final : public kroui::ui::UI_SubView {
public:
    explicit TopNode(const kroui::limner::SupplierInterface* supplier) : fSupplier(supplier) {
        SetLayoutChildren(false);
    }
    void SetFaults(std::vector<kroui::Rect> frames) {
        if (frames == fFaults) return;
        fFaults = std::move(frames);
        UI_Invalidate();
    }
    const kroui::limner::SupplierInterface* UI_GetDrawSupplier() const override {
        return fSupplier ? fSupplier : UI_SubView::UI_GetDrawSupplier();
    }
    // The ground between the widgets is that of whoever shows them.
    UI_Node* UI_HitTest(kroui::Point point) override {
        UI_Node* const hit = UI_SubView::UI_HitTest(point);
        return hit != this ? hit : nullptr;
    }

    void UI_DrawOver(kroui::limner::Limner* limner) override {
        constexpr float kRadius = 4;
        constexpr float kReach = 2; // around the widget
        for (const kroui::Rect& frame : fFaults)
            limner->FrameRoundRect(frame.Inset(-kReach, -kReach), kRadius, GetColor(kroui::ui::kColorWarning), 1);
        UI_SubView::UI_DrawOver(limner);
    }

private:
    const kroui::limner::SupplierInterface* fSupplier;
    std::vector<kroui::Rect> fFaults; // of widgets
};

LioRoot::LioRoot(const LioScript& script, std::shared_ptr<orrin::sheet_t> sheet, const Making& making)
    : fTop(new TopNode(making.supplier)), fSheet(std::move(sheet)), fSelf(std::make_shared<LioRoot*>(this)) {
    if (script.name.empty()) return;
    fContext = {making.supplier, making.image, [this] { fLayoutIsDue = true; }};
    LioBuilder::Environment environment;
    environment.machine = making.machine;
    environment.sheet = fSheet.get();
    environment.clientWidgets = making.clientWidgets;
    environment.context = &fContext;
    environment.write = [this](name_t cell, const any_regular_t& value) { Write(cell, value); };
    fWidgets = LioBuilder(script, std::move(environment), fHolder, fConnections).Build();
    AddNodes(*fWidgets, *fTop);
    fLayout = std::make_unique<LioLayout>(*fWidgets);
    fHasInvariants = std::ranges::any_of(
        fSheet->cells(), [](const orrin::cell_info_t& cell) { return cell.kind == orrin::cell_kind_t::invariant; });
}

LioRoot::~LioRoot() {
    *fSelf = nullptr;
}

UI_Node* LioRoot::GetTopNode() const {
    return fTop.get();
}

void LioRoot::Layout() {
    fLayoutIsDue = false;
    if (!fLayout) return;
    const kroui::Size size = fLayout->Place();
    MarkFaults();
    const kroui::Rect frame = fTop->UI_GetFrame();
    if (size == kroui::Size{frame.width, frame.height}) return;
    fTop->UI_SetFrame({frame.left, frame.top, size.width, size.height});
    RaiseSizeChanged();
}

void LioRoot::Refresh() {
    if (fUpdates != 0) return;
    if (fLayoutIsDue)
        Layout();
    else
        MarkFaults();
}

void LioRoot::TakeDefaults() {
    if (fWidgets) TakeDefaults(*fWidgets);
}

void LioRoot::TakeDefaults(const LioWidget& widget) {
    for (const auto& [row, cell] : widget.cells)
        widget.adapter->SetDefault(row, fSheet->get(cell));
    for (const auto& child : widget.children)
        TakeDefaults(*child);
}

// Counts the updates under way in a root that may go while one runs.
class LioRoot::UpdateScope {
public:
    explicit UpdateScope(LioRoot& root) : fRoot(root.fSelf) { ++root.fUpdates; }
    ~UpdateScope() {
        if (*fRoot) --(*fRoot)->fUpdates;
    }
    UpdateScope(const UpdateScope&) = delete;
    UpdateScope& operator=(const UpdateScope&) = delete;

private:
    const std::shared_ptr<LioRoot*> fRoot;
};

// Who listens to the sheet may do away with the panel, and so with this root and the sheet.
void LioRoot::Write(name_t cell, const any_regular_t& value) {
    const std::shared_ptr<LioRoot*> self = fSelf;
    const std::shared_ptr<orrin::sheet_t> sheet = fSheet;
    if (!cell.empty()) {
        const UpdateScope scope(*this);
        sheet->set(cell, value);
        sheet->update();
    }
    if (*self) Refresh();
}

void LioRoot::AddNodes(const LioWidget& widget, UI_Node& parent) {
    const boost::intrusive_ptr<UI_Node> node = widget.adapter->GetNode();
    if (node) parent.ChildPushBack(node);
    UI_Node& holder = node && widget.HoldsChildNodes() ? *node : parent;
    for (const auto& child : widget.children)
        AddNodes(*child, holder);
}

void LioRoot::MarkFaults() {
    if (!fHasInvariants) return;
    std::vector<kroui::Rect> frames;
    if (const auto cells = fSheet->at_fault(); !cells.empty()) CollectFaults(*fWidgets, cells, frames);
    fTop->SetFaults(std::move(frames));
}

void LioRoot::CollectFaults(const LioWidget& widget, const orrin::vector<name_t>& cells,
                            std::vector<kroui::Rect>& frames) const {
    const auto isAtFault = [&cells](const auto& bound) {
        return std::ranges::find(cells, bound.second) != cells.end();
    };
    const auto node = widget.adapter->GetNode();
    if (node && node->UI_IsVisible() && std::ranges::any_of(widget.cells, isAtFault))
        frames.push_back(fLayout->FrameOf(widget));
    for (const auto& child : widget.children)
        CollectFaults(*child, cells, frames);
}

} // namespace krotarnlio
