#include "workbench/commands/CommandLine.h"

#include <windows.h>

#include <algorithm>
#include <iterator>
#include <string>
#include <vector>

namespace {

std::string ToUTF8(const wchar_t* text) {
    const int size = WideCharToMultiByte(CP_UTF8, 0, text, -1, nullptr, 0, nullptr, nullptr);
    std::string utf8(static_cast<std::size_t>(size > 0 ? size : 1), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text, -1, utf8.data(), size, nullptr, nullptr);
    utf8.pop_back(); // the end of the text
    return utf8;
}

// What the program writes is UTF-8; the console goes back to what it was.
class ConsoleInUTF8 {
public:
    ConsoleInUTF8() { SetConsoleOutputCP(CP_UTF8); }
    ~ConsoleInUTF8() { SetConsoleOutputCP(fBefore); }
    ConsoleInUTF8(const ConsoleInUTF8&) = delete;
    ConsoleInUTF8& operator=(const ConsoleInUTF8&) = delete;

private:
    UINT fBefore = GetConsoleOutputCP();
};

// Opened from the desktop, the program has a console that nobody asked for.
void LeaveOwnConsole() {
    DWORD process = 0;
    if (GetConsoleProcessList(&process, 1) == 1) FreeConsole();
}

} // namespace

int wmain(int argc, wchar_t** argv) {
    const ConsoleInUTF8 console;
    if (argc == 1) LeaveOwnConsole();
    std::vector<std::string> texts;
    std::transform(argv, argv + argc, std::back_inserter(texts), ToUTF8);
    std::vector<const char*> arguments;
    std::ranges::transform(texts, std::back_inserter(arguments), &std::string::c_str);
    return workbench::RunCommandLine(argc, arguments.data());
}
