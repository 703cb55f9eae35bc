#include "krocore/FaderTranslator.h"

#include <cmath>
#include <limits>

namespace krocore {

namespace {

// level^3 is an amplitude, so the level of L decibels is 10^(L / 20 / 3).
constexpr int kDecibelsPerDecadeOfTravel = 60;

} // namespace

template <class T>
T FaderTranslator<T>::GetDecibelValue(T normalized) const {
    if (normalized <= 0) return -std::numeric_limits<T>::infinity();
    if (normalized >= 1) return kTopDecibels;
    return kDecibelsPerDecadeOfTravel * std::log10(normalized) + kTopDecibels;
}

template <class T>
T FaderTranslator<T>::GetNormalizedValue(T decibels) const {
    if (decibels >= kTopDecibels) return 1;
    return std::pow(T(10), (decibels - kTopDecibels) / kDecibelsPerDecadeOfTravel);
}

template class FaderTranslator<float>;
template class FaderTranslator<double>;

} // namespace krocore
