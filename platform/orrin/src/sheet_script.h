#pragma once

#include "adjacency.h"

#include "orrin/expression.h"
#include "orrin/sheet.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace orrin {

// A sheet's script as it stands, names not yet resolved.
struct sheet_script_t {
    struct cell_t {
        name_t name;
        cell_kind_t kind = cell_kind_t::constant;
        bool linked = false;
        std::uint32_t offset = 0;
        index_t initialiser = kNone; // in initialisers
    };
    struct target_t {
        name_t name;
        std::uint32_t offset = 0;
    };
    struct clause_t {
        std::vector<target_t> targets;
        expression_t expression;
    };
    struct relation_t {
        std::vector<clause_t> clauses;
        index_t condition = kNone; // in conditions
        std::uint32_t offset = 0;
        bool isDefinition = false; // of the cell that it stands with
    };

    name_t name;
    source_ptr_t source;
    std::vector<cell_t> cells;
    std::vector<relation_t> relations;
    std::vector<expression_t> initialisers;
    std::vector<expression_t> conditions;
};

// Throws error_t.
sheet_script_t parse_sheet_script(std::string_view text, std::string scriptName);

} // namespace orrin
