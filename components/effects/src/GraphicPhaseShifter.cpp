#include "qoc/components/GraphicPhaseShifter.h"

#include "qoc/components/ComponentIDs.h"
#include "qoc/components/ParameterIndices.h"
#include "qoc/dsp/spectrum/WindowFunction.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

namespace qoc::components {

namespace {

constexpr const char* kSizeNames[] = {"512", "1024", "2048", "4096", "8192", "16384", "32768", "65536"};
constexpr float kSizes[] = {512, 1024, 2048, 4096, 8192, 16384, 32768, 65536};

constexpr const char* kRangeNames[] = {"$$$/GraphicPhaseShifterUI/Range180=180#{deg}",
                                       "$$$/GraphicPhaseShifterUI/Range360=360#{deg}"};
constexpr double kNarrowRange = 180; // degrees to either side
constexpr double kWideRange = 360;

constexpr const char* kScaleNames[] = {"$$$/GraphicPhaseShifterUI/Log=Logarithmic",
                                       "$$$/GraphicPhaseShifterUI/Linear=Linear"};

constexpr float kLastChannelItem = 33;

constexpr ParameterRow kCommonRows[] = {
    CurveFilterRows::Spline(kPhaseShifterSplineCurves, "$$$/GraphicPhaseShifter/SplineCurves=Spline Curves"),
    {.index = kPhaseShifterSize,
     .id = "fftSize",
     .name = "$$$/GraphicPhaseShifter/FFTSize=FFT Size",
     .lo = 32,
     .hi = 65536,
     .defaultValue = 16384,
     .decimals = 0,
     .kind = ParameterKind::kChoice,
     .flags = kParameterNotAutomatable | kParameterNeedsPrepare,
     .items = kSizeNames,
     .itemValues = kSizes},
    // 0: all channels
    {.index = kPhaseShifterChannel,
     .id = "channel",
     .name = "$$$/GraphicPhaseShifter/Channel=Channel",
     .hi = kLastChannelItem,
     .decimals = 0,
     .flags = kParameterWhole},
    {.index = kPhaseShifterRange,
     .id = "range",
     .name = "$$$/GraphicPhaseShifter/Range=Phase Range",
     .kind = ParameterKind::kChoice,
     .flags = kParameterNotAutomatable,
     .items = kRangeNames},
    CurveFilterRows::Scale(kPhaseShifterScale, "$$$/GraphicPhaseShifter/Scale=Frequency Scale", kScaleNames),
    CurveFilterRows::View(kPhaseShifterViewStart, "viewStart",
                          "$$$/GraphicPhaseShifter/ViewStart=Lowest Frequency Shown", 20),
    CurveFilterRows::View(kPhaseShifterViewEnd, "viewEnd", "$$$/GraphicPhaseShifter/ViewEnd=Highest Frequency Shown",
                          CurveFilterRows::kHighestFrequency),
    CurveFilterRows::PointCount(kPhaseShifterPointCount, "$$$/GraphicPhaseShifter/Points=Curve Points"),
};

// Places on the graph's axes: 0 at 20 Hz and 1 at half the sample rate, 0 at the bottom of the phase range and 1 at its
// top.
constexpr ParameterRow PointPosition(int index, float defaultPlace) {
    return {.index = index,
            .id = "position",
            .name = "$$$/GraphicPhaseShifter/PointPosition=Position @0",
            .defaultValue = defaultPlace,
            .decimals = 4,
            .curve = CurveFilterRows::kCurve};
}

constexpr ParameterRow kPointPhase = {.id = "phase",
                                      .name = "$$$/GraphicPhaseShifter/PointPhase=Phase @0",
                                      .defaultValue = 0.5F,
                                      .decimals = 4,
                                      .curve = CurveFilterRows::kCurve};

constexpr ParameterRow kFirstPointRows[] = {PointPosition(kPhaseShifterFirstPoint, 0), kPointPhase};
constexpr ParameterRow kPointRows[] = {PointPosition(kPhaseShifterFirstPoint + 2, 1), kPointPhase};

// Flat in the middle, so that what is delayed or advanced by the phase keeps its level, and as smooth at the ends as a
// Hann window, whose complement to the sixth power it lacks.
double FlatWindow(double place) noexcept {
    return 1 - std::pow(1 - WindowAt(WindowKind::kHann, place), 6);
}

} // namespace

GraphicPhaseShifter::GraphicPhaseShifter()
    : CurveFilter(kGraphicPhaseShifterComponentID, {kCommonRows, kFirstPointRows, kPointRows},
                  {.updating = kPhaseShifterUpdating, .firstPoint = kPhaseShifterFirstPoint}, CurveFIR::Kind::kPhase) {
}

GraphicPhaseShifter::~GraphicPhaseShifter() = default;

std::size_t GraphicPhaseShifter::ChosenSize() const noexcept {
    return static_cast<std::size_t>(kSizes[Item(kPhaseShifterSize)]);
}

bool GraphicPhaseShifter::Shapes(int index) const noexcept {
    return index == kPhaseShifterSplineCurves || index == kPhaseShifterSize || index == kPhaseShifterRange ||
           index == kPhaseShifterScale || index == kPhaseShifterPointCount;
}

std::size_t GraphicPhaseShifter::PointCount() const noexcept {
    return CountOf(StoredParameter(kPhaseShifterPointCount));
}

std::optional<std::size_t> GraphicPhaseShifter::OnlyChannel() const noexcept {
    constexpr float kRounding = 1e-3F; // what storing an item as a fraction may take from it
    const auto item = static_cast<std::size_t>(Natural(kPhaseShifterChannel) + kRounding);
    if (item == 0) return {};
    return item - 1;
}

FrequencyCurve GraphicPhaseShifter::ReadCurve() const {
    const bool isLinear = IsOn(kPhaseShifterScale);
    const double range = IsOn(kPhaseShifterRange) ? kWideRange : kNarrowRange;
    const double ratio = Nyquist() / kLowestFrequency;
    std::vector<FrequencyCurve::Point> points(PointCount());
    for (std::size_t i = 0; i < points.size(); ++i) {
        const double place = StoredFrequency(i);
        const double hertz = isLinear ? kLowestFrequency + place * (Nyquist() - kLowestFrequency)
                                      : kLowestFrequency * std::pow(ratio, place);
        points[i] = {hertz, (2 * StoredValue(i) - 1) * range};
    }
    return {std::move(points), WholeAxis(!isLinear), IsOn(kPhaseShifterSplineCurves), 0};
}

std::complex<double> GraphicPhaseShifter::ResponseOf(double degrees) const noexcept {
    return std::polar(1.0, degrees * std::numbers::pi / 180);
}

const FIRWindow& GraphicPhaseShifter::Window(std::size_t size) const {
    if (fWindow == nullptr || fWindow->Size() != size) fWindow = std::make_unique<FIRWindow>(FlatWindow, size);
    return *fWindow;
}

} // namespace qoc::components
