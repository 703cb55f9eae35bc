#pragma once

#include "X11Connection.h"

#include <X11/extensions/XShm.h>

#include <cstdint>

namespace krox11 {

// The pixels of a window where the X server sees them: in shared memory if it can (X.Org, "MIT-SHM", 1991), otherwise
// sent. Owned by the window.
class X11Picture {
public:
    explicit X11Picture(const X11Connection& connection, ::Window window);
    ~X11Picture();
    X11Picture(const X11Picture&) = delete;
    X11Picture& operator=(const X11Picture&) = delete;

    // Shows a part of a picture of `width` x `height` pixels, rows of `stride` bytes, 0xAARRGGBB.
    struct Part {
        int left;
        int top;
        int width;
        int height;
    };
    void Show(const std::uint32_t* pixels, int width, int height, int stride, const Part& part);
    // Waits until the server has read what was shown: the pixels may change again.
    void Finish();

private:
    void MakeImage(int width, int height);
    void DropImage();

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
