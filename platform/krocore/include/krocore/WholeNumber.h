#pragma once

namespace krocore {

// A number without its decimals, held within bounds; what is no number is the lower one. For every conversion of a
// number that others have a say in: a plain cast of one that its type cannot hold is undefined.
template <class Integer>
constexpr Integer TruncatedWithin(double number, Integer low, Integer high) {
    if (!(number > static_cast<double>(low))) return low;
    return number < static_cast<double>(high) ? static_cast<Integer>(number) : high;
}

} // namespace krocore
