#pragma once

#include "workbench/commands/Table.h"

#include <filesystem>
#include <vector>

namespace workbench {

struct CheckRequest {
    std::vector<std::filesystem::path> files;
    TableFormat format = TableFormat::kAligned;
};

// Says on standard output what is wrong in layout archives (.xml), sheets (.trn) and layouts (.lio), a line a fault:
// "file:line:column: what is wrong", or the same for programs. A layout is checked against the sheet of the same name
// among the files, or else the one beside it, which is checked too. Returns the exit code: done if there is no fault
// but warnings, failed if there is one, kExitUnreadable if a file can't be read.
int Check(const CheckRequest& request);

constexpr int kExitUnreadable = 2;

} // namespace workbench
