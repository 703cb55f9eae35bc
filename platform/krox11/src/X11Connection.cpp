#include "X11Connection.h"

#include "krocore/config/Error.h"

namespace krox11 {

X11Connection::X11Connection() : fDisplay(XOpenDisplay(nullptr)) {
    if (fDisplay == nullptr) throw krocore::config::Error("there is no X server to open a window on");
}

X11Connection::~X11Connection() {
    XCloseDisplay(fDisplay);
}

} // namespace krox11
