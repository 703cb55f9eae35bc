#pragma once

#include "kroui/utility/RulerBase.h"

namespace kroui::utility {

// Equal distances for equal differences; labelled at multiples of a round number that meets the ends if it can.
class LinearRuler : public RulerBase {
protected:
    ~LinearRuler() override = default;

    void CollectTicks(std::vector<Candidate>& candidates) const override;
};

} // namespace kroui::utility
