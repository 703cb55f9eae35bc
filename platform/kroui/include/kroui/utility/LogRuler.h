#pragma once

#include "kroui/utility/RulerBase.h"

namespace kroui::utility {

// Equal distances for equal ratios. Marked at seed * step^n and, with a step of 10, at two to nine times those;
// labelled as many of them as there is room for: 1, 2, 5 mostly, all or only some powers otherwise. A range that holds
// few of them is labelled at round numbers.
class LogRuler : public RulerBase {
public:
    // The ratio from one power to the next, above 1 (10 at first), and a value that is one of the powers, above 0.
    // Others are refused.
    void SetLogStep(double step);
    void SetLogSeed(double seed);

protected:
    ~LogRuler() override = default;

    double ToAxis(double value) const override;
    double FromAxis(double axis) const override;
    void CollectTicks(std::vector<Candidate>& candidates) const override;

private:
    double Power(double index) const;
    bool LabelsFit(unsigned labelled) const;
    template <class Visitor>
    void VisitMultiples(const Visitor& visit) const; // visit(value, multiple, power index), ascending

    double fLogStep = 10;
    double fLogSeed = 1;
};

} // namespace kroui::utility
