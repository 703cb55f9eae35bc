#pragma once

#include "kroaudiofilterhost/AudioFilter.h"

#include <boost/function.hpp>

#include <cstddef>
#include <deque>
#include <vector>

namespace qohost {

// The changes of one filter's parameters that a user can take back. One step is a whole gesture - all that is committed
// from the first BeginParameterEdit until every bracket is closed again, however the brackets nest or interleave - or
// all that one piece of input does (a press until its release, a key), or else one committed change. Quiet changes
// alone are no step, but those that come with committed ones in one piece of input are taken back with them, such as
// the number of points of a curve. What leaves everything as it was is no step.
//
// Owned by whoever owns the document; keeps the filter alive. User-interface thread.
class UndoHistory final : public kroaudiofilterhost::AudioFilterListener {
public:
    static constexpr std::size_t kDefaultLimit = 1000;
    static constexpr double kMergeSeconds = 0.75;
    // Seconds since some fixed moment.
    using Clock = boost::function<double()>;

    // Keeps at most `limit` steps (at least one); the oldest go first. Without a clock it is the system's steady one.
    explicit UndoHistory(boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> filter,
                         std::size_t limit = kDefaultLimit, Clock clock = {});
    UndoHistory(const UndoHistory&) = delete;
    UndoHistory& operator=(const UndoHistory&) = delete;
    ~UndoHistory() override;

    // The program tells when the user begins and ends to do something. Beginning twice is beginning once.
    void InputBegins() noexcept { fInInput = true; }
    void InputEnds();

    // Whether a bracket with the index is open.
    bool IsGestureOpen(int index) const;

    // False while a gesture is open.
    bool CanUndo() const noexcept { return IsClosed() && fPosition > 0; }
    bool CanRedo() const noexcept { return IsClosed() && fPosition < fSteps.size(); }

    // Writes the values of before or after a step back, committed and as one change. False, with nothing done, when
    // there is no such step or a gesture is open.
    bool Undo();
    bool Redo();

    // What the next Undo or Redo is about: the parameter's name, or a word for several. Empty when there is none.
    krocore::string16 UndoName() const;
    krocore::string16 RedoName() const;

    void ParameterChanged(kroaudiofilterhost::AudioFilter& filter,
                          const kroaudiofilterhost::AudioFilterParameterChange& change) override;
    void ParameterEditBegun(kroaudiofilterhost::AudioFilter& filter, int index) override;
    void ParameterEditEnded(kroaudiofilterhost::AudioFilter& filter, int index) override;

private:
    struct Change {
        int index;
        float before;
        float after;
        bool quiet;
    };
    using Step = std::vector<Change>;

    bool IsClosed() const noexcept { return fOpenBrackets.empty() && fOpenStep.empty(); }
    void CloseIfDone();
    void CloseStep();
    void CloseLooseStep();
    bool GoesOnFromLastStep() const;
    void Write(const Step& step, float Change::*value);
    krocore::string16 NameOf(const Step& step) const;

    boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> fFilter;
    std::size_t fLimit;
    std::deque<Step> fSteps;
    std::size_t fPosition = 0; // steps before it can be undone, those from it on redone
    Step fOpenStep;
    std::vector<int> fOpenBrackets; // indices, one entry for each bracket that is open
    bool fInInput = false;
    bool fIsLoose = true; // the open step has seen no bracket
    bool fRestoring = false;
    Clock fClock;
    bool fLastIsLoose = false; // the newest step came without brackets
    double fLastLooseTime = 0;
};

} // namespace qohost
