#pragma once

#include "krocore/ModuleResources.h"

#include <cstddef>
#include <span>
#include <string_view>

namespace kroui::utility {

// Finds resources by type ("XML", "PNG", ...) and name, both without regard to case. The bytes stay valid as long as
// the manager.
class ResourceManager {
public:
    virtual ~ResourceManager() = default;
    // Null data if there is no such resource.
    virtual std::span<const std::byte> GetResource(std::string_view name, std::string_view type) const = 0;
};

// The resources that are embedded in one loaded module.
class OS_ResourceManager : public ResourceManager {
public:
    explicit OS_ResourceManager(krocore::ModuleInstance module) : fModule(module) {}
    std::span<const std::byte> GetResource(std::string_view name, std::string_view type) const override;

private:
    krocore::ModuleInstance fModule;
};

} // namespace kroui::utility
