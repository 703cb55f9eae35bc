#include "ModuleAddress.h"

#include <dlfcn.h>

namespace krocore {

const void* ModuleBase(const void* address) noexcept {
    Dl_info info{};
    return dladdr(address, &info) != 0 ? info.dli_fbase : nullptr;
}

} // namespace krocore
