#pragma once

#include "kroui/utility/RulerBase.h"

#include <boost/intrusive_ptr.hpp>

namespace qocui::ui {

// The rulers of the effects' graphs.
boost::intrusive_ptr<kroui::utility::RulerBase> MakeLinearRuler(bool vertical, double minimum, double maximum);
boost::intrusive_ptr<kroui::utility::RulerBase> MakeLogRuler(bool vertical, double minimum, double maximum);

} // namespace qocui::ui
