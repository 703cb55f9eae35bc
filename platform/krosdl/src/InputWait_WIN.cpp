#include "InputWait.h"

namespace krosdl {

InputWait::InputWait(SDL_Window& /*window*/) {
}

bool InputWait::For(int /*milliseconds*/) const {
    return true;
}

} // namespace krosdl
