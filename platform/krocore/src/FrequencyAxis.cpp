#include "krocore/FrequencyAxis.h"

#include <cmath>

namespace krocore {

double FrequencyAxis::HertzAt(std::size_t index, std::size_t count) const {
    if (count < 2) return start;
    const double place = static_cast<double>(index) / static_cast<double>(count - 1);
    return logarithmic ? start * std::pow(end / start, place) : start + place * (end - start);
}

std::vector<double> FrequencyAxis::AllHertz(std::size_t count) const {
    std::vector<double> places(count, start);
    if (count < 2) return places;
    const auto last = static_cast<double>(count - 1);
    const double factor = logarithmic ? std::pow(end / start, 1 / last) : 1;
    const double step = logarithmic ? 0 : (end - start) / last;
    for (std::size_t i = 1; i < count; ++i)
        places[i] = logarithmic ? places[i - 1] * factor : start + static_cast<double>(i) * step;
    places.back() = end;
    return places;
}

std::size_t FrequencyAxis::PlaceOf(double hertz, std::size_t count) const {
    const double part = logarithmic ? std::log(hertz / start) / std::log(end / start) : (hertz - start) / (end - start);
    const double place = std::round(part * static_cast<double>(count - 1));
    return place >= 0 && place < static_cast<double>(count) ? static_cast<std::size_t>(place) : count;
}

} // namespace krocore
