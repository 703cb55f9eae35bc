#include "qoc/dsp/restoration/ClickDetector.h"

#include <algorithm>
#include <cmath>

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
// Nanoseconds a sample beside a click and one of the frame, about.
constexpr double kStandsOutCost = 40;
constexpr double kFirstCheckCost = 1.5;

std::size_t CountOf(double seconds, double sampleRate) noexcept {
    return std::max<std::size_t>(1, static_cast<std::size_t>(std::lround(seconds * sampleRate)));
}

} // namespace

void ClickDetector::Prepare(std::size_t frame, std::size_t neighbourhood, double sampleRate) {
    fNeighbourhood = neighbourhood;
    fBeside = CountOf(kBesideSeconds, sampleRate);
    fBurst = CountOf(kBurstSeconds, sampleRate);
    for (std::vector<double>* values : {&fForward, &fBackward, &fExcess, &fSorted})
        values->assign(frame, 0.0);
    fUsual.assign(frame / neighbourhood, 0.0);
    fClicks.clear();
    fClicks.reserve(frame);
    fStage = Stage::kDone;
    fCandidates = 0;
    fChecked = 0;
    fSamplesFound = 0;
    fCheckCost = kFirstCheckCost * static_cast<double>(frame);
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
}

double ClickDetector::Work() noexcept {
    if (IsDone()) return 0;
    double cost = PieceCost(fStage, fOrder);
    if (fPiece < Pieces(fStage)) Do(fPiece++);
    if (fStage == Stage::kCheck) cost = fLastCheckCost;
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
    constexpr double kErrorCost = 0.17;  // a sample and coefficient
    constexpr double kUsualCost = 15;    // a sample
    constexpr double kCompareCost = 1.2; // a sample
    constexpr double kCollectCost = 2;   // a sample
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
    case Stage::kCheck: return CheckClick(piece);
    case Stage::kDone: return;
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
    fUsual[neighbourhood] = std::max(least, Deviation(std::span(fForward).subspan(begin, end - begin)));
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
    if (!fClicks.empty()) fPulses.Take(fForward);
}

// Those that are clicks move to the front.
void ClickDetector::CheckClick(std::size_t index) noexcept {
    constexpr double kMemory = 0.7;
    const Click click = fClicks[index];
    ++fChecked;
    const bool standsOut = StandsOut(click);
    const bool isClick = standsOut && !IsPulse(click);
    fLastCheckCost = kStandsOutCost * static_cast<double>(fBeside) + (standsOut ? fPulses.Cost() : 0);
    fCheckCost = kMemory * fCheckCost + (1 - kMemory) * fLastCheckCost;
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

// Against the errors right beside it too, each from the side that the click does not spoil.
bool ClickDetector::StandsOut(const Click& click) noexcept {
    const double least = fSettings.isModelSpoiled ? kSpoiledExcess : 1;
    const std::size_t last = fSound.size() - fOrder;
    const std::size_t before = std::min(fBeside, click.begin - std::min(click.begin, fOrder));
    const std::size_t after = std::min(fBeside, last - std::min(last, click.end));
    const std::size_t begin = click.begin - before;
    const double usual = std::max(Deviation(std::span(fForward).subspan(begin, before)),
                                  Deviation(std::span(fBackward).subspan(click.end, after)));
    double excess = 0;
    for (std::size_t i = click.begin; i < click.end; ++i)
        excess = std::max(excess, ExcessFrom(i, click.end));
    if (!(excess * UsualErrorAt(click.begin / fNeighbourhood) > least * usual)) return false;
    const double levelBefore = Deviation(fSound.subspan(begin, before));
    const double levelAfter = Deviation(fSound.subspan(click.end, after));
    return std::min(levelBefore, levelAfter) >= kEdge * std::max(levelBefore, levelAfter);
}

bool ClickDetector::IsPulse(const Click& click) noexcept {
    const auto begin = fForward.begin() + static_cast<std::ptrdiff_t>(click.begin);
    const auto end = fForward.begin() + static_cast<std::ptrdiff_t>(click.end);
    const auto peak =
        std::max_element(begin, end, [](double one, double other) { return std::abs(one) < std::abs(other); });
    return fPulses.Contains(static_cast<std::size_t>(peak - fForward.begin()));
}

// The standard deviation of values about 0, from their median: a few large ones do not move it. 0 of none.
double ClickDetector::Deviation(std::span<const double> values) noexcept {
    if (values.empty()) return 0;
    std::ranges::transform(values, fSorted.begin(), [](double value) { return std::abs(value); });
    const auto count = static_cast<std::ptrdiff_t>(values.size());
    const auto middle = fSorted.begin() + count / 2;
    std::nth_element(fSorted.begin(), middle, fSorted.begin() + count);
    return *middle / kNormalMedian;
}

} // namespace qoc::dsp
