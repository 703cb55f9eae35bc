#pragma once

struct SDL_Window;

namespace krosdl {

// Waits for input of the window system itself, since SDL's wait asks for events a dozen times at each wake, which a
// panel's timer causes a hundred times a second. Only where the window system can be waited for so (X11); elsewhere it
// is not available and SDL's own wait serves.
class InputWait {
public:
    // The window lives longer.
    explicit InputWait(SDL_Window& window);

    bool IsAvailable() const { return fConnection != nullptr; }
    // Waits at most so long; whether there is something to read.
    bool For(int milliseconds) const;

private:
    void* fConnection = nullptr; // the window system's own object
};

} // namespace krosdl
