#pragma once

#include <string_view>

namespace workbench {

// Standard error, a line each. An output that takes nothing is no further fault.
void TellProblem(std::string_view text); // "workbench: ..."
void TellNote(std::string_view text);    // "workbench: note: ..."

// Standard output. Throws krocore::config::Error if it can't be written, the disk being full for example.
void PrintOut(std::string_view text);
// To be called before the program ends: what was printed has really gone out. Throws likewise.
void FinishOutput();

} // namespace workbench
