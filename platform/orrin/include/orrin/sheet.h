#pragma once

#include "orrin/error.h"
#include "orrin/virtual_machine.h"

#include <boost/function.hpp>
#include <boost/signals2/connection.hpp>
#include <boost/signals2/slot.hpp>

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace orrin {

class sheet_engine_t;
struct sheet_program_t;

enum class cell_kind_t : std::uint8_t { constant, input, interface, logic, invariant, output };
std::string_view cell_kind_name(cell_kind_t kind); // as it heads its section: "constant", "input", ...

// A cell as its script declares it.
struct cell_info_t {
    name_t name;
    cell_kind_t kind = cell_kind_t::constant;
    bool linked = false;      // an interface cell that is not declared "unlink"
    bool initialised = false; // has an initialiser; "name <== e" alone is none
    bool computed = false;    // by a definition that does not read what the cell was set to
    position_t position;
};

// A place where a script calls a function.
struct function_use_t {
    name_t function;
    position_t position;
};

// What a clause that does not run would say of the cells as they are: clauses of one relation should agree.
struct clause_trial_t {
    position_t position; // of the clause's expression
    bool agrees = true;
    std::string message; // what does not agree
};

// An input that the host has set.
struct given_input_t {
    name_t name;
    any_regular_t told; // what the host had been told, of which the input is an echo; empty for a value of its own
};

// A property model: named cells whose values are set from outside or computed from each other. Its script:
//
//   sheet name {
//   constant:  name: e;                              computed once
//   input:     name: e;  name;                       set by the host
//   interface: [unlink] name [: e] [<== e];          set by a widget, unless it is computed
//   logic:     name <== e;
//              relate { a <== e; b <== e; ... }      exactly one of these clauses runs
//              when (e) relate { ... }               the same, while the condition holds
//   invariant: name <== e;                           a bool that should be true
//   output:    name <== e;
//   }
//
// A clause or definition can have several targets, "a, b <== e;", where e is an array with as many elements. An
// interface cell has a contributed value, the one that it was last set or initialised to, which is also its value
// unless the cell is computed. A computed value becomes the contributed one, too, if the cell is linked (not "unlink").
// In its own definition the name of an interface cell means the contributed value.
//
// Initialisers can read constants, inputs, the interface cells above them (their contributed values) and what is
// computed from constants and inputs alone. Functions of the host can look at its state besides their arguments: what
// calls one is computed again whenever an input has changed.
//
// User-interface thread. A subscriber may do everything but load a script, and may destroy the sheet; what it sets
// waits for the next update().
class sheet_t {
public:
    using slot_t = boost::signals2::slot<void(const any_regular_t&)>;
    using error_handler_t = boost::function<void(const error_t&)>;

    sheet_t();
    ~sheet_t();
    sheet_t(const sheet_t&) = delete;
    sheet_t& operator=(const sheet_t&) = delete;

    // Replaces all cells by those of the script, initialises and solves them. An empty script makes an empty sheet. The
    // lookups of the machine must be there already, since names that are no cells are looked up. Throws error_t, after
    // which everything is as it was. Connections to cells of the script before end.
    void load(std::string_view script, const std::string& scriptName);

    // What evaluates the expressions; install its lookups for functions and for names that are no cells.
    virtual_machine_t& machine() { return fMachine; }

    name_t name() const;
    bool has_cell(name_t name) const;
    bool has_input(name_t name) const;
    bool has_output(name_t name) const;
    std::vector<cell_info_t> cells() const; // as declared
    position_t position(name_t name) const; // of the declaration
    // Evaluates the clauses that the active relations do not run at present, for a checker. Changes nothing; clauses
    // that fail are left out.
    std::vector<clause_trial_t> try_other_clauses() const;
    // Every call in the script, so that a checker can tell unknown functions, which nobody notices before they are
    // called.
    std::vector<function_use_t> function_uses() const;

    // The value as of the last update. Throws std::out_of_range for a name that is no cell, as all below do. The
    // reference holds until the next update.
    const any_regular_t& get(name_t name) const;
    const any_regular_t& operator[](name_t name) const { return get(name); }
    // Of an input or interface cell: what update() will take, or has taken.
    const any_regular_t& contributed(name_t name) const;

    // Sets an input or interface cell, std::invalid_argument for other kinds. Seen by nobody before update(). An
    // interface cell becomes the strongest one: of all ways in which the relations can run, the next update takes one
    // that leaves it alone, if there is one.
    void set(name_t name, any_regular_t value);
    // Makes an interface cell the strongest without setting it.
    void touch(name_t name);

    // Recomputes what depends on what has changed since the last time, and nothing else; then, with all cells in place,
    // calls the subscribers of those whose values changed, in the order of declaration, and of those that were set but
    // computed to another value. Called by a subscriber it returns at once, and the running update makes another round.
    // The first exception of a subscriber is passed on when all others have been called.
    void update();
    // Sets every interface cell that has an initialiser to its initial value for the current inputs, in order, and
    // updates. Cells keep their order of strength, with one exception: where this changes cells that relations join,
    // those that have an initialiser come before those that have none, since the host knows nothing of the latter. One
    // that has been set since the last time still keeps its place, until settle().
    void reinitialise();
    // The same of the cells only whose initialisers read one of these inputs, directly or through others, or call a
    // function of the host: all others keep what they were set to. Nor does a cell change that an input only tells
    // again, rounded, what it was computed to.
    void reinitialise(std::span<const given_input_t> given);
    // Lets the host's values win where a cell that had been set stood against them, unless it has been set once more.
    // For when a while has passed without an edit.
    void settle();

    // Calls the slot with the value now, and whenever it has changed. The slot lives as long as the cell, or until the
    // connection or an object that it tracks is cut off.
    boost::signals2::connection subscribe(name_t name, const slot_t& slot);

    // What fails at present: expressions, which leave their cells at the last good values, and sets of relations that
    // cannot hold together, which do not run.
    std::vector<error_t> errors() const;
    // Is told of every new one at the end of the update in which it turned up, not of those that load() leaves behind.
    void set_error_handler(error_handler_t handler);
    // What is suspicious in the script: cells that nothing initialises or writes.
    const std::vector<error_t>& warnings() const;

    // The input and interface cells from which the value is computed at present, as declared; the cell itself, if it is
    // such a cell and not computed.
    std::vector<name_t> contributing(name_t name) const;
    // The interface cells that contribute to invariants that are false; the inputs, for an invariant that no interface
    // cell contributes to. As declared.
    std::vector<name_t> at_fault() const;
    // False for a cell that is computed from a false invariant or from a cell at fault.
    bool is_valid(name_t name) const;

    // How many expressions were evaluated since the script was loaded.
    std::uint64_t evaluation_count() const;

private:
    std::uint32_t find(name_t name) const;
    sheet_program_t compile(std::string_view script, const std::string& scriptName) const;

    virtual_machine_t fMachine;
    error_handler_t fErrorHandler;
    std::shared_ptr<sheet_engine_t> fEngine;
    bool fLoading = false;
};

} // namespace orrin
