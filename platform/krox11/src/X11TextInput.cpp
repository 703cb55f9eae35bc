#include "X11TextInput.h"

#include "X11Keys.h"
#include "krocore/String.h"

#include <X11/Xutil.h>

#include <algorithm>
#include <array>

namespace krox11 {

X11TextInput::X11TextInput(Display* display, ::Window window)
    : fMethod(XSupportsLocale() ? XOpenIM(display, nullptr, nullptr, nullptr) : nullptr) {
    if (fMethod == nullptr) return;
    fContext = XCreateIC(fMethod, XNInputStyle, XIMPreeditNothing | XIMStatusNothing, XNClientWindow, window,
                         XNFocusWindow, window, nullptr);
}

X11TextInput::~X11TextInput() {
    if (fContext != nullptr) XDestroyIC(fContext);
    if (fMethod != nullptr) XCloseIM(fMethod);
}

void X11TextInput::SetFocus(bool hasFocus) {
    if (fContext == nullptr) return;
    if (hasFocus)
        XSetICFocus(fContext);
    else
        XUnsetICFocus(fContext);
}

X11TextInput::Typed X11TextInput::Read(XKeyEvent& key) const {
    std::array<char, 64> bytes{};
    KeySym symbol = NoSymbol;
    if (fContext == nullptr) {
        XLookupString(&key, bytes.data(), static_cast<int>(bytes.size()), &symbol, nullptr);
        return {symbol, TextFromX11(symbol, key.state)};
    }
    Status status = XLookupNone;
    const int count = Xutf8LookupString(fContext, &key, bytes.data(), static_cast<int>(bytes.size()), &symbol, &status);
    const bool hasText = status == XLookupChars || status == XLookupBoth;
    const bool isCommand = (key.state & (ControlMask | Mod1Mask)) != 0;
    if (!hasText || isCommand || count <= 0) return {symbol, {}};
    const krocore::string16 text = krocore::ToUTF16(std::string_view(bytes.data(), static_cast<std::size_t>(count)));
    const bool isControl = std::ranges::any_of(text, [](char16_t c) { return c < u' ' || c == u'\x7F'; });
    return {symbol, isControl ? std::u16string() : std::u16string(text.begin(), text.end())};
}

} // namespace krox11
