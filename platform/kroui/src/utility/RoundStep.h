#pragma once

namespace kroui::utility {

// A distance between marks that people like to read: a short mantissa times a power of ten.
struct RoundStep {
    int mantissaTenths = 10; // 10 is 1, 25 is 2.5
    int exponent = 0;

    double Value() const;
    // The multiple with this index, exact where a double can be (3 * 0.1 is 0.3).
    double Multiple(double index) const;
    // Digits behind the point that all multiples need.
    int Decimals() const;
    // Into how many parts marks between the labelled ones divide it, parts being at least `least` long; 1 for none.
    int Parts(double least) const;

    // The smallest step of at least `least`; one that meets both ends of the range comes first if it is not much
    // larger. `least` above 0.
    static RoundStep Choose(double low, double high, double least);
};

} // namespace kroui::utility
