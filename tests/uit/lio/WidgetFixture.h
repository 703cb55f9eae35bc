#pragma once

#include "kroui/limner/CairoSupplier.h"
#include "kroui/limner/RecordingLimner.h"
#include "kroui/ui/HeadlessWindow.h"
#include "kroui/ui/UI_SubView.h"
#include "orrin/dictionary.h"
#include "uit/lio/WidgetAdapter.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace uit::lio {

using orrin::any_regular_t;
using orrin::array_t;
using orrin::dictionary_t;
using orrin::name_t;

using Attributes = std::vector<std::pair<std::string, any_regular_t>>;

inline dictionary_t Dictionary(const Attributes& entries) {
    dictionary_t dictionary;
    for (const auto& [key, value] : entries)
        dictionary[name_t(key)] = value;
    return dictionary;
}

// Those of `more`, and those of `base` that it does not name.
inline Attributes Merged(const Attributes& base, const Attributes& more) {
    Attributes merged = more;
    for (const auto& given : base)
        if (std::ranges::find(more, given.first, &Attributes::value_type::first) == more.end()) merged.push_back(given);
    return merged;
}

inline any_regular_t Limits(double low, double high) {
    return Dictionary({{"min_value", low}, {"max_value", high}});
}

// A widget in a window, made and fed as the engine of the layout scripts does it. Each bound attribute has a cell of
// its own, which tells the widget of every value that it takes.
class WidgetTest : public testing::Test {
protected:
    WidgetTest() {
        root->UI_SetFrame({0, 0, 800, 500});
        window.Window().SetContent(root);
        context.supplier = &supplier;
        context.layoutChanged = [this] { ++layoutChanges; };
    }

    // Makes the widget and gives it the room that it needs; one that was there before goes.
    void Make(std::string_view name, const Attributes& attributes) {
        if (adapter) root->ChildRemove(Node());
        writes.clear();
        widgetClass = GetAdapterFactoryProc()(name);
        ASSERT_TRUE(widgetClass) << name;
        adapter = widgetClass->create(context);
        adapter->SetWriter([this](int row, const any_regular_t& value) { Written(row, value); });
        for (std::size_t row = 0; row < widgetClass->attributes.size(); ++row)
            for (const auto& [attribute, value] : attributes)
                if (attribute == widgetClass->attributes[row].name) adapter->SetAttribute(static_cast<int>(row), value);
        for (const auto& [attribute, value] : attributes)
            EXPECT_GE(Row(attribute), 0) << name << " has no " << attribute;
        adapter->Complete();
        root->ChildPushBack(adapter->GetNode());
        Place();
        layoutChanges = 0;
    }
    void Place() {
        const kroui::Size size = adapter->Measure({}).size;
        adapter->Place({20, 20, size.width, size.height});
        window.Paint();
    }
    int Row(std::string_view attribute) const {
        for (std::size_t row = 0; row < widgetClass->attributes.size(); ++row)
            if (widgetClass->attributes[row].name == attribute) return static_cast<int>(row);
        return -1;
    }
    void Set(std::string_view attribute, const any_regular_t& value) { adapter->SetAttribute(Row(attribute), value); }
    // The phrase with which a value is refused; empty if it is taken.
    std::string Refusal(std::string_view attribute, const any_regular_t& value) {
        try {
            Set(attribute, value);
        } catch (const std::exception& refusal) {
            return refusal.what();
        }
        return {};
    }
    kroui::ui::UI_Node* Node() const { return adapter->GetNode().get(); }
    // What it takes and what it draws.
    std::vector<std::string> Look() const {
        kroui::limner::RecordingLimner limner;
        Node()->UI_DrawTree(&limner);
        const WidgetExtent extent = adapter->Measure({});
        std::vector<std::string> look = limner.Operations();
        for (const float number :
             {extent.size.width, extent.size.height, extent.colon.value_or(-1), extent.baseline.value_or(-1)})
            look.push_back(std::to_string(number));
        return look;
    }
    // The texts among what it draws, without fonts and places.
    std::vector<std::string> Texts() const {
        std::vector<std::string> texts;
        for (const std::string& operation : Look())
            if (operation.starts_with("Text \"")) texts.push_back(operation.substr(6, operation.find('"', 6) - 6));
        return texts;
    }
    std::vector<double> Numbers(std::string_view attribute) const {
        std::vector<double> numbers;
        for (const auto& [written, value] : writes)
            if (written == attribute) numbers.push_back(value.get<double>());
        return numbers;
    }

    kroui::limner::CairoSupplier supplier;
    kroui::ui::HeadlessWindow window{supplier, {800, 500}};
    boost::intrusive_ptr<kroui::ui::UI_SubView> root{new kroui::ui::UI_SubView};
    WidgetContext context;
    const WidgetClass* widgetClass = nullptr;
    std::unique_ptr<WidgetAdapter> adapter;
    std::vector<std::pair<std::string, any_regular_t>> writes;
    // What the cell holds when a value has been written; that value if there is none.
    std::function<any_regular_t(const any_regular_t&)> cell;
    int layoutChanges = 0;

private:
    void Written(int row, const any_regular_t& value) {
        writes.emplace_back(widgetClass->attributes[static_cast<std::size_t>(row)].name, value);
        const any_regular_t held = cell ? cell(value) : value;
        if (adapter) adapter->SetAttribute(row, held);
    }
};

} // namespace uit::lio
