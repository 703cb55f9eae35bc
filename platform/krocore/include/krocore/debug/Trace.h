#pragma once

#include <boost/function.hpp>

#include <string>
#include <string_view>
#include <vector>

// The trace facility: named categories, each with a level; a line is written when its level is not above the
// category's. All categories start at level 0 (nothing above 0 is written). Safe from any thread.
namespace krocore::debug {

// Whether lines of `level` in `category` are to be written. The last argument makes the category known, so that it
// shows in lists even before anybody sets its level.
bool TraceEnabled(std::string_view category, int level, bool registerCategory);

// The categories that are known, in the order of their text; "*" is none of them.
std::vector<std::string> TraceCategories();

// Never 0. Changes whenever a level or the sink changes; callers that cache the answer of TraceEnabled ask again then.
unsigned long TraceChangeCount() noexcept;

// Writes text as it is to the sink (default: stderr), on the calling thread.
void Trace(std::string_view text);

// A category's level; the category "*" stands for all that have none of their own.
void SetTraceLevel(std::string_view category, int level);

// Installs where text goes; an empty function restores stderr. Returns the sink before it, which can be called.
using TraceSink = boost::function<void(std::string_view)>;
TraceSink SetTraceSink(TraceSink sink);

} // namespace krocore::debug
