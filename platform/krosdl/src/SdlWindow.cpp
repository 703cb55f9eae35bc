#include "krosdl/SdlWindow.h"

#include "InputWait.h"
#include "SdlKeys.h"
#include "krocore/FilePath.h"
#include "krocore/String.h"
#include "krocore/config/Error.h"
#include "kroui/ui/UI_NodeManager.h"

#define SDL_MAIN_HANDLED
#include <SDL.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>

namespace krosdl {

using krocore::config::Error;
using kroui::Point;
using kroui::Rect;
using kroui::ui::Cursor;
using kroui::ui::Key;
using kroui::ui::KeyEvent;

namespace {

constexpr double kLeastSecondsBetweenPaints = 1.0 / 120;
constexpr int kLongestWait = 1000;       // ms
constexpr double kLongestUnasked = 0.05; // seconds

kroui::ui::UI_NodeManager& Timers() {
    return kroui::ui::UI_NodeManager::Get();
}

// All windows that there are. Handlers may open and delete some.
std::vector<SdlWindow*>& Windows() {
    static std::vector<SdlWindow*> windows;
    return windows;
}

// The window that an event is for; 0 for one that is for all.
Uint32 WindowOf(const SDL_Event& event) {
    switch (event.type) {
    case SDL_WINDOWEVENT: return event.window.windowID;
    case SDL_MOUSEMOTION: return event.motion.windowID;
    case SDL_MOUSEBUTTONDOWN:
    case SDL_MOUSEBUTTONUP: return event.button.windowID;
    case SDL_MOUSEWHEEL: return event.wheel.windowID;
    case SDL_KEYDOWN: return event.key.windowID;
    case SDL_TEXTINPUT: return event.text.windowID;
    case SDL_DROPFILE:
    case SDL_DROPCOMPLETE: return event.drop.windowID;
    default: return 0;
    }
}

// Without a screen SDL takes a driver that shows nothing, and says that all is well.
bool IsScreenThere() {
    if (std::getenv("SDL_VIDEODRIVER") != nullptr) return true;
    const std::string driver = SDL_GetCurrentVideoDriver();
    return driver != "offscreen" && driver != "dummy" && driver != "evdev";
}

SDL_SystemCursor SystemCursor(Cursor cursor) {
    switch (cursor) {
    case Cursor::kHand: return SDL_SYSTEM_CURSOR_HAND;
    case Cursor::kText: return SDL_SYSTEM_CURSOR_IBEAM;
    case Cursor::kHorizontal: return SDL_SYSTEM_CURSOR_SIZEWE;
    case Cursor::kVertical: return SDL_SYSTEM_CURSOR_SIZENS;
    case Cursor::kMove: return SDL_SYSTEM_CURSOR_SIZEALL;
    case Cursor::kCross: return SDL_SYSTEM_CURSOR_CROSSHAIR;
    case Cursor::kArrow: break;
    }
    return SDL_SYSTEM_CURSOR_ARROW;
}

// A letter that may come as text, too.
bool CanBeText(const KeyEvent& event) {
    return (event.key == Key::kCharacter || event.key == Key::kSpace) && !event.Has(kroui::ui::kCommand) &&
           !event.Has(kroui::ui::kAlt);
}

SDL_Rect ToSdl(const Rect& rect) {
    return {static_cast<int>(rect.left), static_cast<int>(rect.top), static_cast<int>(rect.width),
            static_cast<int>(rect.height)};
}

std::uint8_t CurrentModifiers() {
    return ModifiersFromSdl(static_cast<unsigned>(SDL_GetModState()));
}

// Buttons 1, 2, 3 are numbered alike; others the toolkit does not know.
bool IsKnownButton(int button) {
    return button >= SDL_BUTTON_LEFT && button <= SDL_BUTTON_RIGHT;
}

} // namespace

struct SdlWindow::SdlLibrary {
    SdlLibrary() {
        SDL_SetMainReady();
        // Plain copies of the parts that changed cost less than a round trip through a graphics library.
        SDL_SetHint(SDL_HINT_FRAMEBUFFER_ACCELERATION, "0");
        SDL_SetHint(SDL_HINT_VIDEO_ALLOW_SCREENSAVER, "1");
        SDL_SetHint(SDL_HINT_MOUSE_FOCUS_CLICKTHROUGH, "1");
        // Of 32 units by default, in which a slider moves a long way.
        SDL_SetHint(SDL_HINT_MOUSE_DOUBLE_CLICK_RADIUS, "4");
        if (SDL_InitSubSystem(SDL_INIT_VIDEO) != 0) Refuse(SDL_GetError());
        if (!IsScreenThere()) {
            SDL_QuitSubSystem(SDL_INIT_VIDEO);
            Refuse("none was found");
        }
    }
    SdlLibrary(const SdlLibrary&) = delete;
    SdlLibrary& operator=(const SdlLibrary&) = delete;
    ~SdlLibrary() { SDL_QuitSubSystem(SDL_INIT_VIDEO); }

    [[noreturn]] static void Refuse(const std::string& reason) {
        throw Error("there is no screen to open a window on: " + reason);
    }
};

SdlWindow::SdlWindow(const kroui::limner::CairoSupplier& supplier, const Settings& settings)
    : fLibrary(std::make_unique<SdlLibrary>()), fSurface(supplier), fSettings(settings) {
    const auto points = [&settings](float units) { return static_cast<int>(std::lround(units * settings.scale)); };
    constexpr Uint32 kFlags = SDL_WINDOW_RESIZABLE | SDL_WINDOW_ALLOW_HIGHDPI | SDL_WINDOW_HIDDEN;
    const SDL_Rect screen = UsableScreen();
    fSystemWindow = SDL_CreateWindow("", SDL_WINDOWPOS_CENTERED, SDL_WINDOWPOS_CENTERED,
                                     std::min(points(settings.size.width), screen.w),
                                     std::min(points(settings.size.height), screen.h), kFlags);
    if (fSystemWindow == nullptr) SdlLibrary::Refuse(SDL_GetError());
    fID = SDL_GetWindowID(fSystemWindow);
    fInputWait = std::make_unique<InputWait>(*fSystemWindow);
    kroui::ui::WindowBackend& backend = *this;
    fWindow = std::make_unique<kroui::ui::UI_Window>(supplier, backend);
    FitContent();
    Windows().push_back(this);
}

SdlWindow::~SdlWindow() {
    std::erase(Windows(), this);
    fWindow.reset();
    for (const auto& [cursor, handle] : fCursors)
        SDL_FreeCursor(handle);
    if (fSystemWindow != nullptr) SDL_DestroyWindow(fSystemWindow);
}

// Of the display that the window is on.
SDL_Rect SdlWindow::UsableScreen() const {
    SDL_Rect screen{0, 0, 0, 0};
    constexpr int kAnySize = 1 << 14;
    const int display = fSystemWindow != nullptr ? std::max(0, SDL_GetWindowDisplayIndex(fSystemWindow)) : 0;
    if (SDL_GetDisplayUsableBounds(display, &screen) != 0) return {0, 0, kAnySize, kAnySize};
    return screen;
}

float SdlWindow::LargestZoom() const {
    const SDL_Rect screen = UsableScreen();
    const float across = static_cast<float>(screen.w) / (fSettings.smallestSize.width * fSettings.scale);
    const float down = static_cast<float>(screen.h) / (fSettings.smallestSize.height * fSettings.scale);
    return std::max(1.0F, std::min(across, down));
}

void SdlWindow::SetTitle(std::u16string_view title) {
    SDL_SetWindowTitle(fSystemWindow, krocore::ToStdString(title).c_str());
}

void SdlWindow::Resize(kroui::Size size) {
    const SDL_Rect screen = UsableScreen();
    SDL_SetWindowSize(fSystemWindow, PointsFor(size.width, screen.w), PointsFor(size.height, screen.h));
    KeepOnScreen();
    FitContent();
    fWindow->InvalidateAll();
}

void SdlWindow::KeepOnScreen() {
    if ((SDL_GetWindowFlags(fSystemWindow) & SDL_WINDOW_HIDDEN) != 0)
        return SDL_SetWindowPosition(fSystemWindow, SDL_WINDOWPOS_CENTERED, SDL_WINDOWPOS_CENTERED);
    const SDL_Rect screen = UsableScreen();
    SDL_Rect window{0, 0, 0, 0};
    SDL_GetWindowPosition(fSystemWindow, &window.x, &window.y);
    SDL_GetWindowSize(fSystemWindow, &window.w, &window.h);
    const int x = std::max(screen.x, std::min(window.x, screen.x + screen.w - window.w));
    const int y = std::max(screen.y, std::min(window.y, screen.y + screen.h - window.h));
    if (x != window.x || y != window.y) SDL_SetWindowPosition(fSystemWindow, x, y);
}

void SdlWindow::Show() {
    FitContent();
    SDL_ShowWindow(fSystemWindow);
    // Letters choose in lists, so that they are always wanted as text.
    SDL_StartTextInput();
}

void SdlWindow::Close() {
    fIsOpen = false;
    SDL_HideWindow(fSystemWindow);
}

void SdlWindow::Run(const boost::function<void()>& idle) {
    Show();
    while (fIsOpen) {
        if (WaitForInput()) HandleInput();
        Timers().RunTimers();
        for (std::size_t i = 0; i < Windows().size(); ++i)
            Windows()[i]->PaintIfDue();
        if (idle && !IsAnythingToPaint()) idle();
    }
}

// Whether SDL is to be asked for events: there is input, or it was not asked for a while (requests to quit come without
// input).
bool SdlWindow::WaitForInput() {
    const int milliseconds = MillisecondsToWait();
    if (!fInputWait->IsAvailable()) return SDL_WaitEventTimeout(nullptr, milliseconds) != 0;
    const bool isThere = fInputWait->For(milliseconds);
    if (!isThere && Timers().Now() - fLastInput < kLongestUnasked) return false;
    fLastInput = Timers().Now();
    return true;
}

void SdlWindow::HandleInput() {
    SDL_Event event;
    while (SDL_PollEvent(&event) != 0)
        Dispatch(event);
    for (std::size_t i = 0; i < Windows().size(); ++i)
        Windows()[i]->FinishKey();
}

// Events of a window that is gone may still come.
void SdlWindow::Dispatch(const SDL_Event& event) {
    if (event.type == SDL_QUIT) {
        for (SdlWindow* const window : Windows())
            window->Close();
    }
    const auto isMeant = [id = WindowOf(event)](const SdlWindow* window) { return window->fID == id; };
    const auto window = std::ranges::find_if(Windows(), isMeant);
    if (window != Windows().end()) {
        (*window)->Handle(event);
    } else if (event.type == SDL_DROPFILE) {
        SDL_free(event.drop.file);
    }
}

int SdlWindow::MillisecondsToWait() {
    double seconds = kLongestWait / 1000.0;
    if (const double toTimer = Timers().SecondsToNextTimer(); toTimer >= 0) seconds = std::min(seconds, toTimer);
    for (const SdlWindow* const window : Windows())
        seconds = std::min(seconds, window->SecondsToPaint());
    return static_cast<int>(std::ceil(seconds * 1000));
}

bool SdlWindow::IsAnythingToPaint() {
    return std::ranges::any_of(Windows(),
                               [](const SdlWindow* window) { return std::isfinite(window->SecondsToPaint()); });
}

// Infinite when there is nothing to paint.
double SdlWindow::SecondsToPaint() const {
    if (!fIsOpen || !fWindow->NeedsPaint()) return std::numeric_limits<double>::infinity();
    return std::max(0.0, fLastPaint + kLeastSecondsBetweenPaints - Timers().Now());
}

void SdlWindow::PaintIfDue() {
    if (SecondsToPaint() > 0) return;
    fLastPaint = Timers().Now();
    FitContent();
    fWindow->Paint();
}

// Gives the content the size that the window has, in its own units, which zoom and screen may change.
void SdlWindow::FitContent() {
    int points = 0;
    SDL_GetWindowSize(fSystemWindow, &points, nullptr);
    int width = 0;
    int height = 0;
    SDL_GetWindowSizeInPixels(fSystemWindow, &width, &height);
    const float hostScale = fSettings.scale * static_cast<float>(width) / static_cast<float>(std::max(1, points));
    if (hostScale != fHostScale) fWindow->SetHostScale(hostScale);
    fHostScale = hostScale;
    const float scale = fWindow->ScaleFactor();
    if (scale != fFittedScale) HoldSmallestSize();
    fFittedScale = scale;
    const kroui::Size size = {static_cast<float>(width) / scale, static_cast<float>(height) / scale};
    fWindow->SetSize(size);
    if (fWindow->Content()) fWindow->Content()->UI_SetFrame({0, 0, size.width, size.height});
}

void SdlWindow::HoldSmallestSize() {
    const SDL_Rect screen = UsableScreen();
    SDL_SetWindowMinimumSize(fSystemWindow, PointsFor(fSettings.smallestSize.width, screen.w),
                             PointsFor(fSettings.smallestSize.height, screen.h));
}

int SdlWindow::PointsFor(float units, int most) const {
    return std::clamp(static_cast<int>(std::lround(units / UnitsPerPoint())), 1, most);
}

float SdlWindow::UnitsPerPoint() const {
    return fHostScale / (fSettings.scale * fWindow->ScaleFactor());
}

Point SdlWindow::ToView(int x, int y) const {
    const float units = UnitsPerPoint();
    return {static_cast<float>(x) * units, static_cast<float>(y) * units};
}

Point SdlWindow::PointerInView() const {
    int x = 0;
    int y = 0;
    SDL_GetMouseState(&x, &y);
    return ToView(x, y);
}

void SdlWindow::Handle(const SDL_Event& event) {
    if (event.type != SDL_TEXTINPUT) FinishKey();
    switch (event.type) {
    case SDL_WINDOWEVENT: HandleWindowEvent(event.window); break;
    case SDL_MOUSEMOTION:
        if (!IsMotionNext()) fWindow->MouseMoved(ToView(event.motion.x, event.motion.y), CurrentModifiers());
        break;
    case SDL_MOUSEBUTTONDOWN:
    case SDL_MOUSEBUTTONUP: HandleButton(event.button); break;
    case SDL_MOUSEWHEEL:
        fWindow->MouseWheel(PointerInView(), event.wheel.preciseX, event.wheel.preciseY, CurrentModifiers());
        break;
    case SDL_KEYDOWN: HandleKey(KeyFromSdl(event.key.keysym, event.key.repeat != 0)); break;
    case SDL_TEXTINPUT: HandleText(event.text.text); break;
    case SDL_DROPFILE:
        fDropped.push_back(krocore::PathFromText(event.drop.file));
        SDL_free(event.drop.file);
        break;
    case SDL_DROPCOMPLETE:
        fWindow->FilesDropped(fDropped, PointerInView());
        fDropped.clear();
        break;
    default: break;
    }
}

// Of a row of moves only the last counts.
bool SdlWindow::IsMotionNext() const {
    SDL_Event next;
    return SDL_PeepEvents(&next, 1, SDL_PEEKEVENT, SDL_FIRSTEVENT, SDL_LASTEVENT) == 1 &&
           next.type == SDL_MOUSEMOTION && next.motion.windowID == fID;
}

void SdlWindow::HandleWindowEvent(const SDL_WindowEvent& event) {
    switch (event.event) {
    case SDL_WINDOWEVENT_SIZE_CHANGED:
        FitContent();
        fWindow->InvalidateAll();
        break;
    case SDL_WINDOWEVENT_EXPOSED: ShowAll(); break;
    case SDL_WINDOWEVENT_LEAVE: fWindow->MouseLeft(); break;
    case SDL_WINDOWEVENT_FOCUS_LOST: fWindow->Deactivated(); break;
    case SDL_WINDOWEVENT_ENTER: ShowCursor(); break; // the system has one for all windows
    case SDL_WINDOWEVENT_CLOSE: Close(); break;
    default: break;
    }
}

void SdlWindow::HandleButton(const SDL_MouseButtonEvent& event) {
    if (!IsKnownButton(event.button)) return;
    const Point place = ToView(event.x, event.y);
    if (event.type == SDL_MOUSEBUTTONDOWN) {
        fWindow->MousePressed(place, event.button, event.clicks, CurrentModifiers());
    } else {
        fWindow->MouseReleased(place, event.button, CurrentModifiers());
    }
}

void SdlWindow::HandleKey(const KeyEvent& event) {
    if (event.key == Key::kNone) return;
    if (CanBeText(event)) {
        fHeldKey = event;
    } else {
        fWindow->KeyPressed(event);
    }
}

// What a text field or a list takes as text is no shortcut.
void SdlWindow::HandleText(std::string_view text) {
    if (fWindow->TextTyped(krocore::ToUTF16(text))) fHeldKey.reset();
    FinishKey();
}

void SdlWindow::FinishKey() {
    if (const auto key = std::exchange(fHeldKey, std::nullopt)) fWindow->KeyPressed(*key);
}

// What waits to be painted is shown then, not an old picture or none.
void SdlWindow::ShowAll() {
    if (fWindow->NeedsPaint()) return fWindow->InvalidateAll();
    const Rect all = {0, 0, static_cast<float>(fSurface.PixelWidth()), static_cast<float>(fSurface.PixelHeight())};
    if (!all.IsEmpty()) Present({&all, 1});
}

void SdlWindow::Present(std::span<const Rect> pixelRects) {
    SDL_Surface* const shown = SDL_GetWindowSurface(fSystemWindow);
    // SDL takes no constant pixels, but only reads them here.
    SDL_Surface* const drawn =
        SDL_CreateRGBSurfaceWithFormatFrom(const_cast<std::uint32_t*>(fSurface.Pixels()), fSurface.PixelWidth(),
                                           fSurface.PixelHeight(), 32, fSurface.Stride(), SDL_PIXELFORMAT_RGB888);
    if (shown != nullptr && drawn != nullptr) {
        std::vector<SDL_Rect> rects;
        for (const Rect& part : pixelRects) {
            SDL_Rect from = ToSdl(part);
            SDL_Rect to = from;
            SDL_BlitSurface(drawn, &from, shown, &to);
            if (to.w > 0 && to.h > 0) rects.push_back(to);
        }
        SDL_UpdateWindowSurfaceRects(fSystemWindow, rects.data(), static_cast<int>(rects.size()));
    }
    SDL_FreeSurface(drawn);
}

void SdlWindow::SetCursor(Cursor cursor) {
    if (cursor == fCursor) return;
    fCursor = cursor;
    ShowCursor();
}

void SdlWindow::ShowCursor() {
    auto [entry, isNew] = fCursors.try_emplace(fCursor, nullptr);
    if (isNew) entry->second = SDL_CreateSystemCursor(SystemCursor(fCursor));
    SDL_SetCursor(entry->second);
}

void SdlWindow::SetTextInput(bool on, const Rect& caretRect) {
    if (!on) return;
    const float pointsAUnit = 1 / UnitsPerPoint();
    const SDL_Rect rect = ToSdl(kroui::RoundedOut({caretRect.left * pointsAUnit, caretRect.top * pointsAUnit,
                                                   caretRect.width * pointsAUnit, caretRect.height * pointsAUnit}));
    SDL_SetTextInputRect(&rect);
}

std::u16string SdlWindow::ClipboardText() {
    const std::unique_ptr<char, decltype(&SDL_free)> text(SDL_GetClipboardText(), &SDL_free);
    if (!text) return {};
    const krocore::string16 wide = krocore::ToUTF16(text.get());
    return {wide.begin(), wide.end()};
}

void SdlWindow::SetClipboardText(std::u16string_view text) {
    SDL_SetClipboardText(krocore::ToStdString(text).c_str());
}

} // namespace krosdl
