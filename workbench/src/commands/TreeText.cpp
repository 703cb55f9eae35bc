#include "workbench/commands/TreeText.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

namespace workbench {

using kroui::ui::UI_Node;

namespace {

const char* NameOf(kroui::ui::Role role) {
    static constexpr std::array kNames = {
        "none",  "group", "text",  "image", "button",    "checkbox", "radio",     "popup",     "slider", "number",
        "field", "graph", "meter", "menu",  "menu-item", "list",     "list-item", "tab-group", "tab",    "point"};
    const auto index = static_cast<std::size_t>(role);
    return index < kNames.size() ? kNames[index] : "unknown";
}

// Fields may not hold what separates them.
std::string Field(std::u16string_view text) {
    std::string field = krocore::ToStdString(text);
    std::replace_if(
        field.begin(), field.end(), [](char c) { return c == '\t' || c == '\n'; }, ' ');
    return field;
}

void Describe(const UI_Node& node, int depth, std::string& text) {
    if (!node.UI_IsVisible()) return;
    const kroui::ui::AccessibleInfo info = node.UI_GetAccessibleInfo();
    const kroui::Point place = node.UI_LocalToWindow({});
    const kroui::Rect& frame = node.UI_GetFrame();
    text += fmt::format("{:{}}{}\t{}\t{}\t{}\t{}\t{}\t{}\t{}\t{}\n", "", depth, std::string_view(node.UI_GetID()),
                        NameOf(info.role), Field(info.name), Field(info.value), place.x, place.y, frame.width,
                        frame.height, info.enabled ? "enabled" : "disabled");
    for (const auto& child : node.Children())
        Describe(*child, depth + 1, text);
}

} // namespace

std::string DescribeTree(const kroui::ui::UI_Window& window) {
    std::string text;
    if (window.Content()) Describe(*window.Content(), 0, text);
    return text;
}

} // namespace workbench
