#pragma once

#include "kroui/limner/CairoSupplier.h"
#include "kroui/limner/PixelSurface.h"
#include "kroui/ui/UI_Window.h"

#include <boost/function.hpp>

#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <vector>

struct SDL_Window;
struct SDL_Cursor;
struct SDL_MouseButtonEvent;
struct SDL_Rect;
struct SDL_WindowEvent;
union SDL_Event;

namespace krosdl {

class InputWait;

// A window on the screen, through SDL: shows what UI_Window paints and hands it what the user does. Owned by the
// program, which runs its loop on the main thread; everything here is for that thread. A program may have several
// windows, opened and closed in any order: the loop that one of them runs serves all, each with its own scale and
// theme.
//
// The content is as large as the window: it is given the window's size, and another one whenever the user or Resize
// changes it. A panel that changes its size by itself, such as one whose "Advanced" section opens, says so by its
// GetContentSizeChangedSignal and is cut off at the window's edge unless the program answers with Resize, or scrolls.
class SdlWindow final : private kroui::ui::WindowBackend {
public:
    struct Settings {
        kroui::Size size;         // view units at scale 1, as is the next
        kroui::Size smallestSize; // empty: any
        float scale = 1;          // on top of the screen's own
    };

    // Opens the window, not yet shown and without a title. The supplier outlives it. Throws krocore::config::Error when
    // there is no screen.
    SdlWindow(const kroui::limner::CairoSupplier& supplier, const Settings& settings);
    ~SdlWindow() override;

    kroui::ui::UI_Window& Window() { return *fWindow; }
    // The largest zoom at which the smallest size still fits on the screen; at least 1.
    float LargestZoom() const;
    void SetTitle(std::u16string_view title);
    // Gives the window room for so many view units of content, as far as the screen has it, and moves it where it would
    // reach beyond the screen; one that is not yet shown goes to the middle.
    void Resize(kroui::Size size);

    // Puts the window on the screen, for the loop of another one to serve.
    void Show();
    // The event loop: shows the window and lives for it until the user closes it, or Close is called; other windows are
    // served meanwhile. Runs the timers of all nodes, and between events sleeps until the next one is due. `idle`, if
    // there is one, is called whenever everything is painted, at least once a second: the place to delete windows that
    // are no longer open. What it or a handler throws passes on. A handler may run another window's loop.
    void Run(const boost::function<void()>& idle);
    // Takes the window from the screen, and ends its Run.
    void Close();
    bool IsOpen() const { return fIsOpen; }

private:
    void RequestPaint() override {}
    kroui::limner::Surface& GetSurface() override { return fSurface; }
    void Present(std::span<const kroui::Rect> pixelRects) override;
    void SetCursor(kroui::ui::Cursor cursor) override;
    void SetTextInput(bool on, const kroui::Rect& caretRect) override;
    std::u16string ClipboardText() override;
    void SetClipboardText(std::u16string_view text) override;

    SDL_Rect UsableScreen() const;
    void KeepOnScreen();
    static int MillisecondsToWait();
    static bool IsAnythingToPaint();
    static void HandleInput();
    static void Dispatch(const SDL_Event& event);
    bool WaitForInput();
    double SecondsToPaint() const;
    void PaintIfDue();
    void FitContent();
    void HoldSmallestSize();
    int PointsFor(float units, int most) const;
    void ShowAll();
    void ShowCursor();
    float UnitsPerPoint() const; // a point is what the system counts windows in
    kroui::Point ToView(int x, int y) const;
    kroui::Point PointerInView() const;
    bool IsMotionNext() const;
    void Handle(const SDL_Event& event);
    void HandleWindowEvent(const SDL_WindowEvent& event);
    void HandleButton(const SDL_MouseButtonEvent& event);
    void HandleKey(const kroui::ui::KeyEvent& event);
    void HandleText(std::string_view text);
    void FinishKey();

    struct SdlLibrary;
    std::unique_ptr<SdlLibrary> fLibrary; // goes last
    kroui::limner::PixelSurface fSurface;
    SDL_Window* fSystemWindow = nullptr;
    std::uint32_t fID = 0; // what SDL knows the window by
    std::unique_ptr<kroui::ui::UI_Window> fWindow;
    Settings fSettings;
    std::map<kroui::ui::Cursor, SDL_Cursor*> fCursors;
    kroui::ui::Cursor fCursor = kroui::ui::Cursor::kArrow;
    std::optional<kroui::ui::KeyEvent> fHeldKey; // a letter that may yet turn out to be text
    std::vector<std::filesystem::path> fDropped; // files of the drop that is being told of
    std::unique_ptr<InputWait> fInputWait;
    double fLastInput = 0; // when SDL was asked for events, seconds
    double fLastPaint = 0; // seconds
    float fHostScale = 0;
    float fFittedScale = 0;
    bool fIsOpen = true;
};

} // namespace krosdl
