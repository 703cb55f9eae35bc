#pragma once

#include <string>
#include <vector>

namespace kroaudiofilterhost {

// A point of a drawn curve, in the natural values of its two parameters.
struct AudioFilterCurvePoint {
    float x = 0;
    float y = 0;

    bool operator==(const AudioFilterCurvePoint&) const = default;
};
using AudioFilterCurvePoints = std::vector<AudioFilterCurvePoint>;

// Which parameters of a filter draw a curve together: a number of points, and x and y of each point by turns.
struct AudioFilterCurve {
    std::string id;     // names the curve in files, as AudioFilterParameterInfo::GetCurveID
    int countIndex = 0; // the parameter that is the number of points in use
    int firstPoint = 0; // x of the first point
    int mostPoints = 0;

    int IndexOfX(int point) const noexcept { return firstPoint + 2 * point; }
    int IndexOfY(int point) const noexcept { return IndexOfX(point) + 1; }
};

} // namespace kroaudiofilterhost
