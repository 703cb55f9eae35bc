#pragma once

#include "kroui/controls/ImageSlot.h"
#include "uit/lio/WidgetAdapter.h"

namespace uit::lio {

// Finds the pictures that a layout script names, for a control that it is given to and that lives longer. On a dark
// theme NAME_D ("P_Plus_N_D.png" for "P_Plus_N.png") comes first if there is one. There are none for disabled controls,
// which show the others faintly.
kroui::controls::ImageSupplier MakePictureSupplier(const WidgetContext& context, const kroui::ui::UI_Node& control);

} // namespace uit::lio
