#include "WidgetItems.h"

#include "uit/lio/AttributeValues.h"

#include "orrin/dictionary.h"

#include <algorithm>
#include <stdexcept>

namespace krotarnlio {

using orrin::any_regular_t;
using orrin::array_t;
using orrin::dictionary_t;
using orrin::name_t;
using uit::lio::TextOf;

namespace {

WidgetItem ItemOf(const dictionary_t& entries) {
    static const name_t kName("name");
    static const name_t kValue("value");
    static const name_t kImage("image");
    static const name_t kEnabled("enabled");
    WidgetItem item;
    for (const auto& [key, entry] : entries) {
        if (key == kName)
            item.name = TextOf(entry);
        else if (key == kValue)
            item.value = entry;
        else if (key == kImage)
            item.image = entry.get<std::string>();
        else if (key == kEnabled)
            item.isEnabled = entry.get<bool>();
        else
            throw std::invalid_argument("has an item with an entry '" + std::string(key.text()) +
                                        "'; there are name, value, image and enabled");
    }
    if (!entries.contains(kName)) throw std::invalid_argument("has an item without a name");
    return item;
}

} // namespace

std::vector<WidgetItem> ItemsOf(const any_regular_t& value) {
    std::vector<WidgetItem> items;
    for (const any_regular_t& element : value.get<array_t>()) {
        WidgetItem item;
        if (const auto* const entries = element.get_if<dictionary_t>())
            item = ItemOf(*entries);
        else
            item.name = TextOf(element);
        item.isSeparator = item.name == u"-";
        if (item.value.empty() && !item.isSeparator) item.value = items.size();
        items.push_back(std::move(item));
    }
    return items;
}

int FindItem(const std::vector<WidgetItem>& items, const any_regular_t& value) {
    const auto found =
        std::ranges::find_if(items, [&](const WidgetItem& item) { return !item.isSeparator && item.value == value; });
    return found != items.end() ? static_cast<int>(found - items.begin()) : -1;
}

} // namespace krotarnlio
