#include "X11Overlay.h"

#include <X11/extensions/shape.h>

namespace krox11 {

namespace {

constexpr long kPointerEvents = ButtonPressMask | ButtonReleaseMask | PointerMotionMask | LeaveWindowMask;

} // namespace

X11Overlay::X11Overlay(X11Connection& connection, const kroui::limner::CairoSupplier& supplier,
                       const X11Picture::Part& place, bool takesEvents)
    : fDisplay(connection.Get()), fSurface(supplier) {
    XSetWindowAttributes attributes{};
    attributes.override_redirect = True;
    attributes.save_under = True;
    attributes.event_mask = ExposureMask | (takesEvents ? kPointerEvents : 0);
    fHandle = XCreateWindow(fDisplay, DefaultRootWindow(fDisplay), place.left, place.top,
                            static_cast<unsigned>(place.width), static_cast<unsigned>(place.height), 0, CopyFromParent,
                            InputOutput, nullptr, CWOverrideRedirect | CWSaveUnder | CWEventMask, &attributes);
    if (!takesEvents) XShapeCombineRectangles(fDisplay, fHandle, ShapeInput, 0, 0, nullptr, 0, ShapeSet, Unsorted);
    const Atom menu = connection.Name("_NET_WM_WINDOW_TYPE_POPUP_MENU");
    const Atom tip = connection.Name("_NET_WM_WINDOW_TYPE_TOOLTIP");
    XChangeProperty(fDisplay, fHandle, connection.Name("_NET_WM_WINDOW_TYPE"), connection.Name("ATOM"), 32,
                    PropModeReplace, reinterpret_cast<const unsigned char*>(takesEvents ? &menu : &tip), 1);
    fPicture = std::make_unique<X11Picture>(connection, fHandle);
    XMapRaised(fDisplay, fHandle);
}

X11Overlay::~X11Overlay() {
    fPicture.reset();
    XDestroyWindow(fDisplay, fHandle);
    XFlush(fDisplay);
    if (fClosed) fClosed();
}

void X11Overlay::Present(std::span<const kroui::Rect> pixelRects) {
    fPicture->Show(fSurface, pixelRects);
}

void X11Overlay::ShowAll() {
    const kroui::Rect all{0, 0, static_cast<float>(fSurface.PixelWidth()), static_cast<float>(fSurface.PixelHeight())};
    fPicture->Show(fSurface, {&all, 1});
}

} // namespace krox11
