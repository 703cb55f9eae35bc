#pragma once

#include "kroui/ui/MessageScope.h"

#include <boost/signals2/slot.hpp>
#include <boost/signals2/trackable.hpp>

#include <list>

namespace kroui::ui {

// The listeners of one kind of notification, called in the order in which they came: a signal of the user-interface
// thread, without the locks and the bookkeeping that make boost::signals2::signal dear to construct, with that
// library's slots. A slot made by boost::bind over a member of a trackable object is not called any more when that
// object has died; others live as long as the signal. Calling allocates nothing.
template <class... Arguments>
class Signal {
public:
    using slot_type = boost::signals2::slot<void(Arguments...)>;

    void connect(const slot_type& slot) {
        if (fCalls == 0) fSlots.remove_if([](const slot_type& known) { return known.expired(); });
        fSlots.push_back(slot);
    }
    bool empty() const { return fSlots.empty(); }

    // A listener may add listeners, which are called from the next time on. The signal must outlive the call, as one of
    // a node does.
    void operator()(Arguments... arguments) const {
        const MessageScope scope;
        const Calling calling(fCalls);
        std::size_t count = fSlots.size();
        for (auto slot = fSlots.begin(); count > 0; ++slot, --count)
            if (!slot->expired()) slot->slot_function()(arguments...);
    }

private:
    struct Calling {
        explicit Calling(int& calls) : fCalls(calls) { ++fCalls; }
        ~Calling() { --fCalls; }
        int& fCalls;
    };

    std::list<slot_type> fSlots;
    mutable int fCalls = 0; // nested ones count each
};

} // namespace kroui::ui
