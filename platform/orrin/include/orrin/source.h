#pragma once

#include "orrin/error.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace orrin {

// What places in one script mean: its name and where its lines begin. Everything read from the script shares it, so
// that a place is four bytes (the offset of a byte) until somebody asks for line and column. The text itself is not
// kept.
class source_t {
public:
    explicit source_t(std::string name) : fName(std::move(name)) {}

    const std::string& name() const noexcept { return fName; }
    // Right once the script has been read up to the offset.
    position_t position(std::uint32_t offset) const noexcept;
    error_t error(std::uint32_t offset, std::string message) const;

    // For the lexer, in order.
    void add_line(std::uint32_t offset) { fLineStarts.push_back(offset); }

private:
    std::string fName;
    std::vector<std::uint32_t> fLineStarts{0};
};

using source_ptr_t = std::shared_ptr<const source_t>;

} // namespace orrin
