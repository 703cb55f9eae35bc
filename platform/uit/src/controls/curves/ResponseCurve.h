#pragma once

#include "kroui/utility/RulerBase.h"

#include <boost/function.hpp>

#include <vector>

namespace uit::controls {

// A response as a graph shows it: many values, evenly spaced from the left to the right end of the content, thinned to
// what each column of pixels needs. The thinning is done once and kept until the values or the place are others.
class ResponseCurve {
public:
    // Whether the values are others than before.
    bool SetValues(const std::vector<double>& values);
    bool IsEmpty() const { return fValues.empty(); }
    // What turns values into those of the axis has changed.
    void Invalidate() { fIsValid = false; }

    // The line in pixels; NaN where it is interrupted. `version`: another number when axis or content are others.
    const std::vector<kroui::Point>& Line(const boost::function<double(double)>& toAxis,
                                          const kroui::utility::RulerBase& axis, const kroui::Rect& content,
                                          float scale, unsigned version);

private:
    void Thin(const boost::function<double(double)>& toAxis, const kroui::utility::RulerBase& axis,
              const kroui::Rect& content, float scale);

    std::vector<double> fValues;
    std::vector<kroui::Point> fLine;
    float fScale = 0;
    unsigned fVersion = 0;
    bool fIsValid = false;
};

} // namespace uit::controls
