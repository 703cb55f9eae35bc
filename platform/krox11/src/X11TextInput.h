#pragma once

#include <X11/Xlib.h>

#include <string>

namespace krox11 {

// What keys mean in a window: dead keys, compose sequences and the input methods of other scripts where the host's
// locale has them (X Input Method, without a place of its own for what is being composed), plain characters otherwise.
class X11TextInput {
public:
    // The connection outlives it.
    X11TextInput(Display* display, ::Window window);
    ~X11TextInput();
    X11TextInput(const X11TextInput&) = delete;
    X11TextInput& operator=(const X11TextInput&) = delete;

    // Whether the input method keeps the event to itself; for every event.
    bool Keeps(XEvent& event) const { return XFilterEvent(&event, None) != False; }
    void SetFocus(bool hasFocus);

    struct Typed {
        KeySym symbol;
        std::u16string text; // empty for a key that writes nothing
    };
    Typed Read(XKeyEvent& key) const;

private:
    XIM fMethod = nullptr;
    XIC fContext = nullptr;
};

} // namespace krox11
