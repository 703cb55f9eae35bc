#include "kroui/ui/AdapterRegistry.h"

#include <algorithm>

namespace kroui::ui {

AdapterRegistry& AdapterRegistry::Get() {
    static AdapterRegistry sRegistry;
    return sRegistry;
}

void AdapterRegistry::Register(std::string_view className, Creator creator) {
    const auto at = std::lower_bound(fEntries.begin(), fEntries.end(), className,
                                     [](const Entry& entry, std::string_view name) { return entry.className < name; });
    if (at == fEntries.end() || at->className != className) fEntries.insert(at, {className, creator});
}

boost::intrusive_ptr<UI_Node> AdapterRegistry::Create(std::string_view className) const {
    const auto at = std::lower_bound(fEntries.begin(), fEntries.end(), className,
                                     [](const Entry& entry, std::string_view name) { return entry.className < name; });
    if (at == fEntries.end() || at->className != className) return nullptr;
    return at->creator();
}

std::vector<std::string_view> AdapterRegistry::ClassNames() const {
    std::vector<std::string_view> names;
    for (const Entry& entry : fEntries)
        names.push_back(entry.className);
    return names;
}

} // namespace kroui::ui
