#include "workbench/commands/Terminal.h"

#include <unistd.h>

namespace workbench {

bool IsErrorOutputTerminal() {
    return isatty(STDERR_FILENO) == 1;
}

} // namespace workbench
