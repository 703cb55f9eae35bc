#pragma once

#include "kroui/limner/CairoSupplier.h"
#include "kroui/limner/PixelSurface.h"
#include "kroui/ui/UI_Window.h"

#include <boost/function.hpp>

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
// program, which runs its loop on the main thread.
class SdlWindow final : private kroui::ui::WindowBackend {
public:
    struct Settings {
        kroui::Size size; // view units at scale 1, as is the next
        kroui::Size smallestSize;
        float scale = 1; // on top of the screen's own
    };

    // Opens the window, not yet shown. The supplier outlives it. Throws krocore::config::Error when there is no screen.
    SdlWindow(const kroui::limner::CairoSupplier& supplier, const Settings& settings);
    ~SdlWindow() override;

    kroui::ui::UI_Window& Window() { return *fWindow; }
    // The largest zoom at which the smallest size still fits on the screen; at least 1.
    float LargestZoom() const;
    void SetTitle(std::u16string_view title);

    // Shows the window and lives for it until the user closes it. Between events it sleeps until the next timer is due.
    // `idle` is called whenever everything is painted.
    void Run(const boost::function<void()>& idle);

private:
    void RequestPaint() override {}
    kroui::limner::Surface& GetSurface() override { return fSurface; }
    void Present(std::span<const kroui::Rect> pixelRects) override;
    void SetCursor(kroui::ui::Cursor cursor) override;
    void SetTextInput(bool on, const kroui::Rect& caretRect) override;
    std::u16string ClipboardText() override;
    void SetClipboardText(std::u16string_view text) override;

    static SDL_Rect UsableScreen();
    static bool IsMotionNext();
    int MillisecondsToWait() const;
    bool WaitForInput();
    void HandleInput();
    void PaintIfDue();
    void FitContent();
    void HoldSmallestSize();
    void ShowAll();
    float UnitsPerPoint() const; // a point is what the system counts windows in
    kroui::Point ToView(int x, int y) const;
    kroui::Point PointerInView() const;
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
