#include "krox11/X11Window.h"

#include "X11Connection.h"
#include "X11Keys.h"
#include "X11Overlay.h"
#include "X11Picture.h"
#include "X11TextInput.h"
#include "krocore/String.h"

#include <X11/Xatom.h>
#include <X11/Xutil.h>
#include <X11/cursorfont.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <thread>

namespace krox11 {

using kroui::Point;
using kroui::Rect;
using kroui::ui::Cursor;
using kroui::ui::Key;

namespace {

constexpr long kEvents = ExposureMask | StructureNotifyMask | PointerMotionMask | ButtonPressMask | ButtonReleaseMask |
                         KeyPressMask | EnterWindowMask | LeaveWindowMask | FocusChangeMask;
constexpr unsigned long kDoubleClick = 400; // ms
constexpr int kDoubleClickRadius = 4;       // pixels
constexpr unsigned kFirstWheelButton = 4;
constexpr unsigned kLastWheelButton = 7;

unsigned ShapeOf(Cursor cursor) {
    switch (cursor) {
    case Cursor::kHand: return XC_hand2;
    case Cursor::kText: return XC_xterm;
    case Cursor::kHorizontal: return XC_sb_h_double_arrow;
    case Cursor::kVertical: return XC_sb_v_double_arrow;
    case Cursor::kMove: return XC_fleur;
    case Cursor::kCross: return XC_crosshair;
    case Cursor::kArrow: break;
    }
    return XC_left_ptr;
}

} // namespace

struct X11Window::Event {
    XEvent x;
};

std::vector<X11Window*> X11Window::sWindows;

X11Window::X11Window(const kroui::limner::CairoSupplier& supplier, const Settings& settings)
    : fConnection(std::make_unique<X11Connection>()), fSupplier(supplier), fSurface(supplier) {
    Display* const display = fConnection->Get();
    fParent = settings.parent != 0 ? settings.parent : DefaultRootWindow(display);
    kroui::ui::WindowBackend& backend = *this;
    fWindow = std::make_unique<kroui::ui::UI_Window>(supplier, backend);
    fWindow->SetHostScale(settings.scale);
    fWindow->SetZoom(settings.zoom);
    Ask(settings.size);
    fPixelWidth = fAskedWidth;
    fPixelHeight = fAskedHeight;
    XSetWindowAttributes attributes{};
    attributes.event_mask = kEvents;
    fHandle =
        XCreateWindow(display, fParent, 0, 0, static_cast<unsigned>(fPixelWidth), static_cast<unsigned>(fPixelHeight),
                      0, CopyFromParent, InputOutput, nullptr, CWEventMask, &attributes);
    fPicture = std::make_unique<X11Picture>(*fConnection, fHandle);
    fTextInput = std::make_unique<X11TextInput>(display, fHandle);
    FitContent();
    sWindows.push_back(this);
}

X11Window::~X11Window() {
    std::erase(sWindows, this);
    fWindow.reset();
    fPicture.reset();
    fTextInput.reset();
    for (const auto& [cursor, shape] : fCursors)
        XFreeCursor(fConnection->Get(), shape);
    XDestroyWindow(fConnection->Get(), fHandle);
}

void X11Window::Show() {
    FitContent();
    XMapRaised(fConnection->Get(), fHandle);
    XFlush(fConnection->Get());
}

void X11Window::Ask(kroui::Size size) {
    const float scale = fWindow->ScaleFactor();
    fAskedWidth = std::max(1, static_cast<int>(std::ceil(size.width * scale)));
    fAskedHeight = std::max(1, static_cast<int>(std::ceil(size.height * scale)));
}

// What it comes to is told by an event.
void X11Window::Resize(kroui::Size size) {
    Ask(size);
    XResizeWindow(fConnection->Get(), fHandle, static_cast<unsigned>(fAskedWidth), static_cast<unsigned>(fAskedHeight));
    XFlush(fConnection->Get());
    FitContent();
}

void X11Window::Idle() {
    Display* const display = fConnection->Get();
    while (XPending(display) > 0) {
        Event event{};
        XNextEvent(display, &event.x);
        if (!fTextInput->Keeps(event.x)) Handle(event);
    }
    if (fWindow->NeedsPaint()) fWindow->Paint();
}

// The content fills what can be seen of the window: there are hosts that leave it as large as it wants to be in a
// window that is smaller.
void X11Window::FitContent() {
    const float scale = fWindow->ScaleFactor();
    const PixelSize seen = SeenSize();
    const kroui::Size size = {static_cast<float>(seen.width) / scale, static_cast<float>(seen.height) / scale};
    fWindow->SetSize(size);
    if (fWindow->Content() != nullptr) fWindow->Content()->UI_SetFrame({0, 0, size.width, size.height});
}

Point X11Window::ToView(int x, int y) const {
    const float scale = fWindow->ScaleFactor();
    return {static_cast<float>(x) / scale, static_cast<float>(y) / scale};
}

// What the pointer does over a menu outside is done at that place of the window.
bool X11Window::TakeFromOverlay(Event& event) {
    const auto overlay = fOverlays.find(event.x.xany.window);
    if (overlay == fOverlays.end()) return false;
    const OverlayAt& at = overlay->second;
    switch (event.x.type) {
    case Expose:
        if (event.x.xexpose.count == 0) at.surface->ShowAll();
        return true;
    case MotionNotify:
        event.x.xmotion.x += at.left;
        event.x.xmotion.y += at.top;
        return false;
    case ButtonPress:
    case ButtonRelease:
        event.x.xbutton.x += at.left;
        event.x.xbutton.y += at.top;
        return false;
    case LeaveNotify: return false;
    default: return true;
    }
}

void X11Window::Handle(Event& event) {
    if (TakeFromOverlay(event)) return;
    switch (event.x.type) {
    case Expose: fWindow->InvalidateAll(); break;
    case ReparentNotify: FitContent(); break;
    case ConfigureNotify:
        if (event.x.xconfigure.window == fHandle) {
            fPixelWidth = event.x.xconfigure.width;
            fPixelHeight = event.x.xconfigure.height;
        }
        FitContent();
        break;
    case MotionNotify:
        fWindow->MouseMoved(ToView(event.x.xmotion.x, event.x.xmotion.y), ModifiersFromX11(event.x.xmotion.state));
        break;
    case ButtonPress:
    case ButtonRelease: HandleButton(event); break;
    case KeyPress: HandleKey(event); break;
    case LeaveNotify:
        if (event.x.xcrossing.mode == NotifyNormal) fWindow->MouseLeft();
        break;
    case FocusIn: fTextInput->SetFocus(true); break;
    case FocusOut:
        fTextInput->SetFocus(false);
        if (event.x.xfocus.mode == NotifyNormal && event.x.xfocus.detail != NotifyPointer) fWindow->Deactivated();
        break;
    case SelectionRequest: HandleSelectionRequest(event); break;
    case SelectionClear: fClipboard.clear(); break;
    default: break;
    }
}

void X11Window::HandleButton(const Event& event) {
    const XButtonEvent& button = event.x.xbutton;
    const Point place = ToView(button.x, button.y);
    const std::uint8_t modifiers = ModifiersFromX11(button.state);
    if (button.button >= kFirstWheelButton && button.button <= kLastWheelButton) {
        const bool isDown = event.x.type == ButtonPress;
        const float notch = button.button % 2 == 0 ? 1 : -1;
        const bool isVertical = button.button < kFirstWheelButton + 2;
        if (isDown) fWindow->MouseWheel(place, isVertical ? 0 : -notch, isVertical ? notch : 0, modifiers);
        return;
    }
    if (button.button > Button3) return;
    if (event.x.type == ButtonPress) {
        XSetInputFocus(fConnection->Get(), fHandle, RevertToParent, button.time);
        fWindow->MousePressed(place, static_cast<int>(button.button), ClicksOf(event), modifiers);
    } else {
        fWindow->MouseReleased(place, static_cast<int>(button.button), modifiers);
    }
}

int X11Window::ClicksOf(const Event& event) {
    const XButtonEvent& button = event.x.xbutton;
    const bool isNear =
        std::abs(button.x - fLastX) <= kDoubleClickRadius && std::abs(button.y - fLastY) <= kDoubleClickRadius;
    fClicks = isNear && button.time - fLastPress < kDoubleClick ? fClicks + 1 : 1;
    fLastPress = button.time;
    fLastX = button.x;
    fLastY = button.y;
    return fClicks;
}

// What nobody here wants is the host's: space plays there.
void X11Window::HandleKey(Event& event) {
    XKeyEvent& key = event.x.xkey;
    const X11TextInput::Typed typed = fTextInput->Read(key);
    const kroui::ui::KeyEvent pressed = KeyFromX11(typed.symbol, key.state);
    if (!typed.text.empty() && fWindow->TextTyped(typed.text)) return;
    if (pressed.key != Key::kNone && fWindow->KeyPressed(pressed)) return;
    key.window = fParent;
    XSendEvent(fConnection->Get(), fParent, True, KeyPressMask, &event.x);
}

void X11Window::Present(std::span<const Rect> pixelRects) {
    fPicture->Show(fSurface, pixelRects);
}

// What the windows around it leave, of which the host may have several. From now on changes of theirs are told.
X11Window::PixelSize X11Window::SeenSize() {
    Display* const display = fConnection->Get();
    PixelSize seen{fPixelWidth, fPixelHeight};
    PixelPlace corner{0, 0}; // of the window, in the one that is looked at
    for (::Window window = fHandle; window != None;) {
        ::Window root = None;
        ::Window parent = None;
        ::Window* children = nullptr;
        unsigned count = 0;
        XWindowAttributes is{};
        if (XGetWindowAttributes(display, window, &is) == 0) break;
        if (window != fHandle) {
            seen.width = std::min(seen.width, is.width - corner.left);
            seen.height = std::min(seen.height, is.height - corner.top);
            if (fAround.insert(window).second) XSelectInput(display, window, StructureNotifyMask);
        }
        corner = {corner.left + is.x, corner.top + is.y};
        if (XQueryTree(display, window, &root, &parent, &children, &count) == 0) break;
        if (children != nullptr) XFree(children);
        window = parent == root ? None : parent;
    }
    return {std::max(1, seen.width), std::max(1, seen.height)};
}

X11Window::PixelPlace X11Window::PlaceOnScreen() const {
    Display* const display = fConnection->Get();
    PixelPlace place{};
    ::Window child = None;
    XTranslateCoordinates(display, fHandle, DefaultRootWindow(display), 0, 0, &place.left, &place.top, &child);
    return place;
}

Rect X11Window::OverlayRoom(kroui::Size /*window*/) {
    Display* const display = fConnection->Get();
    const int screen = DefaultScreen(display);
    const PixelPlace own = PlaceOnScreen();
    const float scale = fWindow->ScaleFactor();
    return {static_cast<float>(-own.left) / scale, static_cast<float>(-own.top) / scale,
            static_cast<float>(DisplayWidth(display, screen)) / scale,
            static_cast<float>(DisplayHeight(display, screen)) / scale};
}

std::unique_ptr<kroui::ui::OverlaySurface> X11Window::MakeOverlaySurface(const Rect& place, bool takesEvents) {
    const float scale = fWindow->ScaleFactor();
    const PixelPlace own = PlaceOnScreen();
    const PixelPlace corner{static_cast<int>(std::lround(place.left * scale)),
                            static_cast<int>(std::lround(place.top * scale))};
    const X11Picture::Part part{own.left + corner.left, own.top + corner.top,
                                static_cast<int>(std::ceil(place.width * scale)),
                                static_cast<int>(std::ceil(place.height * scale))};
    auto surface = std::make_unique<X11Overlay>(*fConnection, fSupplier, part, takesEvents);
    const ::Window handle = surface->Handle();
    surface->SetClosedHandler([this, handle] { OverlayClosed(handle); });
    fOverlays[handle] = {surface.get(), corner.left, corner.top, takesEvents};
    if (takesEvents) GrabPointer();
    return surface;
}

// So that a press anywhere closes a menu. Where somebody else has the pointer, it closes by what happens in the window.
void X11Window::GrabPointer() {
    constexpr unsigned kMask = ButtonPressMask | ButtonReleaseMask | PointerMotionMask | LeaveWindowMask;
    XGrabPointer(fConnection->Get(), fHandle, True, kMask, GrabModeAsync, GrabModeAsync, None, None, CurrentTime);
}

void X11Window::OverlayClosed(unsigned long handle) {
    fOverlays.erase(handle);
    const bool isModal = std::ranges::any_of(fOverlays, [](const auto& overlay) { return overlay.second.takesEvents; });
    if (isModal) return;
    XUngrabPointer(fConnection->Get(), CurrentTime);
    XFlush(fConnection->Get());
}

void X11Window::SetCursor(Cursor cursor) {
    if (cursor == fCursor) return;
    fCursor = cursor;
    auto [entry, isNew] = fCursors.try_emplace(cursor, 0);
    if (isNew) entry->second = XCreateFontCursor(fConnection->Get(), ShapeOf(cursor));
    XDefineCursor(fConnection->Get(), fHandle, entry->second);
}

void X11Window::SetClipboardText(std::u16string_view text) {
    fClipboard = text;
    XSetSelectionOwner(fConnection->Get(), fConnection->Name("CLIPBOARD"), fHandle, CurrentTime);
}

// Another program wants what this one has.
void X11Window::HandleSelectionRequest(const Event& event) {
    const XSelectionRequestEvent& request = event.x.xselectionrequest;
    const Atom utf8 = fConnection->Name("UTF8_STRING");
    const Atom targets = fConnection->Name("TARGETS");
    XEvent answer{};
    answer.xselection = {.type = SelectionNotify,
                         .serial = 0,
                         .send_event = True,
                         .display = request.display,
                         .requestor = request.requestor,
                         .selection = request.selection,
                         .target = request.target,
                         .property = request.property,
                         .time = request.time};
    const std::string text = krocore::ToStdString(fClipboard);
    if (request.target == targets) {
        const Atom known[] = {targets, utf8};
        XChangeProperty(request.display, request.requestor, request.property, XA_ATOM, 32, PropModeReplace,
                        reinterpret_cast<const unsigned char*>(known), 2);
    } else if (request.target == utf8 || request.target == XA_STRING) {
        XChangeProperty(request.display, request.requestor, request.property, request.target, 8, PropModeReplace,
                        reinterpret_cast<const unsigned char*>(text.data()), static_cast<int>(text.size()));
    } else {
        answer.xselection.property = None;
    }
    XSendEvent(request.display, request.requestor, False, 0, &answer);
    XFlush(request.display);
}

// The program that has it answers within a moment, or not at all.
std::u16string X11Window::ClipboardText() {
    Display* const display = fConnection->Get();
    const Atom clipboard = fConnection->Name("CLIPBOARD");
    const ::Window owner = XGetSelectionOwner(display, clipboard);
    // A window of this process could not answer while it waits here.
    const auto own = std::ranges::find(sWindows, owner, &X11Window::fHandle);
    if (own != sWindows.end()) return (*own)->fClipboard;
    const Atom place = fConnection->Name("KROX11_CLIPBOARD");
    XConvertSelection(display, clipboard, fConnection->Name("UTF8_STRING"), place, fHandle, CurrentTime);
    XEvent event{};
    constexpr int kTries = 100;
    for (int i = 0; !XCheckTypedWindowEvent(display, fHandle, SelectionNotify, &event); ++i) {
        if (i == kTries) return {};
        std::this_thread::sleep_for(std::chrono::milliseconds(3));
    }
    if (event.xselection.property == None) return {};
    Atom type = None;
    int bits = 0;
    unsigned long count = 0;
    unsigned long left = 0;
    unsigned char* bytes = nullptr;
    constexpr long kMostWords = 1L << 20;
    XGetWindowProperty(display, fHandle, place, 0, kMostWords, True, AnyPropertyType, &type, &bits, &count, &left,
                       &bytes);
    if (bytes == nullptr) return {};
    const krocore::string16 text =
        krocore::ToUTF16(std::string_view(reinterpret_cast<const char*>(bytes), bits == 8 ? count : 0));
    XFree(bytes);
    return {text.begin(), text.end()};
}

} // namespace krox11
