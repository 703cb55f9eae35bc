#pragma once

#include <array>
#include <atomic>
#include <memory>

namespace qoc::dsp {

// Brings objects that are costly to make from the user-interface thread to the sound thread, and used ones back to be
// destroyed, without a lock. Only the newest one offered waits. While an object is in here the hand-over owns it; the
// raw pointers are what atomics can hold.
template <typename Object>
class HandOver {
public:
    HandOver() = default;
    ~HandOver() { Clear(); }
    HandOver(const HandOver&) = delete;
    HandOver& operator=(const HandOver&) = delete;

    // User-interface thread.
    void Offer(std::unique_ptr<Object> object) {
        Collect();
        const std::unique_ptr<Object> replaced(fOffered.exchange(object.release()));
    }
    // While the sound thread does not run.
    void Clear() {
        Collect();
        const std::unique_ptr<Object> unused(fOffered.exchange(nullptr));
    }

    // Sound thread. Null when nothing new waits.
    std::unique_ptr<Object> Take() noexcept { return std::unique_ptr<Object>(fOffered.exchange(nullptr)); }
    // Sound thread: at most one object is in use and one being faded out, so that between two offers no more than two
    // come back and there is room.
    void GiveBack(std::unique_ptr<Object> object) noexcept {
        for (std::atomic<Object*>& place : fReturned) {
            Object* empty = nullptr;
            if (place.compare_exchange_strong(empty, object.get())) {
                static_cast<void>(object.release());
                return;
            }
        }
    }

private:
    void Collect() {
        for (std::atomic<Object*>& place : fReturned)
            const std::unique_ptr<Object> used(place.exchange(nullptr));
    }

    std::atomic<Object*> fOffered{nullptr};
    std::array<std::atomic<Object*>, 2> fReturned{};
};

} // namespace qoc::dsp
