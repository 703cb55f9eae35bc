#pragma once

#include "kroui/ui/Events.h"

#include <X11/Xlib.h>

#include <string>

namespace krox11 {

std::uint8_t ModifiersFromX11(unsigned state);
// Key::kNone for keys that mean nothing here.
kroui::ui::KeyEvent KeyFromX11(KeySym symbol, unsigned state);
// What the key types; empty for none.
std::u16string TextFromX11(KeySym symbol, unsigned state);

} // namespace krox11
