#pragma once

#include <exception>
#include <string>

namespace workbench {

// What a user reads about something that went wrong: the program's own errors as they are, in other cases a sentence
// instead of what the standard library says, never the name of a class.
std::string ProblemText(const std::exception& problem);

} // namespace workbench
