#pragma once

#include "kroui/limner/CairoSupplier.h"
#include "kroui/limner/PixelSurface.h"
#include "kroui/ui/UI_Window.h"

#include <map>
#include <memory>
#include <set>
#include <vector>

namespace krox11 {

class X11Connection;
class X11Overlay;
class X11Picture;
class X11TextInput;

// A window inside another program's window, as plug-in hosts want it, over Xlib with pictures in shared memory. The
// program runs the loop: it calls Idle some 30 times a second. It has a connection of its own to the X server. Owned by
// the panel's owner; user-interface thread. Windows of one program know
// nothing of each other but what they have copied.
//
// Keys come only while the window has the focus, which it takes at a click; those that nobody in it wants go to the
// window around it.
class X11Window final : private kroui::ui::WindowBackend {
public:
    struct Settings {
        unsigned long parent = 0; // of the X server; 0: a window on its own
        kroui::Size size;         // view units
        float scale = 1;          // the host's factor
        float zoom = 1;           // the user's
    };

    // Not yet shown. The supplier outlives it. Throws krocore::config::Error when there is no X server.
    X11Window(const kroui::limner::CairoSupplier& supplier, const Settings& settings);
    ~X11Window() override;

    kroui::ui::UI_Window& Window() { return *fWindow; }
    unsigned long Handle() const { return fHandle; }
    void Show();
    // Asks for room for so many view units. What it becomes is what the windows around it leave.
    void Resize(kroui::Size size);
    int AskedWidth() const { return fAskedWidth; } // pixels
    int AskedHeight() const { return fAskedHeight; }

    // Handles the events that have come, and paints what is damaged. Timers are the program's to run.
    void Idle();

private:
    void RequestPaint() override {}
    kroui::limner::Surface& GetSurface() override { return fSurface; }
    void Present(std::span<const kroui::Rect> pixelRects) override;
    void SetCursor(kroui::ui::Cursor cursor) override;
    void SetTextInput(bool /*on*/, const kroui::Rect& /*caretRect*/) override {}
    std::u16string ClipboardText() override;
    void SetClipboardText(std::u16string_view text) override;
    kroui::Rect OverlayRoom(kroui::Size window) override;
    std::unique_ptr<kroui::ui::OverlaySurface> MakeOverlaySurface(const kroui::Rect& place, bool takesEvents) override;

    struct Event; // one of the X server's
    void Handle(Event& event);
    bool TakeFromOverlay(Event& event);
    void HandleButton(const Event& event);
    void HandleKey(Event& event);
    void HandleSelectionRequest(const Event& event);
    void FitContent();
    int ClicksOf(const Event& event);
    kroui::Point ToView(int x, int y) const;
    struct PixelPlace {
        int left;
        int top;
    };
    struct PixelSize {
        int width;
        int height;
    };
    PixelPlace PlaceOnScreen() const;
    PixelSize SeenSize();
    void Ask(kroui::Size size);
    void GrabPointer();
    void OverlayClosed(unsigned long handle);

    static std::vector<X11Window*> sWindows; // of the process

    std::unique_ptr<X11Connection> fConnection; // goes last
    const kroui::limner::CairoSupplier& fSupplier;
    kroui::limner::PixelSurface fSurface;
    unsigned long fHandle = 0;
    unsigned long fParent;
    std::unique_ptr<X11Picture> fPicture;
    std::unique_ptr<X11TextInput> fTextInput;
    std::unique_ptr<kroui::ui::UI_Window> fWindow;
    // What of it stands outside, by its window; left and top in this window's pixels.
    struct OverlayAt {
        X11Overlay* surface;
        int left;
        int top;
        bool takesEvents;
    };
    std::map<unsigned long, OverlayAt> fOverlays;
    std::set<unsigned long> fAround; // windows that it stands in
    int fAskedWidth = 0;
    int fAskedHeight = 0;
    int fPixelWidth = 0; // that it has
    int fPixelHeight = 0;
    std::map<kroui::ui::Cursor, unsigned long> fCursors;
    kroui::ui::Cursor fCursor = kroui::ui::Cursor::kArrow;
    std::u16string fClipboard;    // while the window owns the selection
    unsigned long fLastPress = 0; // milliseconds of the X server
    int fLastX = 0;
    int fLastY = 0;
    int fClicks = 0;
};

} // namespace krox11
