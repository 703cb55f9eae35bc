#include "kroui/ui/UI_NodeManager.h"

#include "krocore/debug/Trace.h"
#include "kroui/ui/UI_Node.h"

#include <algorithm>

namespace kroui::ui {

namespace {

constexpr double kShortestPeriod = 0.001;
// Sums of periods differ from the clock by rounding.
constexpr double kTolerance = 1e-9;
constexpr double kSecondsUntilToldOfLoop = 1;

double SteadyNow() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

} // namespace

UI_NodeManager& UI_NodeManager::Get() {
    static UI_NodeManager sManager;
    return sManager;
}

UI_NodeManager::UI_NodeManager() : fClock(&SteadyNow) {
}

long UI_NodeManager::GetUniqueTimerID() {
    return ++fLastTimerID;
}

void UI_NodeManager::SetClock(Clock clock) {
    const double before = Now();
    fClock = clock ? std::move(clock) : Clock(&SteadyNow);
    const double shift = Now() - before;
    for (Timer& timer : fTimers)
        timer.due += shift;
    fHasRun = fHasToldOfLoop = false;
}

double UI_NodeManager::Now() const {
    return fClock();
}

void UI_NodeManager::InstallTimer(UI_Node& node, float periodSeconds, long timerID) {
    RemoveTimer(node, timerID);
    const double period = std::max<double>(kShortestPeriod, std::isfinite(periodSeconds) ? periodSeconds : 0.0F);
    fTimers.push_back({&node, timerID, period, Now() + period});
}

void UI_NodeManager::RemoveTimer(UI_Node& node, long timerID) {
    for (Timer& timer : fTimers)
        if (timer.node == &node && timer.id == timerID) timer.node = nullptr;
    Sweep();
}

void UI_NodeManager::RemoveTimersOf(UI_Node& node) {
    for (Timer& timer : fTimers)
        if (timer.node == &node) timer.node = nullptr;
    Sweep();
}

void UI_NodeManager::Sweep() {
    if (!fIsRunning) std::erase_if(fTimers, [](const Timer& timer) { return !timer.node; });
}

void UI_NodeManager::RunTimers() {
    fHasRun = true;
    if (fIsRunning) return;
    struct Running {
        UI_NodeManager& manager;
        explicit Running(UI_NodeManager& m) : manager(m) { manager.fIsRunning = true; }
        ~Running() {
            manager.fIsRunning = false;
            manager.Sweep();
        }
    } running(*this);

    const double now = Now();
    // Timers installed by a notification come after `count` and wait for the next run.
    const std::size_t count = fTimers.size();
    for (std::size_t i = 0; i < count; ++i) {
        Timer& timer = fTimers[i];
        if (!timer.node || timer.due > now + kTolerance) continue;
        timer.due = timer.due + timer.period > now + kTolerance ? timer.due + timer.period : now + timer.period;
        const MessageScope scope;
        const boost::intrusive_ptr<UI_Node> node(timer.node);
        const long id = timer.id;
        node->UI_DoTimerNotify(id);
    }
}

// What goes takes others with it, which no message is about any more.
void UI_NodeManager::EndMessage() noexcept {
    if (--fMessages != 0) return;
    while (!fKept.empty()) {
        const UI_NodeBase* const node = fKept.back();
        fKept.pop_back();
        node->ReleaseReference();
    }
}

bool UI_NodeManager::TakesLastReference(const UI_NodeBase& node) noexcept {
    if (fMessages == 0) return false;
    fKept.push_back(&node);
    return true;
}

double UI_NodeManager::SecondsToNextTimer() const {
    double next = -1;
    const double now = Now();
    for (const Timer& timer : fTimers) {
        if (!timer.node) continue;
        const double left = std::max(0.0, timer.due - now);
        if (next < 0 || left < next) next = left;
    }
    return next;
}

void UI_NodeManager::TellIfLoopIsMissing() {
    if (fHasRun || fHasToldOfLoop) return;
    const double now = Now();
    fHasToldOfLoop = std::ranges::any_of(
        fTimers, [now](const Timer& timer) { return timer.node && now >= timer.due + kSecondsUntilToldOfLoop; });
    if (fHasToldOfLoop) {
        krocore::debug::Trace(
            "kroui: nobody runs the timers, so panels don't follow their filters: the event loop has to "
            "call kroui::ui::UI_NodeManager::Get().RunTimers()\n");
    }
}

std::size_t UI_NodeManager::TimerCount() const {
    return static_cast<std::size_t>(
        std::count_if(fTimers.begin(), fTimers.end(), [](const Timer& timer) { return timer.node != nullptr; }));
}

} // namespace kroui::ui
