#include "orrin/source.h"

#include <algorithm>

namespace orrin {

position_t source_t::position(std::uint32_t offset) const noexcept {
    const auto next = std::ranges::upper_bound(fLineStarts, offset);
    const auto line = static_cast<std::uint32_t>(next - fLineStarts.begin()); // from 1, since the first begins at 0
    return {line, offset - fLineStarts[line - 1] + 1};
}

error_t source_t::error(std::uint32_t offset, std::string message) const {
    return {fName, position(offset), std::move(message)};
}

} // namespace orrin
