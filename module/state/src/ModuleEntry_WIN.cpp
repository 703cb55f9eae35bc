// The system calls the entry point itself. Resources are those of the library's file.

#include "ModuleEntry.h"

extern "C" int QOCUI_ENTRY DllMain(HINSTANCE instance, unsigned long reason, void* /*reserved*/) {
    return qocui::module::ModuleEntered(instance, reason);
}
