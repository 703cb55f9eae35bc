#include "X11Connection.h"

#include "krocore/config/Error.h"

#include <mutex>
#include <vector>

namespace krox11 {

namespace {

// The connections of this kind in the process, and how many errors each has had. Xlib has one handler for all.
struct Known {
    Display* display;
    int errors;
};
std::mutex sMutex;
std::vector<Known> sKnown;
XErrorHandler sBefore = nullptr;

Known* Find(Display* display) {
    for (Known& known : sKnown)
        if (known.display == display) return &known;
    return nullptr;
}

int TakeError(Display* display, XErrorEvent* event) {
    XErrorHandler before = nullptr;
    {
        const std::scoped_lock lock(sMutex);
        if (Known* const known = Find(display)) return ++known->errors;
        before = sBefore;
    }
    return before != nullptr ? before(display, event) : 0;
}

void Add(Display* display) {
    const std::scoped_lock lock(sMutex);
    if (sKnown.empty()) {
        const XErrorHandler before = XSetErrorHandler(TakeError);
        // Who has set another one meanwhile may have put this one back.
        if (before != TakeError) sBefore = before;
    }
    sKnown.push_back({display, 0});
}

void Remove(Display* display) {
    const std::scoped_lock lock(sMutex);
    std::erase_if(sKnown, [display](const Known& known) { return known.display == display; });
    if (!sKnown.empty()) return;
    const XErrorHandler current = XSetErrorHandler(sBefore);
    if (current != TakeError) XSetErrorHandler(current);
}

} // namespace

X11Connection::X11Connection() : fDisplay(XOpenDisplay(nullptr)) {
    if (fDisplay == nullptr) throw krocore::config::Error("there is no X server to open a window on");
    Add(fDisplay);
}

X11Connection::~X11Connection() {
    XSync(fDisplay, False);
    Remove(fDisplay);
    XCloseDisplay(fDisplay);
}

void X11Connection::BeginRequests() {
    XSync(fDisplay, False);
    const std::scoped_lock lock(sMutex);
    if (Known* const known = Find(fDisplay)) known->errors = 0;
}

bool X11Connection::EndRequests() {
    XSync(fDisplay, False);
    const std::scoped_lock lock(sMutex);
    const Known* const known = Find(fDisplay);
    return known != nullptr && known->errors > 0;
}

} // namespace krox11
