#include "RoundRectPath.h"

#include <algorithm>
#include <numbers>

namespace kroui::limner {

void AddRoundRectPath(cairo_t* context, const DeviceBox& box, double radius) {
    const double r = std::min({radius, box.Width() / 2, box.Height() / 2});
    if (!(r > 0)) {
        cairo_rectangle(context, box.left, box.top, box.Width(), box.Height());
        return;
    }
    constexpr double kQuarter = std::numbers::pi / 2;
    cairo_new_sub_path(context);
    cairo_arc(context, box.right - r, box.top + r, r, -kQuarter, 0);
    cairo_arc(context, box.right - r, box.bottom - r, r, 0, kQuarter);
    cairo_arc(context, box.left + r, box.bottom - r, r, kQuarter, 2 * kQuarter);
    cairo_arc(context, box.left + r, box.top + r, r, 2 * kQuarter, 3 * kQuarter);
    cairo_close_path(context);
}

void AddRoundFramePath(cairo_t* context, const DeviceBox& box, double radius, double lineWidth) {
    AddRoundRectPath(context, box, radius);
    const DeviceBox inside{box.left + lineWidth, box.top + lineWidth, box.right - lineWidth, box.bottom - lineWidth};
    if (inside.Width() <= 0 || inside.Height() <= 0) return;
    const double outerRadius = std::min({radius, box.Width() / 2, box.Height() / 2});
    AddRoundRectPath(context, inside, outerRadius - lineWidth);
}

} // namespace kroui::limner
