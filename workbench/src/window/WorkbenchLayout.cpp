#include "workbench/window/WorkbenchLayout.h"

#include "workbench/views/EffectBrowser.h"
#include "workbench/views/TransportBar.h"
#include "workbench/window/HeaderBar.h"
#include "workbench/window/StatusLine.h"

#include <algorithm>
#include <cmath>

namespace workbench {

namespace {

constexpr float kMargin = 24;
constexpr float kMetersWidth = 240;
// Where room is short, the panel needs it most.
constexpr float kNarrowWindow = 1100;
constexpr float kNarrowMargin = 12;
constexpr float kNarrowMetersWidth = 164;
constexpr float kWaveformPart = 0.16F;
constexpr float kLowestWaveform = 84;
constexpr float kHighestWaveform = 200;

} // namespace

WorkbenchLayout::WorkbenchLayout(kroui::Size size) {
    const float width = std::max(size.width, kSmallestSize.width);
    const float height = std::max(size.height, kSmallestSize.height);
    const bool isNarrow = width < kNarrowWindow;
    const float margin = isNarrow ? kNarrowMargin : kMargin;
    const float metersWidth = isNarrow ? kNarrowMetersWidth : kMetersWidth;

    const float statusTop = height - StatusLine::kHeight;
    const float transportTop = statusTop - TransportBar::kHeight;
    const float waveHeight = std::round(std::clamp(height * kWaveformPart, kLowestWaveform, kHighestWaveform));
    const float waveTop = transportTop - waveHeight;
    const float centre = EffectBrowser::kWidth;
    const float metersLeft = width - margin - metersWidth;
    const float top = HeaderBar::kHeight + margin;
    const float room = waveTop - margin - top;

    header = {0, 0, width, HeaderBar::kHeight};
    browser = {0, HeaderBar::kHeight, centre, transportTop - HeaderBar::kHeight};
    panel = {centre + margin, top, metersLeft - margin - centre - margin, room};
    meters = {metersLeft, top, metersWidth, room};
    waveform = {centre, waveTop, width - centre, waveHeight};
    transport = {0, transportTop, width, TransportBar::kHeight};
    status = {0, statusTop, width, StatusLine::kHeight};
}

} // namespace workbench
