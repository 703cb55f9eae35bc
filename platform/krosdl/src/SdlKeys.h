#pragma once

#include "kroui/ui/Events.h"

struct SDL_Keysym;

namespace krosdl {

std::uint8_t ModifiersFromSdl(unsigned sdlModifiers);

// Key::kNone for keys that the toolkit has no name for.
kroui::ui::KeyEvent KeyFromSdl(const SDL_Keysym& key, bool isRepeat);

} // namespace krosdl
