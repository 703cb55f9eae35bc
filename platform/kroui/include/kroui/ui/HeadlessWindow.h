#pragma once

#include "kroui/limner/CairoSupplier.h"
#include "kroui/limner/PixelSurface.h"
#include "kroui/ui/UI_Window.h"

namespace kroui::ui {

// A window without a screen: paints into a picture, takes synthetic events, and owns the clock of the timers while it
// lives. For tests and for rendering panels to files.
class HeadlessWindow : private WindowBackend {
public:
    HeadlessWindow(const limner::CairoSupplier& supplier, Size size, float scale = 1);
    ~HeadlessWindow() override;

    UI_Window& Window() { return fWindow; }

    // Lets time pass, running timers as they come due, and paints.
    void Advance(double seconds);
    // Paints what is damaged; returns the pixels painted and leaves their rectangles in LastDamage.
    long Paint();
    std::span<const Rect> LastDamage() const { return fLastDamage; } // pixels

    // A gesture of the pointer, each with the moves a real one has. Positions in window coordinates.
    void Click(Point position, std::uint8_t modifiers = kNoModifier, int button = 1);
    void DoubleClick(Point position, std::uint8_t modifiers = kNoModifier);
    void Press(Point position, std::uint8_t modifiers = kNoModifier, int button = 1);
    void MoveTo(Point position, std::uint8_t modifiers = kNoModifier);
    void Release(std::uint8_t modifiers = kNoModifier, int button = 1);
    void Drag(Point from, Point to, int steps = 8, std::uint8_t modifiers = kNoModifier);
    void Wheel(Point position, float notches, std::uint8_t modifiers = kNoModifier);
    bool PressKey(Key key, std::uint8_t modifiers = kNoModifier, char16_t character = 0);
    bool Type(std::u16string_view text);

    // The middle of a node, in window coordinates.
    static Point CentreOf(const UI_Node& node);
    limner::ImagePtr Snapshot();

    // Gives the window a screen around it, in window coordinates: what is shown over the content may leave it then.
    void SetScreen(const Rect& screen) { fScreen = screen; }
    // What stands outside the window, the last shown last: its place in window coordinates, and its picture.
    struct Outside {
        Rect place;
        bool takesEvents;
        limner::ImagePtr picture;
    };
    std::vector<Outside> ShownOutside() const;

    Cursor CurrentCursor() const { return fCursor; }
    std::u16string& Clipboard() { return fClipboard; }

private:
    void RequestPaint() override {}
    limner::Surface& GetSurface() override { return fSurface; }
    void Present(std::span<const Rect> pixelRects) override;
    void SetCursor(Cursor cursor) override { fCursor = cursor; }
    void SetTextInput(bool, const Rect&) override {}
    std::u16string ClipboardText() override { return fClipboard; }
    void SetClipboardText(std::u16string_view text) override { fClipboard = text; }
    Rect OverlayRoom(Size window) override;
    std::unique_ptr<OverlaySurface> MakeOverlaySurface(const Rect& place, bool takesEvents) override;

    class OutsideSurface;

    double fTime = 0;
    limner::PixelSurface fSurface;
    std::vector<const OutsideSurface*> fOutside;
    Rect fScreen; // empty for none
    UI_Window fWindow;
    std::vector<Rect> fLastDamage;
    std::u16string fClipboard;
    Point fPointer;
    Cursor fCursor = Cursor::kArrow;
};

} // namespace kroui::ui
