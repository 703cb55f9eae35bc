#include "krocore/debug/Contract.h"

#include "Debugger.h"
#include "krocore/config/Error.h"

#include <cstdio>
#include <utility>

namespace krocore::debug {
namespace {

constexpr const char* kInputContractViolation =
    "$$$/krocore/utility/Error/Contract/InputContractViolation=An input contract violation has occurred!";
constexpr int kContractErrorGroup = 105;
constexpr int kInputContractErrorCode = 25;

bool ReportToStderr(const char* condition, const char* file, int line) {
    std::fprintf(stderr, "%s:%d: contract violated: %s\n", file, line, condition);
    return false;
}

ContractDialog& CurrentDialog() {
    static ContractDialog sDialog = &ReportToStderr;
    return sDialog;
}

} // namespace

ContractDialog SetContractDialog(ContractDialog dialog) {
    if (dialog.empty()) dialog = &ReportToStderr;
    return std::exchange(CurrentDialog(), std::move(dialog));
}

bool BreakAfterContractDialog(const char* condition, const char* file, int line) {
    const ContractDialog dialog = CurrentDialog(); // a dialog may install another one
    return dialog(condition, file, line);
}

void InputContractViolated(const char* condition, const char* file, int line) {
    if (BreakAfterContractDialog(condition, file, line) && IsDebuggerAttached()) BreakIntoDebugger();
    const string16 none;
    config::ThrowError(0, kInputContractViolation, kContractErrorGroup, kInputContractErrorCode, true, none, none, none,
                       none);
}

} // namespace krocore::debug
