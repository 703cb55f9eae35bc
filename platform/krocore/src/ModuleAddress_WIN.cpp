#include "ModuleAddress.h"

#include <windows.h>

namespace krocore {

const void* ModuleBase(const void* address) noexcept {
    constexpr DWORD kFlags = GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
    HMODULE module = nullptr;
    return GetModuleHandleExW(kFlags, static_cast<LPCWSTR>(address), &module) != FALSE ? module : nullptr;
}

} // namespace krocore
