#pragma once

#include "X11Connection.h"
#include "kroui/limner/PixelSurface.h"

#include <X11/extensions/XShm.h>

#include <span>

namespace krox11 {

// The pixels of a window where the X server sees them: in shared memory if it can (X.Org, "MIT-SHM", 1991), otherwise
// sent. Owned by the window.
class X11Picture {
public:
    X11Picture(X11Connection& connection, ::Window window);
    ~X11Picture();
    X11Picture(const X11Picture&) = delete;
    X11Picture& operator=(const X11Picture&) = delete;

    // In pixels.
    struct Part {
        int left;
        int top;
        int width;
        int height;
    };
    // Shows parts (pixels) of a surface. They may change again when it returns.
    void Show(const kroui::limner::PixelSurface& surface, std::span<const kroui::Rect> parts);

private:
    void ShowPart(const kroui::limner::PixelSurface& surface, const Part& part);
    void Finish();
    void MakeImage(int width, int height);
    void DropImage();

    X11Connection& fConnection;
    Display* fDisplay;
    ::Window fWindow;
    Visual* fVisual = nullptr;
    int fDepth = 24;
    GC fContext = nullptr;
    XImage* fImage = nullptr; // in shared memory
    XShmSegmentInfo fSegment{};
    bool fCanShare;
};

} // namespace krox11
