#pragma once

#include <boost/function.hpp>

namespace krocore::debug {

// Tells a person about a broken contract and returns whether to break into the debugger. Replaceable; the default
// writes one line to stderr, with the advice if there is some, and returns false.
using ContractDialog = boost::function<bool(const char* condition, const char* file, int line)>;

// Installs a dialog and returns the one before it, which can be called; an empty function restores the default.
// User-interface thread.
ContractDialog SetContractDialog(ContractDialog dialog);

// Calls the installed dialog.
bool BreakAfterContractDialog(const char* condition, const char* file, int line);

// What a failed check does: the dialog; a breakpoint trap if it asks for one and a debugger is attached; then
// krocore::config::ThrowError with the input contract violation. Returns only if the installed raiser returns. The
// advice says what to do about it ("call Initialize first"); empty for none.
void InputContractViolated(const char* condition, const char* file, int line, const char* advice = "");

// What the check that has failed advises, for dialogs; empty outside of one.
const char* ContractAdvice();

} // namespace krocore::debug

// Checks a precondition. Condition text, file and line are given by the caller so that they stay stable.
#define KROCORE_CHECK_INPUT_CONTRACT(expression, conditionText, file, line)                                            \
    KROCORE_CHECK_INPUT_CONTRACT_ADVISED(expression, conditionText, file, line, "")

// The same with advice to whoever broke it.
#define KROCORE_CHECK_INPUT_CONTRACT_ADVISED(expression, conditionText, file, line, advice)                            \
    ((expression) ? static_cast<void>(0) : ::krocore::debug::InputContractViolated(conditionText, file, line, advice))
