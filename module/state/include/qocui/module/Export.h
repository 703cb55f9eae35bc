#pragma once

// QOCUI_API marks what the library shows to hosts; everything else is hidden. QOCUI_ENTRY is how the system calls the
// library's entry point.
#ifdef _WIN32
#define QOCUI_API __declspec(dllexport)
#define QOCUI_ENTRY __stdcall
#else
#define QOCUI_API __attribute__((visibility("default")))
#define QOCUI_ENTRY
#endif
