#include "X11Picture.h"

#include <X11/Xutil.h>

#include <cstring>

#include <sys/ipc.h>
#include <sys/shm.h>

namespace krox11 {

X11Picture::X11Picture(X11Connection& connection, ::Window window)
    : fConnection(connection), fDisplay(connection.Get()), fWindow(window),
      fCanShare(XShmQueryExtension(fDisplay) != False) {
    XWindowAttributes attributes{};
    XGetWindowAttributes(fDisplay, fWindow, &attributes);
    fVisual = attributes.visual;
    fDepth = attributes.depth;
    fContext = XCreateGC(fDisplay, fWindow, 0, nullptr);
}

X11Picture::~X11Picture() {
    DropImage();
    XFreeGC(fDisplay, fContext);
}

void X11Picture::Show(const kroui::limner::PixelSurface& surface, std::span<const kroui::Rect> parts) {
    for (const kroui::Rect& part : parts)
        ShowPart(surface, {static_cast<int>(part.left), static_cast<int>(part.top), static_cast<int>(part.width),
                           static_cast<int>(part.height)});
    Finish();
}

void X11Picture::ShowPart(const kroui::limner::PixelSurface& surface, const Part& part) {
    const std::uint32_t* const pixels = surface.Pixels();
    const int width = surface.PixelWidth();
    const int height = surface.PixelHeight();
    const int stride = surface.Stride();
    if (fCanShare && (fImage == nullptr || fImage->width != width || fImage->height != height))
        MakeImage(width, height);
    const auto partWidth = static_cast<unsigned>(part.width);
    const auto partHeight = static_cast<unsigned>(part.height);
    const auto* const bytes = reinterpret_cast<const char*>(pixels);
    if (fImage == nullptr) {
        // Only read from.
        XImage* const image =
            XCreateImage(fDisplay, fVisual, static_cast<unsigned>(fDepth), ZPixmap, 0, const_cast<char*>(bytes),
                         static_cast<unsigned>(width), static_cast<unsigned>(height), 32, stride);
        XPutImage(fDisplay, fWindow, fContext, image, part.left, part.top, part.left, part.top, partWidth, partHeight);
        image->data = nullptr;
        XDestroyImage(image);
        return;
    }
    for (int y = part.top; y < part.top + part.height; ++y) {
        const std::size_t left = static_cast<std::size_t>(part.left) * sizeof *pixels;
        std::memcpy(fImage->data + static_cast<std::ptrdiff_t>(y) * fImage->bytes_per_line + left,
                    bytes + static_cast<std::ptrdiff_t>(y) * stride + left, partWidth * sizeof *pixels);
    }
    XShmPutImage(fDisplay, fWindow, fContext, fImage, part.left, part.top, part.left, part.top, partWidth, partHeight,
                 False);
}

// Waits until the server has read what is in shared memory.
void X11Picture::Finish() {
    if (fImage != nullptr)
        XSync(fDisplay, False);
    else
        XFlush(fDisplay);
}

void X11Picture::MakeImage(int width, int height) {
    DropImage();
    fImage = XShmCreateImage(fDisplay, fVisual, static_cast<unsigned>(fDepth), ZPixmap, nullptr, &fSegment,
                             static_cast<unsigned>(width), static_cast<unsigned>(height));
    if (fImage == nullptr) return;
    const auto size = static_cast<std::size_t>(fImage->bytes_per_line) * static_cast<std::size_t>(height);
    fSegment.shmid = shmget(IPC_PRIVATE, size, IPC_CREAT | 0600);
    fSegment.shmaddr = fSegment.shmid >= 0 ? static_cast<char*>(shmat(fSegment.shmid, nullptr, 0)) : nullptr;
    fSegment.readOnly = False;
    const bool isThere = fSegment.shmaddr != nullptr && fSegment.shmaddr != reinterpret_cast<char*>(-1);
    // A server elsewhere refuses the segment.
    const bool isAttached = isThere && !fConnection.IsRefused([this] { XShmAttach(fDisplay, &fSegment); });
    if (fSegment.shmid >= 0) shmctl(fSegment.shmid, IPC_RMID, nullptr); // when both have let go of it
    fImage->data = isThere ? fSegment.shmaddr : nullptr;
    if (isAttached) return;
    fCanShare = false;
    if (isThere) shmdt(fSegment.shmaddr);
    fImage->data = nullptr;
    XDestroyImage(fImage);
    fImage = nullptr;
}

void X11Picture::DropImage() {
    if (fImage == nullptr) return;
    XShmDetach(fDisplay, &fSegment);
    XSync(fDisplay, False);
    shmdt(fSegment.shmaddr);
    fImage->data = nullptr;
    XDestroyImage(fImage);
    fImage = nullptr;
}

} // namespace krox11
