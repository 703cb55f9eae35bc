#pragma once

#include <span>
#include <string>
#include <string_view>

namespace workbench {

// The one of the names that a mistyped word most likely means: the fewest letters added, left out, changed or swapped
// with their neighbour (the restricted Damerau-Levenshtein distance), case aside, and at most a third of them; or one
// that begins with the word. Empty if there is none.
std::string NearestName(std::string_view word, std::span<const std::string> names);

// The end of a message: `; did you mean "render"?`, or nothing.
std::string DidYouMean(std::string_view word, std::span<const std::string> names);

} // namespace workbench
