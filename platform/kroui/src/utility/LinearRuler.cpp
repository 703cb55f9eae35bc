#include "kroui/utility/LinearRuler.h"

namespace kroui::utility {

void LinearRuler::CollectTicks(std::vector<Candidate>& candidates) const {
    CollectLinear(candidates, PixelLength() / (HighValue() - LowValue()));
}

} // namespace kroui::utility
