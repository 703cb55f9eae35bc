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

thread_local const char* sAdvice = "";

bool ReportToStderr(const char* condition, const char* file, int line) {
    std::fprintf(stderr, "%s:%d: contract violated: %s", file, line, condition);
    if (*sAdvice != '\0') std::fprintf(stderr, "; %s", sAdvice);
    std::fputc('\n', stderr);
    return false;
}

// A dialog may throw.
class AdviceScope {
public:
    explicit AdviceScope(const char* advice) : fBefore(std::exchange(sAdvice, advice)) {}
    AdviceScope(const AdviceScope&) = delete;
    AdviceScope& operator=(const AdviceScope&) = delete;
    ~AdviceScope() { sAdvice = fBefore; }

private:
    const char* fBefore;
};

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

const char* ContractAdvice() {
    return sAdvice;
}

void InputContractViolated(const char* condition, const char* file, int line, const char* advice) {
    const AdviceScope scope(advice);
    if (BreakAfterContractDialog(condition, file, line) && IsDebuggerAttached()) BreakIntoDebugger();
    const string16 none;
    config::ThrowError(0, kInputContractViolation, kContractErrorGroup, kInputContractErrorCode, true, none, none, none,
                       none);
}

} // namespace krocore::debug
