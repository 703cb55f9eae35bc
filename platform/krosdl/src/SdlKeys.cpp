#include "SdlKeys.h"

#define SDL_MAIN_HANDLED
#include <SDL.h>

#include <algorithm>

namespace krosdl {

using kroui::ui::Key;

namespace {

struct NamedKey {
    SDL_Keycode code;
    Key key;
};

constexpr NamedKey kNamedKeys[] = {
    {SDLK_RETURN, Key::kEnter},      {SDLK_KP_ENTER, Key::kEnter},
    {SDLK_ESCAPE, Key::kEscape},     {SDLK_TAB, Key::kTab},
    {SDLK_SPACE, Key::kSpace},       {SDLK_BACKSPACE, Key::kBackspace},
    {SDLK_DELETE, Key::kDelete},     {SDLK_LEFT, Key::kLeft},
    {SDLK_RIGHT, Key::kRight},       {SDLK_UP, Key::kUp},
    {SDLK_DOWN, Key::kDown},         {SDLK_PAGEUP, Key::kPageUp},
    {SDLK_PAGEDOWN, Key::kPageDown}, {SDLK_HOME, Key::kHome},
    {SDLK_END, Key::kEnd},           {SDLK_F2, Key::kF2},
};

struct KeypadKey {
    SDL_Keycode code;
    char16_t character;
};

constexpr KeypadKey kKeypad[] = {
    {SDLK_KP_PLUS, u'+'},
    {SDLK_KP_MINUS, u'-'},
    {SDLK_KP_0, u'0'},
};

// 0 for keys without one.
char16_t CharacterOf(const SDL_Keysym& key) {
    const auto* const keypad =
        std::find_if(std::begin(kKeypad), std::end(kKeypad), [&key](const KeypadKey& k) { return k.code == key.sym; });
    if (keypad != std::end(kKeypad)) return keypad->character;
    constexpr SDL_Keycode kFirstPrintable = 0x21;
    constexpr SDL_Keycode kLastPrintable = 0x7E;
    if (key.sym >= kFirstPrintable && key.sym <= kLastPrintable) return static_cast<char16_t>(key.sym);
    // On a keyboard of another script, shortcuts are where they are on a Latin one.
    if (key.scancode >= SDL_SCANCODE_A && key.scancode <= SDL_SCANCODE_Z)
        return static_cast<char16_t>(u'a' + (key.scancode - SDL_SCANCODE_A));
    return 0;
}

} // namespace

std::uint8_t ModifiersFromSdl(unsigned sdlModifiers) {
    unsigned modifiers = kroui::ui::kNoModifier;
    if ((sdlModifiers & KMOD_SHIFT) != 0) modifiers |= kroui::ui::kShift;
    if ((sdlModifiers & KMOD_CTRL) != 0) modifiers |= kroui::ui::kCommand;
    if ((sdlModifiers & KMOD_ALT) != 0) modifiers |= kroui::ui::kAlt;
    return static_cast<std::uint8_t>(modifiers);
}

kroui::ui::KeyEvent KeyFromSdl(const SDL_Keysym& key, bool isRepeat) {
    kroui::ui::KeyEvent event;
    event.modifiers = ModifiersFromSdl(key.mod);
    event.isRepeat = isRepeat;
    const auto* const named = std::find_if(std::begin(kNamedKeys), std::end(kNamedKeys),
                                           [&key](const NamedKey& k) { return k.code == key.sym; });
    if (named != std::end(kNamedKeys)) {
        event.key = named->key;
    } else if (const char16_t character = CharacterOf(key)) {
        event.key = Key::kCharacter;
        event.character = character;
    }
    return event;
}

} // namespace krosdl
