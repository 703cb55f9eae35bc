#include "X11Keys.h"

#include <X11/keysym.h>

#include <algorithm>
#include <iterator>

namespace krox11 {

using kroui::ui::Key;

namespace {

struct NamedKey {
    KeySym symbol;
    Key key;
};

constexpr NamedKey kNamedKeys[] = {
    {XK_Return, Key::kEnter},
    {XK_KP_Enter, Key::kEnter},
    {XK_Escape, Key::kEscape},
    {XK_Tab, Key::kTab},
    {XK_ISO_Left_Tab, Key::kTab},
    {XK_space, Key::kSpace},
    {XK_BackSpace, Key::kBackspace},
    {XK_Delete, Key::kDelete},
    {XK_Left, Key::kLeft},
    {XK_Right, Key::kRight},
    {XK_Up, Key::kUp},
    {XK_Down, Key::kDown},
    {XK_Page_Up, Key::kPageUp},
    {XK_Page_Down, Key::kPageDown},
    {XK_Home, Key::kHome},
    {XK_End, Key::kEnd},
    {XK_F2, Key::kF2},
};

// 0 for a symbol that is no character of the basic plane.
char16_t CharacterOf(KeySym symbol) {
    constexpr KeySym kUnicode = 0x01000000; // and the character
    constexpr KeySym kLastOfPlane = 0xFFFF;
    if (symbol >= XK_KP_0 && symbol <= XK_KP_9) return static_cast<char16_t>(u'0' + (symbol - XK_KP_0));
    if (symbol == XK_KP_Decimal || symbol == XK_KP_Separator) return u'.';
    if (symbol == XK_KP_Subtract) return u'-';
    if (symbol == XK_KP_Add) return u'+';
    const bool isLatin = (symbol >= 0x20 && symbol <= 0x7E) || (symbol >= 0xA0 && symbol <= 0xFF);
    if (isLatin) return static_cast<char16_t>(symbol);
    return symbol > kUnicode && symbol <= kUnicode + kLastOfPlane ? static_cast<char16_t>(symbol - kUnicode) : u'\0';
}

} // namespace

std::uint8_t ModifiersFromX11(unsigned state) {
    unsigned modifiers = kroui::ui::kNoModifier;
    if ((state & ShiftMask) != 0) modifiers |= kroui::ui::kShift;
    if ((state & ControlMask) != 0) modifiers |= kroui::ui::kCommand;
    if ((state & Mod1Mask) != 0) modifiers |= kroui::ui::kAlt;
    return static_cast<std::uint8_t>(modifiers);
}

kroui::ui::KeyEvent KeyFromX11(KeySym symbol, unsigned state) {
    kroui::ui::KeyEvent event;
    event.modifiers = ModifiersFromX11(state);
    if (symbol == XK_ISO_Left_Tab) event.modifiers |= kroui::ui::kShift;
    const auto* const named = std::ranges::find(kNamedKeys, symbol, &NamedKey::symbol);
    if (named != std::end(kNamedKeys)) {
        event.key = named->key;
    } else if (const char16_t character = CharacterOf(symbol)) {
        event.key = Key::kCharacter;
        event.character = character >= u'A' && character <= u'Z' ? static_cast<char16_t>(character + 32) : character;
    }
    return event;
}

std::u16string TextFromX11(KeySym symbol, unsigned state) {
    if ((state & (ControlMask | Mod1Mask)) != 0) return {};
    const char16_t character = CharacterOf(symbol);
    return character != 0 ? std::u16string(1, character) : std::u16string();
}

} // namespace krox11
