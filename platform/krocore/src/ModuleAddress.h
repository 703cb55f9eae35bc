#pragma once

namespace krocore {

// Where the loaded module that contains the address begins, or null if no module does.
const void* ModuleBase(const void* address) noexcept;

} // namespace krocore
