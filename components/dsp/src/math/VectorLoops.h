// Included once for every kind of vectors, by sources that Highway compiles so, behind <hwy/highway.h>.
#if defined(QO_VECTOR_LOOPS) == defined(HWY_TARGET_TOGGLE)
#ifdef QO_VECTOR_LOOPS
#undef QO_VECTOR_LOOPS
#else
#define QO_VECTOR_LOOPS
#endif

#include <algorithm>
#include <array>
#include <cstddef>
#include <span>

HWY_BEFORE_NAMESPACE();
namespace qoc::dsp::HWY_NAMESPACE {

// Of any target's vectors the ones that can stand in arrays.
using DoubleLanes = hwy::HWY_NAMESPACE::CappedTag<double, 4>;

// Replaces values by what a function of vectors makes of them. Every value is one of a whole vector, so that it does
// not matter how many there are; `padding` is one that the function takes.
template <typename Function>
HWY_INLINE void Replace(std::span<double> values, double padding, const Function& function) {
    namespace hn = hwy::HWY_NAMESPACE;
    const DoubleLanes lanes;
    const std::size_t width = hn::Lanes(lanes);
    std::size_t i = 0;
    for (; i + width <= values.size(); i += width)
        hn::StoreU(function(hn::LoadU(lanes, &values[i])), lanes, &values[i]);
    if (i == values.size()) return;
    std::array<double, hn::MaxLanes(DoubleLanes())> rest;
    rest.fill(padding);
    std::copy(values.data() + i, values.data() + values.size(), rest.begin());
    hn::StoreU(function(hn::LoadU(lanes, rest.data())), lanes, rest.data());
    std::copy_n(rest.begin(), values.size() - i, values.data() + i);
}

} // namespace qoc::dsp::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif
