#include "LioRoot.h"

namespace krotarnlio {

using kroui::ui::UI_Node;
using orrin::any_regular_t;
using orrin::name_t;

namespace {

// Holds the widgets of a layout.
class LioTopNode final : public kroui::ui::UI_SubView {
public:
    explicit LioTopNode(const kroui::limner::SupplierInterface* supplier) : fSupplier(supplier) {
        SetLayoutChildren(false);
    }
    const kroui::limner::SupplierInterface* UI_GetDrawSupplier() const override {
        return fSupplier ? fSupplier : UI_SubView::UI_GetDrawSupplier();
    }

private:
    const kroui::limner::SupplierInterface* fSupplier;
};

} // namespace

LioRoot::LioRoot(const LioScript& script, std::shared_ptr<orrin::sheet_t> sheet, const Making& making)
    : fTop(new LioTopNode(making.supplier)), fSheet(std::move(sheet)), fSelf(std::make_shared<LioRoot*>(this)) {
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
}

LioRoot::~LioRoot() {
    *fSelf = nullptr;
}

void LioRoot::Layout() {
    fLayoutIsDue = false;
    if (!fLayout) return;
    const kroui::Size size = fLayout->Place();
    const kroui::Rect frame = fTop->UI_GetFrame();
    if (size == kroui::Size{frame.width, frame.height}) return;
    fTop->UI_SetFrame({frame.left, frame.top, size.width, size.height});
    RaiseSizeChanged();
}

void LioRoot::Refresh() {
    if (fUpdates == 0 && fLayoutIsDue) Layout();
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

} // namespace krotarnlio
