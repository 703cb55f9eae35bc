#pragma once

#include <X11/Xlib.h>

namespace krox11 {

// A connection to the X server, with the names (atoms) that windows need. What goes wrong on it is nobody's end: a host
// may destroy the window around a panel at any time, and what is asked of a window that has gone is an error to Xlib,
// which ends the program if nobody steps in. Errors of other connections go where they went.
class X11Connection {
public:
    // Throws krocore::config::Error.
    X11Connection();
    ~X11Connection();
    X11Connection(const X11Connection&) = delete;
    X11Connection& operator=(const X11Connection&) = delete;

    Display* Get() const { return fDisplay; }
    Atom Name(const char* name) const { return XInternAtom(fDisplay, name, False); }

    // Whether the server refuses what is done meanwhile.
    template <class Requests>
    bool IsRefused(const Requests& requests) {
        BeginRequests();
        requests();
        return EndRequests();
    }

private:
    void BeginRequests();
    bool EndRequests();

    Display* fDisplay;
};

} // namespace krox11
