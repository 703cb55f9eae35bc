#pragma once

// Marks what the library shows to hosts; everything else is hidden.
#ifdef _WIN32
#define QOCUI_API __declspec(dllexport)
#else
#define QOCUI_API __attribute__((visibility("default")))
#endif
