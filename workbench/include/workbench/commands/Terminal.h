#pragma once

namespace workbench {

// Whether standard error is a terminal, where a line can be written over.
bool IsErrorOutputTerminal();

} // namespace workbench
