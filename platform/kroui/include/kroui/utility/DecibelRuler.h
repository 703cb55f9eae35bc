#pragma once

#include "kroui/utility/RulerBase.h"

namespace kroui::utility {

// An axis of amplitudes that is labelled in decibels. The values are amplitudes (1 is 0 dB) and lie evenly; with style
// 1 they are places of a fader's travel, 0...1, after krocore::FaderTranslator: +12 dB at 1. The value 0 is minus
// infinity.
class DecibelRuler : public RulerBase {
protected:
    ~DecibelRuler() override = default;

    void CollectTicks(std::vector<Candidate>& candidates) const override;

private:
    bool HasRoom(int decibels, int step) const;
    double DecibelsOf(double value) const;
    double ValueOf(double decibels) const;
};

} // namespace kroui::utility
