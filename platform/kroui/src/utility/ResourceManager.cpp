#include "kroui/utility/ResourceManager.h"

namespace kroui::utility {

std::span<const std::byte> OS_ResourceManager::GetResource(std::string_view name, std::string_view type) const {
    return krocore::FindResource(fModule, name, type);
}

} // namespace kroui::utility
