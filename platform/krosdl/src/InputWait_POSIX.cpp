#include "InputWait.h"

#include <SDL_syswm.h>

#include <poll.h>

namespace krosdl {

#ifdef SDL_VIDEO_DRIVER_X11

InputWait::InputWait(SDL_Window& window) {
    SDL_SysWMinfo info;
    SDL_VERSION(&info.version);
    if (SDL_GetWindowWMInfo(&window, &info) == SDL_TRUE && info.subsystem == SDL_SYSWM_X11)
        fConnection = info.info.x11.display;
}

bool InputWait::For(int milliseconds) const {
    auto* const display = static_cast<Display*>(fConnection);
    // Events that came with the answer to a request are in the queue, no longer in the socket.
    if (QLength(display) > 0) return true;
    pollfd socket{ConnectionNumber(display), POLLIN, 0};
    return poll(&socket, 1, milliseconds) != 0;
}

#else

InputWait::InputWait(SDL_Window& /*window*/) {
}

bool InputWait::For(int /*milliseconds*/) const {
    return true;
}

#endif

} // namespace krosdl
