#pragma once

#include <boost/function.hpp>

#include <chrono>
#include <cstdint>
#include <vector>

namespace kroui::ui {

class UI_Node;
class UI_NodeBase;

// Time as the toolkit sees it: seconds since some fixed moment, never going back.
using Clock = boost::function<double()>;

// What all nodes share: their timers, on a clock that tests replace, and those that are kept while a message is being
// handled. One for the process, made on first use. User-interface thread only.
//
// Whoever runs the event loop calls RunTimers, often enough for the shortest period (SecondsToNextTimer tells when).
// Without that panels draw themselves and never follow anything. Several owners of windows may all call it: a timer
// that is not due is left alone. When a window is used for a second without the call, a trace says so.
class UI_NodeManager {
public:
    static UI_NodeManager& Get();

    UI_NodeManager(const UI_NodeManager&) = delete;
    UI_NodeManager& operator=(const UI_NodeManager&) = delete;

    // A timer id that nobody else has; never 0.
    long GetUniqueTimerID();

    // Installs a clock; an empty function restores the system's steady clock. Running timers keep the time left to
    // their next notification.
    void SetClock(Clock clock);
    double Now() const;

    void InstallTimer(UI_Node& node, float periodSeconds, long timerID);
    void RemoveTimer(UI_Node& node, long timerID);
    void RemoveTimersOf(UI_Node& node);

    // Notifies every node whose timer is due, each once however late it is; the next one is due a period later, counted
    // from the schedule, or from now if that has passed too. Notifications may install and remove timers and destroy
    // nodes. A call from inside a notification does nothing.
    void RunTimers();
    // Seconds until the next timer is due (0 if one is overdue), or a negative number if there is none.
    double SecondsToNextTimer() const;
    // Traces, once for each clock, that nobody runs the timers. For windows, whenever they are used.
    void TellIfLoopIsMissing();
    std::size_t TimerCount() const;

private:
    friend class MessageScope;

    UI_NodeManager();

    void BeginMessage() noexcept { ++fMessages; }
    void EndMessage() noexcept;
    bool TakesLastReference(const UI_NodeBase& node) noexcept;

    struct Timer {
        UI_Node* node; // null: removed during RunTimers, swept afterwards
        long id;
        double period;
        double due;
    };

    void Sweep();

    std::vector<Timer> fTimers;
    std::vector<const UI_NodeBase*> fKept; // a reference each
    int fMessages = 0;                     // being handled, nested
    Clock fClock;
    long fLastTimerID = 0;
    bool fIsRunning = false;
    bool fHasRun = false; // since the clock was set
    bool fHasToldOfLoop = false;
};

} // namespace kroui::ui
