#pragma once

#include "krotarnlio/UI_KROLioRoot.h"
#include "krotarnlio/UI_Lio.h"
#include "kroui/limner/CairoSupplier.h"
#include "kroui/ui/HeadlessWindow.h"
#include "kroui/ui/UI_SubView.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <map>
#include <sstream>
#include <string>

namespace krotarnlio::test {

// A widget of a given size, without a look: box(width: 20, height: 10, colon: 5, baseline: 8, value: @cell, bind:
// @cell). It shows the text behind "value" and "bind" and keeps no number below 0.
class BoxWidget final : public uit::lio::WidgetAdapter {
public:
    explicit BoxWidget(const uit::lio::WidgetContext& context) : fContext(context) { ++sAlive; }
    ~BoxWidget() override { --sAlive; }

    static const uit::lio::WidgetClass* Find(std::string_view name) {
        static constexpr uit::lio::AttributeRow kRows[] = {
            {"width"}, {"height"}, {"colon"}, {"baseline"}, {"value", uit::lio::AttributeKind::kFollows}};
        static constexpr uit::lio::WidgetClass kClass{
            "box", kRows, [](const uit::lio::WidgetContext& context) -> std::unique_ptr<uit::lio::WidgetAdapter> {
                return std::make_unique<BoxWidget>(context);
            }};
        return name == "box" ? &kClass : nullptr;
    }

    void SetAttribute(int row, const orrin::any_regular_t& value) override {
        const auto number = static_cast<float>(value.get<double>());
        if (number < 0) throw std::invalid_argument("needs a size of 0 or more");
        switch (row) {
        case 0:
        case 4: fExtent.size.width = number; break;
        case 1: fExtent.size.height = number; break;
        case 2: fExtent.colon = number; break;
        default: fExtent.baseline = number; break;
        }
        fContext.layoutChanged();
    }
    boost::intrusive_ptr<kroui::ui::UI_Node> GetNode() override { return fNode; }
    uit::lio::WidgetExtent Measure(std::optional<float> /*width*/) override { return fExtent; }

    static inline int sAlive = 0;

private:
    const uit::lio::WidgetContext& fContext;
    boost::intrusive_ptr<kroui::ui::UI_Node> fNode{new kroui::ui::UI_SubView};
    uit::lio::WidgetExtent fExtent;
};

// A sheet and the widgets of a layout over it, in a window.
class LioTest : public testing::Test {
protected:
    ~LioTest() override { Release(); }

    // Throws orrin::error_t.
    void Load(const std::string& sheet, const std::string& layout) {
        std::istringstream sheetStream(sheet);
        UI_Lio(nullptr, nullptr).ParseTarnScript(sheetStream, fSheet, "sheet");
        std::istringstream layoutStream(layout);
        UI_Lio lio(&fSupplier, nullptr);
        lio.SetClientWidgetAdpaterFactory(&BoxWidget::Find);
        lio.GetLayoutEngineVM().set_variable_lookup([](orrin::name_t name) -> orrin::any_regular_t {
            if (name.text().starts_with("align_") || name.text().starts_with("place_")) return name;
            throw std::runtime_error("Variable lookup failed");
        });
        lio.SetResourceProvider([this](orrin::name_t name) {
            const auto found = fResources.find(std::string(name.text()));
            return found != fResources.end() ? found->second : std::vector<std::uint8_t>();
        });
        fRoot = lio.ParseLioScript(layoutStream, fSheet, "layout");
        fRoot->Layout();
        fRoot->GetSizeChangedSignal().connect([this] { ++fResizes; });
        fTop = fRoot->GetTopNode();
        fWindow.Window().SetContent(fTop);
    }
    // The widgets that stand in view subview(margin: 0).
    void LoadWidgets(const std::string& cells, const std::string& widgets) {
        Load("sheet t {" + cells + "}", "layout t { view subview(margin: 0) {" + widgets + "} }");
    }
    void Release() { UI_Lio::Release(std::exchange(fRoot, nullptr)); }

    // As a host does it.
    void Set(std::string_view cell, const orrin::any_regular_t& value) {
        fSheet->set(orrin::name_t(cell), value);
        fSheet->update();
        if (fRoot) fRoot->Refresh();
    }
    const orrin::any_regular_t& Get(std::string_view cell) const { return fSheet->get(orrin::name_t(cell)); }

    // Of the widget with the identifier.
    kroui::ui::UI_Node& Node(std::string_view identifier) const {
        kroui::ui::UI_Node* const node = fRoot->GetViewHolder().GetControl(identifier);
        if (!node) throw std::invalid_argument("no widget " + std::string(identifier));
        return *node;
    }
    template <class Control>
    Control& The(std::string_view identifier) const {
        return dynamic_cast<Control&>(Node(identifier));
    }
    kroui::Rect FrameInWindow(std::string_view identifier) const {
        const kroui::Point origin = Node(identifier).UI_LocalToWindow({});
        return Node(identifier).UI_GetLocalRect().Offset(origin.x, origin.y);
    }
    bool IsShown(std::string_view identifier) const { return Node(identifier).UI_IsVisibleInWindow(); }
    std::u16string ValueOf(std::string_view identifier) const {
        return Node(identifier).UI_GetAccessibleInfo().value.c_str();
    }
    void Click(std::string_view identifier) { fWindow.Click(kroui::ui::HeadlessWindow::CentreOf(Node(identifier))); }
    // How often the size has changed since it was asked the last time.
    int Resizes() { return std::exchange(fResizes, 0); }
    kroui::Size WholeSize() const { return {fTop->UI_GetFrame().width, fTop->UI_GetFrame().height}; }

    kroui::limner::CairoSupplier fSupplier;
    kroui::ui::HeadlessWindow fWindow{fSupplier, {600, 400}};
    std::shared_ptr<orrin::sheet_t> fSheet = std::make_shared<orrin::sheet_t>();
    std::map<std::string, std::vector<std::uint8_t>> fResources;
    UI_KROLioRoot* fRoot = nullptr;
    boost::intrusive_ptr<kroui::ui::UI_Node> fTop;

private:
    int fResizes = 0;
};

} // namespace krotarnlio::test
