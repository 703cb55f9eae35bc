#pragma once

#include "CairoHandle.h"

#include <dwrite.h>

namespace kroui::limner {

// A typeface of the system at a size (view units), as Cairo takes it: its glyphs are the outlines that DirectWrite has,
// with its numbers. It holds the face.
ScaledFontHandle FontOfFace(IDWriteFontFace* face, float size);

} // namespace kroui::limner
