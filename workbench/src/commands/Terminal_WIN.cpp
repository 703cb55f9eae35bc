#include "workbench/commands/Terminal.h"

#include <cstdio>
#include <io.h>

namespace workbench {

bool IsErrorOutputTerminal() {
    return _isatty(_fileno(stderr)) != 0;
}

} // namespace workbench
