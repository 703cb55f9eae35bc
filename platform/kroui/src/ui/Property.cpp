#include "kroui/ui/Property.h"

#include <algorithm>

namespace kroui::ui {

const PropertyRow* PropertyTable::Find(std::string_view key) const {
    const auto row = std::lower_bound(rows.begin(), rows.end(), key,
                                      [](const PropertyRow& r, std::string_view k) { return r.key < k; });
    return row != rows.end() && row->key == key ? &*row : nullptr;
}

} // namespace kroui::ui
