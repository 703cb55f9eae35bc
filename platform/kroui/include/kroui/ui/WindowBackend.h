#pragma once

#include "kroui/limner/Surface.h"
#include "kroui/ui/Events.h"

#include <memory>
#include <span>
#include <string>

namespace kroui::ui {

// What a node over the content is drawn on where it leaves the window: a window without a frame, over everything, that
// takes no focus. Lives shorter than its back-end. What the pointer does on one that takes events is told to the
// window it belongs to, in that window's coordinates.
class OverlaySurface {
public:
    virtual ~OverlaySurface() = default;
    OverlaySurface(const OverlaySurface&) = delete;
    OverlaySurface& operator=(const OverlaySurface&) = delete;

    virtual limner::Surface& GetSurface() = 0;
    // The parts of it that have changed (pixels), to be shown now; the first time with the surface itself.
    virtual void Present(std::span<const Rect> pixelRects) = 0;

protected:
    OverlaySurface() = default;
};

// What a window needs of the system: the whole seam. All calls on the user-interface thread.
class WindowBackend {
public:
    virtual ~WindowBackend() = default;

    // Something wants to be painted; the back-end calls UI_Window::Paint soon, once for any number of requests.
    virtual void RequestPaint() = 0;
    // What the window is drawn on; the same one for as long as the back-end lives.
    virtual limner::Surface& GetSurface() = 0;
    // The parts of the surface that have changed (pixels), to be shown now.
    virtual void Present(std::span<const Rect> pixelRects) = 0;
    virtual void SetCursor(Cursor cursor) = 0;
    // The user is, or is no longer, entering text at the rectangle (view units): input methods place their window
    // there.
    virtual void SetTextInput(bool on, const Rect& caretRect) = 0;
    virtual std::u16string ClipboardText() = 0;
    virtual void SetClipboardText(std::u16string_view text) = 0;

    // Where nodes over the content may stand, in view units of the window, which begins at 0, 0: all of the screen
    // where they may leave it.
    virtual Rect OverlayRoom(Size window) { return {0, 0, window.width, window.height}; }
    // For a node that leaves the window, at a place of the window's coordinates (view units, its corner on a whole
    // pixel). One that takes events is modal: presses anywhere else on the screen are told to the window too. Null
    // where nothing can be shown outside the window: it is cut off then.
    virtual std::unique_ptr<OverlaySurface> MakeOverlaySurface(const Rect& /*place*/, bool /*takesEvents*/) {
        return nullptr;
    }
};

} // namespace kroui::ui
