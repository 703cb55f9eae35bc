#include "qoc/dsp/restoration/ClickDetector.h"

#include "qoc/dsp/math/MedianMagnitude.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace qoc::dsp {

namespace {

// The median of the magnitude of a normal distribution, in standard deviations.
constexpr double kNormalMedian = 0.6745;
// A click less than that against the sound around it is not heard, and a model can't be trusted so far.
constexpr double kLeastErrorToSound = 1e-4;
constexpr double kLeastError = 1e-7; // -140 dB
// A click goes on while its errors are that part of what finds it, and that part of its largest one.
constexpr double kGoesOn = 0.4;
constexpr double kPartOfPeak = 0.03;
// Within a burst of noise some errors are small by chance.
constexpr std::size_t kShortestSeparation = 4;
constexpr std::size_t kSeparationsPerLongest = 4;
// The errors of a burst are summed up. Of five normal values the root of the sum exceeds 1.16 times a threshold as
// rarely as one value exceeds the threshold, where that is six deviations (chi-squared of five degrees of freedom).
constexpr double kBurstSeconds = 0.11e-3;
constexpr double kBurstThreshold = 1.16;
constexpr double kBesideSeconds = 1.5e-3;
constexpr double kPulseSeconds = 0.2e-3; // to either side of its peak
// Sound that is 60 dB less on one side starts or ends there.
constexpr double kEdge = 1e-3;
// What a model that clicks have spoiled shows of them.
constexpr double kSpoiledExcess = 0.7;
constexpr double kSpoiledPartOfPeak = 0.15;

// Samples that are worked on at once.
constexpr std::size_t kPiece = 256;
// Nanoseconds a sample beside a click, about.
constexpr double kBesideCost = 2;

std::size_t CountOf(double seconds, double sampleRate) noexcept {
    return std::max<std::size_t>(1, static_cast<std::size_t>(std::lround(seconds * sampleRate)));
}

} // namespace

void ClickDetector::Prepare(std::size_t frame, std::size_t neighbourhood, double sampleRate) {
    fNeighbourhood = neighbourhood;
    fBeside = CountOf(kBesideSeconds, sampleRate);
    fBurst = CountOf(kBurstSeconds, sampleRate);
    for (std::vector<double>* values : {&fForward, &fBackward, &fExcess, &fScratch})
        values->assign(frame, 0.0);
    fUsual.assign(frame / neighbourhood, 0.0);
    fClicks.clear();
    fClicks.reserve(frame);
    fStage = Stage::kDone;
    fCandidates = 0;
    fChecked = 0;
    fSamplesFound = 0;
    fCheckCost = 0;
    fPulses.Prepare(frame, CountOf(kPulseSeconds, sampleRate));
}

void ClickDetector::Begin(const LinearPrediction& model, std::span<const double> sound,
                          const Settings& settings) noexcept {
    fModel = &model;
    fSound = sound;
    fSettings = settings;
    fOrder = model.Order();
    fStage = Stage::kForward;
    fPiece = 0;
    fEnergy = 0;
    fClicks.clear();
    fPlace = fOrder;
    fCandidates = 0;
    fChecked = 0;
    fLeft = 0;
    fSamplesFound = 0;
    fIsComparing = false;
}

double ClickDetector::Work() noexcept {
    if (IsDone()) return 0;
    const double cost = fStage == Stage::kCheck ? Check() : PieceCost(fStage, fOrder);
    if (fStage != Stage::kCheck) Do(fPiece++);
    while (!IsDone() && fPiece >= Pieces(fStage)) {
        fPiece = 0;
        if (fStage == Stage::kCollect) FinishCollecting();
        if (fStage == Stage::kCheck) fClicks.resize(fLeft);
        fStage = static_cast<Stage>(static_cast<int>(fStage) + 1);
    }
    return cost;
}

double ClickDetector::CostOfCollecting() const noexcept {
    double cost = 0;
    for (Stage stage = fStage; stage < Stage::kCheck; stage = static_cast<Stage>(static_cast<int>(stage) + 1))
        cost += PieceCost(stage, fOrder) * static_cast<double>(Pieces(stage) - (stage == fStage ? fPiece : 0));
    return cost;
}

double ClickDetector::CostOfCollecting(std::size_t order) const noexcept {
    double cost = 0;
    for (Stage stage = Stage::kForward; stage < Stage::kCheck; stage = static_cast<Stage>(static_cast<int>(stage) + 1))
        cost += PieceCost(stage, order) * static_cast<double>(Pieces(stage));
    return cost;
}

double ClickDetector::CostOfChecking(std::size_t clicks) const noexcept {
    return static_cast<double>(clicks) * PieceCost(Stage::kCheck, 0);
}

std::size_t ClickDetector::Pieces(Stage stage) const noexcept {
    switch (stage) {
    case Stage::kUsual:
    case Stage::kCompare: return fUsual.size();
    case Stage::kCheck: return fCandidates;
    default: return (fExcess.size() + kPiece - 1) / kPiece;
    }
}

// Nanoseconds, about.
double ClickDetector::PieceCost(Stage stage, std::size_t order) const noexcept {
    constexpr double kErrorCost = 0.07;  // a sample and coefficient
    constexpr double kUsualCost = 3;     // a sample
    constexpr double kCompareCost = 0.4; // a sample
    constexpr double kCollectCost = 1;   // a sample
    switch (stage) {
    case Stage::kUsual: return kUsualCost * static_cast<double>(fNeighbourhood);
    case Stage::kCompare: return kCompareCost * static_cast<double>(fNeighbourhood);
    case Stage::kCollect: return kCollectCost * kPiece;
    case Stage::kCheck: return fCheckCost;
    default: return kErrorCost * static_cast<double>((order + 1) * kPiece);
    }
}

void ClickDetector::Do(std::size_t piece) noexcept {
    switch (fStage) {
    case Stage::kForward: AddEnergy(SamplesOf(piece)); return fModel->ForwardErrors(fSound, fForward, SamplesOf(piece));
    case Stage::kBackward: return fModel->BackwardErrors(fSound, fBackward, SamplesOf(piece));
    case Stage::kUsual: return MeasureUsualError(piece);
    case Stage::kCompare: return CompareErrors(piece);
    case Stage::kCollect: return CollectClicks(SamplesOf(piece).end);
    default: return;
    }
}

StepRange ClickDetector::SamplesOf(std::size_t piece) const noexcept {
    return {piece * kPiece, std::min(fExcess.size(), (piece + 1) * kPiece)};
}

void ClickDetector::AddEnergy(StepRange samples) noexcept {
    for (std::size_t i = samples.begin; i < samples.end; ++i)
        fEnergy += fSound[i] * fSound[i];
}

void ClickDetector::MeasureUsualError(std::size_t neighbourhood) noexcept {
    const double soundLevel = std::sqrt(fEnergy / static_cast<double>(fSound.size()));
    const double least = std::max(kLeastError, kLeastErrorToSound * soundLevel);
    const std::size_t begin = std::max(fOrder, neighbourhood * fNeighbourhood);
    const std::size_t end = std::min(fSound.size() - fOrder, (neighbourhood + 1) * fNeighbourhood);
    const auto errors = std::span<const double>(fForward).subspan(begin, end - begin);
    fUsual[neighbourhood] = std::max(least, MedianMagnitude(errors, fScratch) / kNormalMedian);
}

// The largest of the neighbours' too: where sound sets in, some errors are as large as those to come.
double ClickDetector::UsualErrorAt(std::size_t neighbourhood) const noexcept {
    double usual = fUsual[neighbourhood];
    if (neighbourhood > 0) usual = std::max(usual, fUsual[neighbourhood - 1]);
    if (neighbourhood + 1 < fUsual.size()) usual = std::max(usual, fUsual[neighbourhood + 1]);
    return usual;
}

void ClickDetector::CompareErrors(std::size_t neighbourhood) noexcept {
    const double scale = 1 / (fSettings.threshold * UsualErrorAt(neighbourhood));
    for (std::size_t k = neighbourhood * fNeighbourhood; k < (neighbourhood + 1) * fNeighbourhood; ++k)
        fExcess[k] = scale * std::min(std::abs(fForward[k]), std::abs(fBackward[k]));
}

// Those that stand out before `end`.
void ClickDetector::CollectClicks(std::size_t end) noexcept {
    const std::size_t separation = std::max(kShortestSeparation, fSettings.longest / kSeparationsPerLongest);
    const std::size_t last = fExcess.size() - fOrder; // one past
    const double part = fSettings.isModelSpoiled ? kSpoiledPartOfPeak : kPartOfPeak;
    for (; fPlace < std::min(end, last); ++fPlace) {
        if (fExcess[fPlace] <= kGoesOn || ExcessFrom(fPlace, last) <= 1) continue;
        const Click click = ClickAt(fPlace, last, separation, part);
        if (!fClicks.empty() && click.begin <= fClicks.back().end)
            fClicks.back().end = std::max(fClicks.back().end, click.end);
        else
            fClicks.push_back(click);
        fPlace = std::max(fPlace, click.end);
    }
}

void ClickDetector::FinishCollecting() noexcept {
    std::erase_if(fClicks, [&](const Click& click) { return click.end - click.begin > fSettings.longest; });
    fCandidates = fClicks.size();
    for (const Click& click : fClicks)
        fSamplesFound += click.end - click.begin;
    if (fClicks.empty()) return;
    double least = std::numeric_limits<double>::infinity();
    for (const Click& click : fClicks)
        least = std::min(least, std::abs(fForward[PeakOf(click)]));
    fPulses.Take(fForward, least);
    fCheckCost = MeanCostOfChecking();
}

// By some of them: a few may take longer than all others.
double ClickDetector::MeanCostOfChecking() noexcept {
    constexpr std::size_t kSample = 16;
    double cost = 0;
    std::size_t count = 0;
    for (std::size_t i = 0; i < fClicks.size(); i += fClicks.size() / kSample + 1, ++count)
        cost += StandsOut(fClicks[i]) ? fPulses.CostOf(PeakOf(fClicks[i])) : 0;
    return kBesideCost * static_cast<double>(2 * fBeside) + cost / static_cast<double>(count);
}

// Looks at the next click, or goes on with comparing it to others.
double ClickDetector::Check() noexcept {
    if (fIsComparing) {
        const double cost = fPulses.Work();
        if (fPulses.IsDone()) FinishChecking(!fPulses.IsPulse());
        return cost;
    }
    const Click click = fClicks[fPiece];
    fIsComparing = StandsOut(click);
    if (fIsComparing)
        fPulses.Begin(PeakOf(click));
    else
        FinishChecking(false);
    return kBesideCost * static_cast<double>(2 * fBeside);
}

// Those that are clicks move to the front.
void ClickDetector::FinishChecking(bool isClick) noexcept {
    const Click click = fClicks[fPiece++];
    ++fChecked;
    fIsComparing = false;
    if (isClick)
        fClicks[fLeft++] = click;
    else
        fSamplesFound -= click.end - click.begin;
}

// Of the error at `begin` or of the burst that begins there.
double ClickDetector::ExcessFrom(std::size_t begin, std::size_t end) const noexcept {
    end = std::min(end, begin + fBurst);
    double sum = 0;
    for (std::size_t i = begin; i < end; ++i)
        sum += fExcess[i] * fExcess[i];
    return std::max(fExcess[begin], std::sqrt(sum) / kBurstThreshold);
}

// The click that stands out from `place` on. It may begin a little earlier.
ClickDetector::Click ClickDetector::ClickAt(std::size_t place, std::size_t last, std::size_t separation,
                                            double partOfPeak) const noexcept {
    Click click = {place, place + 1};
    double peak = fExcess[place];
    const auto least = [&] { return std::max(kGoesOn, partOfPeak * peak); };
    for (std::size_t i = place; i < std::min(last, click.end + separation); ++i) {
        if (fExcess[i] <= least()) continue;
        peak = std::max(peak, fExcess[i]);
        click.end = i + 1;
    }
    while (fExcess[click.begin] <= least())
        ++click.begin;
    while (fExcess[click.begin - 1] > least())
        --click.begin;
    return click;
}

// The largest of those from any of its samples on.
double ClickDetector::ExcessOf(const Click& click) const noexcept {
    double peak = 0;
    double burst = 0;
    double sum = 0; // of the squares of the last errors, as many as a burst has
    for (std::size_t i = click.begin; i < click.end; ++i) {
        peak = std::max(peak, fExcess[i]);
        sum += fExcess[i] * fExcess[i];
        if (i >= click.begin + fBurst) sum -= fExcess[i - fBurst] * fExcess[i - fBurst];
        burst = std::max(burst, sum);
    }
    return std::max(peak, std::sqrt(burst) / kBurstThreshold);
}

// Against the errors right beside it too, each from the side that the click does not spoil.
bool ClickDetector::StandsOut(const Click& click) noexcept {
    const double least = fSettings.isModelSpoiled ? kSpoiledExcess : 1;
    const std::size_t last = fSound.size() - fOrder;
    const std::size_t before = std::min(fBeside, click.begin - std::min(click.begin, fOrder));
    const std::size_t after = std::min(fBeside, last - std::min(last, click.end));
    const std::size_t begin = click.begin - before;
    const double most = kNormalMedian * ExcessOf(click) * UsualErrorAt(click.begin / fNeighbourhood) / least;
    return IsMedianMagnitudeBelow(most, std::span(fForward).subspan(begin, before)) &&
           IsMedianMagnitudeBelow(most, std::span(fBackward).subspan(click.end, after)) &&
           !IsAtAnEdge(fSound.subspan(begin, before), fSound.subspan(click.end, after));
}

// Whether one side is that much softer than the other. Mostly half of either is not even that much softer than the
// peak of both, which needs no sorting.
bool ClickDetector::IsAtAnEdge(std::span<const double> before, std::span<const double> after) noexcept {
    double peak = 0;
    for (const double value : before)
        peak = std::max(peak, std::abs(value));
    for (const double value : after)
        peak = std::max(peak, std::abs(value));
    if (!IsMedianMagnitudeBelow(kEdge * peak, before) && !IsMedianMagnitudeBelow(kEdge * peak, after)) return false;
    const double levelBefore = MedianMagnitude(before, fScratch);
    const double levelAfter = MedianMagnitude(after, fScratch);
    return std::min(levelBefore, levelAfter) < kEdge * std::max(levelBefore, levelAfter);
}

std::size_t ClickDetector::PeakOf(const Click& click) const noexcept {
    const auto begin = fForward.begin() + static_cast<std::ptrdiff_t>(click.begin);
    const auto end = fForward.begin() + static_cast<std::ptrdiff_t>(click.end);
    const auto peak =
        std::max_element(begin, end, [](double one, double other) { return std::abs(one) < std::abs(other); });
    return static_cast<std::size_t>(peak - fForward.begin());
}

} // namespace qoc::dsp
