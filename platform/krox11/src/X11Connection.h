#pragma once

#include <X11/Xlib.h>

namespace krox11 {

// A connection to the X server, with the names (atoms) that windows need.
class X11Connection {
public:
    // Throws krocore::config::Error.
    X11Connection();
    ~X11Connection();
    X11Connection(const X11Connection&) = delete;
    X11Connection& operator=(const X11Connection&) = delete;

    Display* Get() const { return fDisplay; }
    Atom Name(const char* name) const { return XInternAtom(fDisplay, name, False); }

private:
    Display* fDisplay;
};

} // namespace krox11
