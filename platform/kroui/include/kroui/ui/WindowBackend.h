#pragma once

#include "kroui/limner/Surface.h"
#include "kroui/ui/Events.h"

#include <span>
#include <string>

namespace kroui::ui {

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
};

} // namespace kroui::ui
