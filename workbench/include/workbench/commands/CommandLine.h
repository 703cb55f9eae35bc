#pragma once

namespace workbench {

// What the program returns to the system.
constexpr int kExitDone = 0;
constexpr int kExitFailed = 1;        // what was asked for could not be done; standard error says why
constexpr int kExitWrongUsage = 2;    // the command line makes no sense
constexpr int kExitInterrupted = 130; // by Ctrl-C, as shells count it

// The whole program: reads the arguments, does what they say, reports errors on standard error as "workbench: ...".
// Returns the exit code; lets no exception out.
int RunCommandLine(int argc, const char* const* argv);

} // namespace workbench
