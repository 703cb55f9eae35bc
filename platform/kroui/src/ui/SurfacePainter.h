#pragma once

#include "kroui/limner/Surface.h"
#include "kroui/ui/DamageRegion.h"

namespace kroui::ui {

// Fills the damaged parts of a surface (view units, from its corner) with the ground's colour and draws them anew.
// Returns what was painted, in pixels.
std::vector<Rect> PaintDamage(limner::Surface& surface, const DamageRegion& damage, const limner::Color& ground,
                              const boost::function<void(limner::Limner&)>& draw);

// Of parts that do not overlap.
long AreaOf(std::span<const Rect> parts);

} // namespace kroui::ui
