#pragma once

#include "sheet_errors.h"
#include "sheet_program.h"
#include "sheet_provenance.h"

#include "orrin/sheet.h"
#include "orrin/virtual_machine.h"

#include <boost/signals2/dummy_mutex.hpp>
#include <boost/signals2/signal.hpp>
#include <boost/signals2/signal_type.hpp>

#include <exception>
#include <memory>
#include <span>
#include <vector>

namespace orrin {

// Runs a compiled sheet: holds the values of its cells, finds out what has to be computed, computes it and tells the
// subscribers. Cells are given by number. Shared by its sheet and by a running update, which may see its sheet die; the
// machine is the sheet's.
class sheet_engine_t : public std::enable_shared_from_this<sheet_engine_t> {
public:
    sheet_engine_t(sheet_program_t program, virtual_machine_t& machine);

    // Computes all cells for the first time. Throws error_t for constants and inputs that cannot be computed and for
    // relations that cannot hold together.
    void start();
    // The machine is gone: no more evaluation, no more calls of subscribers.
    void stop() { fStopped = true; }
    bool is_running() const { return fRunning; }

    const sheet_program_t& program() const { return fProgram; }
    const any_regular_t& value(index_t cell) const { return fValues[cell]; }
    const any_regular_t& contributed(index_t cell) const { return fContributed[cell]; }
    void set(index_t cell, any_regular_t value);
    void touch(index_t cell);
    // What the next update initialises: all cells that have an initialiser, or those that depend on an input.
    void want_initial_values();
    void want_initial_values_of(index_t input, const any_regular_t& told);
    // True if the next update has something to do.
    bool settle();
    void update();

    boost::signals2::connection subscribe(index_t cell, const sheet_t::slot_t& slot);
    void set_error_handler(sheet_t::error_handler_t handler) { fErrorHandler = std::move(handler); }
    std::vector<error_t> errors() const { return fErrors.all(); }
    std::uint64_t evaluation_count() const { return fEvaluations; }

    std::vector<clause_trial_t> try_other_clauses() const;
    sheet_provenance_t provenance() const { return {fProgram, fWriters, fValues}; }

private:
    using flags_t = std::vector<char>;
    class running_t;

    // Calls every slot, whatever the others throw.
    struct call_all_t {
        using result_type = std::exception_ptr; // the first one thrown
        template <class Iterator>
        result_type operator()(Iterator slot, Iterator end) const {
            result_type first;
            for (; slot != end; ++slot) {
                try {
                    *slot;
                } catch (const boost::signals2::expired_slot&) {
                    continue;
                } catch (...) {
                    if (!first) first = std::current_exception();
                }
            }
            return first;
        }
    };
    using signal_t =
        boost::signals2::signal_type<void(const any_regular_t&), boost::signals2::keywords::combiner_type<call_all_t>,
                                     boost::signals2::keywords::mutex_type<boost::signals2::dummy_mutex>>::type;

    void bind();
    void initialise_once(cell_kind_t kind);
    void round();
    void take_inputs();
    void mark_due();
    bool reads_due(index_t expression) const;
    void initialise();
    bool initial_value_changes(index_t cell);
    bool is_echo(index_t cell);
    any_regular_t initial_value_as_told(index_t initialiser);
    void raise_initialised();
    bool is_set_without_initialiser(index_t cell) const;
    void evaluate_conditions();
    bool evaluate_condition(index_t condition);
    void run_stage(index_t stage);
    void plan(index_t stage);
    void adopt_plan(const sheet_program_t::stage_t& stage);
    void note_conflicts(index_t stage);
    error_t conflict_error(const sheet_program_t::stage_t& stage, const planner_t::conflict_t& conflict) const;
    void adopt_set_cells(index_t stage, bool planned);
    void run(std::span<const index_t> clauses);
    void run(index_t clause);
    void assign_each(const sheet_program_t::clause_t& clause, const any_regular_t& result);
    void assign(index_t cell, const any_regular_t& value);
    void mark(std::span<const index_t> expressions);
    void commit();
    void contribute_computed(index_t cell);
    void notify(std::exception_ptr& thrown);
    void report_errors();

    clause_trial_t try_clause(const sheet_program_t::clause_t& clause) const;
    bool evaluate(index_t expression, any_regular_t& result);
    error_t error_of(index_t expression, const std::exception& exception) const;

    sheet_program_t fProgram;
    virtual_machine_t& fMachine;

    // By cell.
    std::vector<any_regular_t> fValues; // as of the last update
    std::vector<any_regular_t> fNext;   // as of the running one
    std::vector<any_regular_t> fContributed;
    std::vector<any_regular_t> fInitial; // what the initialiser gave last
    std::vector<index_t> fWriters;       // the clause that writes it at present
    flags_t fIsChanged;
    flags_t fIsSet;
    flags_t fIsSetSinceInitialised;
    flags_t fIsDue; // to be initialised, or an input or a result of inputs that makes others so
    std::vector<std::unique_ptr<signal_t>> fSignals; // null without a subscriber

    std::vector<const any_regular_t*> fBindings; // by variable of the program; null: look it up
    flags_t fIsDirty;                            // by expression: what it reads has changed
    std::vector<index_t> fSelected;              // by relation: the clause that it runs
    flags_t fHolds;                              // by condition

    std::vector<index_t> fSetCells; // since the last update
    std::vector<index_t> fTaken;    // what the running update has taken of these
    std::vector<index_t> fInitialised;
    std::vector<index_t> fChanged;
    std::vector<index_t> fToNotify;

    sheet_errors_t fErrors;
    sheet_t::error_handler_t fErrorHandler;
    std::uint64_t fEvaluations = 0;

    bool fRunning = false;
    bool fStopped = false;
    bool fWantsUpdate = false;
    bool fWantsInitialise = false;

    // Inputs that only tell again what the host was told, and what that was.
    struct echo_t {
        index_t input;
        any_regular_t told;
    };
    std::vector<echo_t> fEchoes;
    std::vector<index_t> fHeldBack; // initialised, but a cell that was set stands against their values
    std::vector<index_t> fSettling; // held back until now
};

} // namespace orrin
