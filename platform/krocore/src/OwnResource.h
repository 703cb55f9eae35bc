#pragma once

#include "krocore/ModuleResources.h"

namespace krocore {

// A resource that a module has itself, by type and name, case ignored. Null data if there is none. The module is one.
std::span<const std::byte> OwnResource(ModuleInstance module, std::string_view name, std::string_view type) noexcept;

} // namespace krocore
