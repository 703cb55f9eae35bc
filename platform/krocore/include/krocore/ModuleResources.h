#pragma once

#include "krocore/String.h"

#include <boost/function.hpp>

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#ifdef _WIN32
struct HINSTANCE__; // the system's
#endif

namespace krocore {

#ifdef _WIN32

// A loaded module, whose resources are those of its file; null is no module.
using ModuleInstance = HINSTANCE__*;

#else

// One embedded resource. Both names are upper case; the bytes live as long as the module is loaded.
struct ResourceEntry {
    const char* type;
    const char* name;
    const std::byte* data;
    std::uint64_t size;
};

// The table that the build generates for a module (cmake: qo_embed_resources).
struct ModuleResourceTable {
    std::uint64_t count;
    ResourceEntry entries[1]; // `count` of them
};

// A loaded module that has resources; null is no module. It is the address of the module's resource table.
using ModuleInstance = const ModuleResourceTable*;

// Makes a module's table known while the object lives: one static object in each module that has resources.
class ModuleRegistrar {
public:
    // codeAddress: any function or static object of the module that registers.
    ModuleRegistrar(const ModuleResourceTable& table, const void* codeAddress);
    ~ModuleRegistrar();
    ModuleRegistrar(const ModuleRegistrar&) = delete;
    ModuleRegistrar& operator=(const ModuleRegistrar&) = delete;

private:
    ModuleInstance fInstance;
};

#endif

// The module whose code contains the address (one that is registered, where modules are), or null.
ModuleInstance ModuleFromAddress(const void* codeAddress);

// A resource by type and name, case ignored: the override if there is one, otherwise the module's own. Empty span with
// null data if the module is null or there is no such resource. With overrides: user-interface thread.
std::span<const std::byte> FindResource(ModuleInstance module, std::string_view name, std::string_view type) noexcept;

// For programs in which panels are written: these bytes stand in front of the resource of every module, from now on and
// until they are replaced or removed; what FindResource gave for it before ends then. Copied. User-interface thread, as
// all below.
void SetResourceOverride(std::string_view name, std::string_view type, std::span<const std::byte> bytes);
void RemoveResourceOverride(std::string_view name, std::string_view type);
// Another number whenever an override has been set or removed: whoever keeps what it has made of a resource makes it
// again.
std::uint32_t ResourceGeneration() noexcept;

// Is told of everything that is looked for in a module, found or not, so that a program knows what a panel is made of.
// Must not throw. Empty for none.
using ResourceObserver = boost::function<void(std::string_view name, std::string_view type)>;
void SetResourceObserver(ResourceObserver observer);

namespace utility {

// Copies one resource's bytes; false (and `bytes` untouched) if it is absent.
bool GetBinaryFromModule(ModuleInstance module, std::u16string_view name, std::u16string_view type,
                         std::vector<std::uint8_t>& bytes);

} // namespace utility
} // namespace krocore

// On Windows the system's own, which may be declared as often as one likes.
using HINSTANCE = krocore::ModuleInstance;
