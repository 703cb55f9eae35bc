#pragma once

#include "krocore/String.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace krocore {

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

// The registered module whose code contains the address, or null.
ModuleInstance ModuleFromAddress(const void* codeAddress);

// A resource by type and name, case ignored; empty span with null data if the module is null or has no such resource.
std::span<const std::byte> FindResource(ModuleInstance module, std::string_view name, std::string_view type) noexcept;

namespace utility {

// Copies one resource's bytes; false (and `bytes` untouched) if it is absent.
bool GetBinaryFromModule(ModuleInstance module, std::u16string_view name, std::u16string_view type,
                         std::vector<std::uint8_t>& bytes);

} // namespace utility
} // namespace krocore

#ifndef _WIN32
using HINSTANCE = krocore::ModuleInstance;
#endif
