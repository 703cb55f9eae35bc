#include "workbench/commands/ProblemText.h"

#include "krocore/FilePath.h"
#include "krocore/config/Error.h"

#include <fmt/format.h>

#include <filesystem>
#include <new>
#include <stdexcept>
#include <string_view>
#include <system_error>

namespace workbench {

std::string ProblemText(const std::exception& problem) {
    if (dynamic_cast<const krocore::config::Error*>(&problem)) return problem.what();
    // What is larger than any memory is thrown as std::length_error.
    if (dynamic_cast<const std::bad_alloc*>(&problem) || dynamic_cast<const std::length_error*>(&problem))
        return "there is not enough memory for this";
    if (const auto* const file = dynamic_cast<const std::filesystem::filesystem_error*>(&problem))
        return fmt::format("{}: {}", krocore::PathText(file->path1()), file->code().message());
    if (const auto* const system = dynamic_cast<const std::system_error*>(&problem)) return system->code().message();
    const std::string_view text = problem.what();
    const bool isForPeople = !text.empty() && text.find("::") == std::string_view::npos;
    return isForPeople ? fmt::format("this should not have happened ({})", text)
                       : "something unexpected went wrong in the program";
}

} // namespace workbench
