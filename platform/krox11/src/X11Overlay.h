#pragma once

#include "X11Picture.h"
#include "kroui/limner/PixelSurface.h"
#include "kroui/ui/WindowBackend.h"

#include <boost/function.hpp>

#include <memory>

namespace krox11 {

// A window without a frame over all others, for what leaves the window that it belongs to. It never has the focus; one
// that takes no events lets the pointer through (the X Nonrectangular Window Shape Extension, 1.1). Its place is in
// pixels of the screen.
class X11Overlay final : public kroui::ui::OverlaySurface {
public:
    // Connection and supplier outlive it.
    X11Overlay(X11Connection& connection, const kroui::limner::CairoSupplier& supplier, const X11Picture::Part& place,
               bool takesEvents);
    ~X11Overlay() override;

    ::Window Handle() const { return fHandle; }
    void ShowAll();
    // Called when it goes.
    void SetClosedHandler(boost::function<void()> handler) { fClosed = std::move(handler); }

    kroui::limner::Surface& GetSurface() override { return fSurface; }
    void Present(std::span<const kroui::Rect> pixelRects) override;

private:
    Display* fDisplay;
    kroui::limner::PixelSurface fSurface;
    ::Window fHandle;
    std::unique_ptr<X11Picture> fPicture;
    boost::function<void()> fClosed;
};

} // namespace krox11
