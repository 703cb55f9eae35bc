#pragma once

#include "LioBuilder.h"
#include "LioLayout.h"

#include "krotarnlio/UI_KROLioRoot.h"
#include "kroui/ui/UI_SubView.h"

namespace krotarnlio {

// The widgets of a layout script at work.
class LioRoot final : public UI_KROLioRoot {
public:
    // What the widgets are made with; see UI_Lio.
    struct Making {
        const kroui::limner::SupplierInterface* supplier = nullptr;
        orrin::virtual_machine_t* machine = nullptr;
        uit::lio::AdapterFactoryProc clientWidgets;
        boost::function<kroui::limner::ImagePtr(std::string_view, float)> image;
    };

    // Throws orrin::error_t.
    LioRoot(const LioScript& script, std::shared_ptr<orrin::sheet_t> sheet, const Making& making);
    ~LioRoot() override;

    kroui::ui::UI_Node* GetTopNode() const override;
    UI_LioViewHolder& GetViewHolder() override { return fHolder; }
    void Layout() override;
    void Refresh() override;
    void TakeDefaults() override;

private:
    class TopNode;
    class UpdateScope;

    void Write(orrin::name_t cell, const orrin::any_regular_t& value);
    void AddNodes(const LioWidget& widget, kroui::ui::UI_Node& parent);
    void TakeDefaults(const LioWidget& widget);
    // Frames the widgets whose cells make an invariant false.
    void MarkFaults();
    void CollectFaults(const LioWidget& widget, const orrin::vector<orrin::name_t>& cells,
                       std::vector<kroui::Rect>& frames) const;

    boost::intrusive_ptr<TopNode> fTop;
    UI_LioViewHolder fHolder;
    std::shared_ptr<orrin::sheet_t> fSheet;
    uit::lio::WidgetContext fContext;
    std::unique_ptr<LioWidget> fWidgets; // null for an empty script
    std::unique_ptr<LioLayout> fLayout;
    LioBuilder::Connections fConnections;
    std::shared_ptr<LioRoot*> fSelf; // null behind it once the root has gone
    int fUpdates = 0;                // under way, nested
    bool fLayoutIsDue = true;
    bool fHasInvariants = false;
};

} // namespace krotarnlio
