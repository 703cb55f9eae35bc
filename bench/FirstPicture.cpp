// Loaded before the workbench, ends it as soon as its first picture is on the screen: what it has used until then is
// what a start costs.

#include <SDL.h>

#include <dlfcn.h>
#include <unistd.h>

#include <cstdlib>

int SDL_UpdateWindowSurfaceRects(SDL_Window* window, const SDL_Rect* rects, int count) {
    using Function = decltype(&SDL_UpdateWindowSurfaceRects);
    const auto next = reinterpret_cast<Function>(dlsym(RTLD_NEXT, "SDL_UpdateWindowSurfaceRects"));
    _exit(next != nullptr && next(window, rects, count) == 0 ? EXIT_SUCCESS : EXIT_FAILURE);
}
