#include "OwnResource.h"

#include <windows.h>

namespace krocore {

ModuleInstance ModuleFromAddress(const void* codeAddress) {
    // The system takes no address for the program itself.
    if (codeAddress == nullptr) return nullptr;
    constexpr DWORD kFlags = GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
    HMODULE module = nullptr;
    return GetModuleHandleExW(kFlags, static_cast<LPCWSTR>(codeAddress), &module) != FALSE ? module : nullptr;
}

// The system compares without regard to case.
std::span<const std::byte> OwnResource(ModuleInstance module, std::string_view name, std::string_view type) noexcept {
    const std::wstring wideName(name.begin(), name.end());
    const std::wstring wideType(type.begin(), type.end());
    const HRSRC place = FindResourceW(module, wideName.c_str(), wideType.c_str());
    const HGLOBAL loaded = place != nullptr ? LoadResource(module, place) : nullptr;
    const void* const bytes = loaded != nullptr ? LockResource(loaded) : nullptr;
    if (bytes == nullptr) return {};
    return {static_cast<const std::byte*>(bytes), SizeofResource(module, place)};
}

} // namespace krocore
