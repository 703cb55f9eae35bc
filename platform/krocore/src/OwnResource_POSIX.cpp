// Where files of programs have no resources: modules register tables of theirs.

#include "OwnResource.h"

#include <dlfcn.h>

#include <algorithm>
#include <mutex>

namespace krocore {
namespace {

struct RegisteredModule {
    const void* base;
    ModuleInstance instance;
};

// Modules come and go with the libraries that a host loads, on whatever thread loads them.
struct Registry {
    std::mutex mutex;
    std::vector<RegisteredModule> modules;
};

Registry& Modules() {
    static Registry sRegistry;
    return sRegistry;
}

// Where the loaded module that contains the address begins, or null if no module does.
const void* ModuleBase(const void* address) noexcept {
    Dl_info info{};
    return dladdr(address, &info) != 0 ? info.dli_fbase : nullptr;
}

} // namespace

ModuleRegistrar::ModuleRegistrar(const ModuleResourceTable& table, const void* codeAddress) : fInstance(&table) {
    const std::lock_guard lock(Modules().mutex);
    Modules().modules.push_back({ModuleBase(codeAddress), &table});
}

ModuleRegistrar::~ModuleRegistrar() {
    const std::lock_guard lock(Modules().mutex);
    std::erase_if(Modules().modules, [this](const RegisteredModule& module) { return module.instance == fInstance; });
}

ModuleInstance ModuleFromAddress(const void* codeAddress) {
    const void* const base = ModuleBase(codeAddress);
    if (base == nullptr) return nullptr;
    const std::lock_guard lock(Modules().mutex);
    const auto found = std::ranges::find(Modules().modules, base, &RegisteredModule::base);
    return found == Modules().modules.end() ? nullptr : found->instance;
}

std::span<const std::byte> OwnResource(ModuleInstance module, std::string_view name, std::string_view type) noexcept {
    const ResourceEntry* const first = module->entries;
    const ResourceEntry* const last = first + module->count;
    const ResourceEntry* const found = std::find_if(first, last, [name, type](const ResourceEntry& entry) {
        return EqualsIgnoringCase(entry.type, type) && EqualsIgnoringCase(entry.name, name);
    });
    if (found == last) return {};
    return {found->data, static_cast<std::size_t>(found->size)};
}

} // namespace krocore
