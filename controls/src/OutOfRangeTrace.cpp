#include "OutOfRangeTrace.h"

#include "krocore/debug/Trace.h"
#include "krocore/threads/Threads.h"

#include <locale>
#include <sstream>
#include <utility>

namespace qocui::controls {

namespace {

constexpr int kLevel = 5;

} // namespace

OutOfRangeTrace::OutOfRangeTrace(std::string category, std::string direction)
    : fCategory(std::move(category)), fDirection(std::move(direction)) {
}

bool OutOfRangeTrace::IsEnabled() {
    const unsigned long count = krocore::debug::TraceChangeCount();
    if (count != fChangeCount) {
        fChangeCount = count;
        fEnabled = krocore::debug::TraceEnabled(fCategory, kLevel, true);
    }
    return fEnabled;
}

void OutOfRangeTrace::Write(int index, float value) {
    if (!IsEnabled()) return;
    std::ostringstream line;
    line.imbue(std::locale::classic());
    line << "<" << krocore::threads::GetCurrentThreadID() << "> <" << fCategory << "> <" << kLevel << "> " << fDirection
         << " parameter out of range: index = " << index << ", value = " << value << '\n';
    krocore::debug::Trace(line.str());
}

} // namespace qocui::controls
