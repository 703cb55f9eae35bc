#include "uit/controls/TransferSegments.h"

#include "krocore/Localizer.h"
#include "krocore/NumberFormat.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace uit::controls {

using krocore::string16;

namespace {

// A slope that a ratio with two places would show as 1.
constexpr double kStraightTolerance = 0.005;
constexpr double kFlat = 1e-3;
constexpr char16_t kInfinity = 0x221E;

} // namespace

double TransferSegment::Slope() const {
    const double rise = upper.output - lower.output;
    const double run = upper.input - lower.input;
    if (run > 0) return rise / run;
    return rise == 0 ? 1 : std::numeric_limits<double>::infinity();
}

TransferSegment::Kind TransferSegment::GetKind() const {
    const double slope = Slope();
    if (std::abs(slope - 1) < kStraightTolerance) return Kind::kStraight;
    return slope < 1 ? Kind::kCompressor : Kind::kExpander;
}

double TransferSegment::Compression() const {
    const double slope = Slope();
    if (slope <= 0) return kMostCompression;
    const double compression = slope <= 1 ? 1 / slope - 1 : 1 - slope;
    return std::clamp(compression, -kMostCompression, kMostCompression);
}

double TransferSegment::SlopeOf(double compression) {
    return compression >= 0 ? 1 / (compression + 1) : 1 - compression;
}

string16 TransferSegment::KindText() const {
    switch (GetKind()) {
    case Kind::kCompressor: return krocore::Localize("$$$/uit/CompExpList/Compressor=Compressor");
    case Kind::kExpander: return krocore::Localize("$$$/uit/CompExpList/Expander=Expander");
    default: return krocore::Localize("$$$/uit/CompExpList/Straight=Straight");
    }
}

string16 TransferSegment::RatioText() const {
    constexpr double kFine = 2; // ratios below need a second place
    const Kind kind = GetKind();
    if (kind == Kind::kStraight) return u"1:1";
    const double slope = Slope();
    const double ratio = kind == Kind::kCompressor ? 1 / slope : slope;
    if (std::abs(slope) < kFlat || !std::isfinite(ratio)) return string16(1, kInfinity) + u":1";
    return krocore::FormatNumber(ratio, std::abs(ratio) < kFine ? 2 : 1) + u":1";
}

std::optional<double> TransferSegment::ParseRatio(std::u16string_view text) const {
    const std::size_t colon = text.find(u':');
    const std::optional<double> first = krocore::ParseTypedNumber(text.substr(0, colon));
    std::optional<double> second = 1;
    if (colon != std::u16string_view::npos) second = krocore::ParseTypedNumber(text.substr(colon + 1));
    if (!first || !second || !(*first > 0) || !(*second > 0)) return {};
    double ratio = *first / *second;
    // An expander's ratio is written with its greater number first, too.
    if (GetKind() == Kind::kExpander && ratio > 1 && *second == 1) ratio = 1 / ratio;
    if (std::isnan(ratio)) return {};
    return ratio >= 1 ? ratio - 1 : 1 - 1 / ratio;
}

} // namespace uit::controls
