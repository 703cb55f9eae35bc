#include "workbench/commands/Messages.h"

#include "krocore/config/Error.h"

#include <fmt/format.h>

#include <cerrno>
#include <cstdio>
#include <iostream>
#include <string>
#include <system_error>

namespace workbench {

namespace {

void TellLine(const char* kind, std::string_view text) {
    const std::string line = fmt::format("workbench: {}{}\n", kind, text);
    std::fwrite(line.data(), 1, line.size(), stderr);
}

[[noreturn]] void RefuseOutput(int error) {
    throw krocore::config::Error(
        fmt::format("the standard output can't be written ({})", std::generic_category().message(error)));
}

} // namespace

void TellProblem(std::string_view text) {
    TellLine("", text);
}

void TellNote(std::string_view text) {
    TellLine("note: ", text);
}

void PrintOut(std::string_view text) {
    errno = 0;
    if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size()) RefuseOutput(errno);
}

void FinishOutput() {
    std::cout.flush();
    errno = 0;
    const bool isWritten = std::fflush(stdout) == 0 && std::ferror(stdout) == 0 && std::cout.good();
    if (!isWritten) RefuseOutput(errno != 0 ? errno : EIO);
}

} // namespace workbench
