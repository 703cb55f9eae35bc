#pragma once

#include <array>
#include <cstddef>

namespace qoc::dsp {

// The sum of term(first), ..., term(end - 1): four sums by turns, because none has to wait for another. Real time safe.
template <class Number, class Term>
Number UnrolledSum(std::size_t first, std::size_t end, const Term& term) noexcept {
    std::array<Number, 4> sums{};
    std::size_t i = first;
    for (; i + sums.size() <= end; i += sums.size()) {
        for (std::size_t k = 0; k < sums.size(); ++k)
            sums[k] += term(i + k);
    }
    for (; i < end; ++i)
        sums[0] += term(i);
    return (sums[0] + sums[1]) + (sums[2] + sums[3]);
}

} // namespace qoc::dsp
