#include "qoc/components/FFTFilter.h"

#include "krocore/FaderTranslator.h"
#include "qoc/components/ComponentIDs.h"
#include "qoc/components/ParameterIndices.h"
#include "qoc/dsp/spectrum/WindowFunction.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace qoc::components {

namespace {

constexpr const char* kSizeNames[] = {"32",   "64",   "128",  "256",   "512",  "1024",
                                      "2048", "4096", "8192", "16384", "32768"};
constexpr float kSizes[] = {32, 64, 128, 256, 512, 1024, 2048, 4096, 8192, 16384, 32768};

constexpr const char* kWindowNames[] = {
    "$$$/FFTFilter/WindowType/Triangular=Triangular",     "$$$/FFTFilter/WindowType/Hann=Hann",
    "$$$/FFTFilter/WindowType/Hamming=Hamming",           "$$$/FFTFilter/WindowType/Blackman=Blackman",
    "$$$/FFTFilter/WindowType/Gaussian=Gaussian",         "$$$/FFTFilter/WindowType/BlackmanHarris=Blackman-Harris",
    "$$$/FFTFilter/WindowType/Kaiser140=Kaiser (140 dB)", "$$$/FFTFilter/WindowType/Kaiser180=Kaiser (180 dB)",
};

constexpr const char* kScaleNames[] = {"$$$/FFTFilterUI/Logarithmic=Logarithmic", "$$$/FFTFilterUI/Linear=Linear"};

constexpr float kUnityLevel = 0.63095734F; // of a fader at 0 dB: 10^(-12 / 60)

constexpr ParameterRow kCommonRows[] = {
    CurveFilterRows::Spline(kFFTFilterSplineCurves, "$$$/FFTFilter/SplineCurves=Spline Curves"),
    // The scale ends below the largest size, which is stored as a value above 1.
    {.index = kFFTFilterSize,
     .id = "fftSize",
     .name = "$$$/FFTFilter/FFTSize=FFT Size",
     .lo = 32,
     .hi = 24000,
     .defaultValue = 4096,
     .decimals = 0,
     .kind = ParameterKind::kChoice,
     .flags = kParameterNotAutomatable | kParameterNeedsPrepare,
     .items = kSizeNames,
     .itemValues = kSizes},
    // An eighth an item.
    {.index = kFFTFilterWindowType,
     .id = "window",
     .name = "$$$/FFTFilter/Window=Window",
     .hi = 8,
     .defaultValue = 1,
     .decimals = 0,
     .kind = ParameterKind::kChoice,
     .flags = kParameterNotAutomatable,
     .items = kWindowNames},
    CurveFilterRows::Scale(kFFTFilterScale, "$$$/FFTFilter/Scale=Frequency Scale", kScaleNames),
    CurveFilterRows::View(kFFTFilterViewStart, "viewStart", "$$$/FFTFilter/ViewStart=Lowest Frequency Shown", 20),
    CurveFilterRows::View(kFFTFilterViewEnd, "viewEnd", "$$$/FFTFilter/ViewEnd=Highest Frequency Shown",
                          CurveFilterRows::kHighestFrequency),
    CurveFilterRows::PointCount(kFFTFilterPointCount, "$$$/FFTFilter/Points=Curve Points"),
};

constexpr ParameterRow PointFrequency(int index, float defaultHertz) {
    return {.index = index,
            .id = "frequency",
            .name = "$$$/FFTFilter/PointFrequency=Frequency @0",
            .unit = "Hz",
            .defaultValue = defaultHertz,
            .decimals = 1,
            .scale = ParameterScale::kNyquist,
            .curve = CurveFilterRows::kCurve};
}

// A place on a fader's travel, of which 1 is +12 dB and 0 silence.
constexpr ParameterRow kPointLevel = {.id = "level",
                                      .name = "$$$/FFTFilter/PointLevel=Level @0",
                                      .defaultValue = kUnityLevel,
                                      .decimals = 4,
                                      .curve = CurveFilterRows::kCurve};

constexpr ParameterRow kFirstPointRows[] = {PointFrequency(kFFTFilterFirstPoint, 20), kPointLevel};
constexpr ParameterRow kPointRows[] = {PointFrequency(kFFTFilterFirstPoint + 2, CurveFilterRows::kHighestFrequency),
                                       kPointLevel};

} // namespace

FFTFilter::FFTFilter()
    : CurveFilter(kFFTFilterComponentID, {kCommonRows, kFirstPointRows, kPointRows},
                  {.updating = kFFTFilterUpdating, .firstPoint = kFFTFilterFirstPoint}, CurveFIR::Kind::kMagnitude) {
}

FFTFilter::~FFTFilter() = default;

std::size_t FFTFilter::ChosenSize() const noexcept {
    return static_cast<std::size_t>(kSizes[Item(kFFTFilterSize)]);
}

bool FFTFilter::Shapes(int index) const noexcept {
    return index == kFFTFilterSplineCurves || index == kFFTFilterSize || index == kFFTFilterWindowType ||
           index == kFFTFilterScale || index == kFFTFilterPointCount;
}

std::size_t FFTFilter::PointCount() const noexcept {
    return CountOf(StoredParameter(kFFTFilterPointCount));
}

FrequencyCurve FFTFilter::ReadCurve() const {
    std::vector<FrequencyCurve::Point> points(PointCount());
    for (std::size_t i = 0; i < points.size(); ++i)
        points[i] = {std::max(StoredFrequency(i) * Nyquist(), kLowestFrequency), StoredValue(i)};
    return {std::move(points), WholeAxis(!IsOn(kFFTFilterScale)), IsOn(kFFTFilterSplineCurves), kUnityLevel};
}

// The travel of a fader is the cube root of an amplitude.
std::complex<double> FFTFilter::ResponseOf(double level) const noexcept {
    static const double sTop = std::pow(10.0, krocore::FaderTranslator<double>::kTopDecibels / 20);
    return sTop * level * level * level;
}

const FIRWindow& FFTFilter::Window(std::size_t size) const {
    const int item = Item(kFFTFilterWindowType);
    if (fWindow == nullptr || fWindow->Size() != size || fWindowItem != item) {
        const auto shape = [kind = static_cast<WindowKind>(item)](double place) { return WindowAt(kind, place); };
        fWindow = std::make_unique<FIRWindow>(shape, size);
        fWindowItem = item;
    }
    return *fWindow;
}

} // namespace qoc::components
