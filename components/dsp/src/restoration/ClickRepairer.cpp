#include "qoc/dsp/restoration/ClickRepairer.h"

#include <algorithm>

namespace qoc::dsp {

namespace {

// How much finer the model is that fills a click in.
constexpr std::size_t kFineOrders = 2;
constexpr double kGuardSeconds = 0.2e-3;
// Samples that are no farther apart than that are of one click.
constexpr std::size_t kOneClick = 4;
// Of what stands out.
constexpr double kPartThatAreClicks = 0.25;

constexpr double kTakeCost = 1; // nanoseconds a sample, about

} // namespace

void ClickRepairer::Filler::Prepare(std::size_t frame, std::size_t modelled, std::size_t largestOrder) {
    model.Prepare(modelled, kFineOrders * largestOrder);
    interpolator.Prepare(frame, kFineOrders * largestOrder);
}

void ClickRepairer::Prepare(const RepairStream::Layout& layout, double sampleRate, std::size_t largestOrder,
                            Filler& filler) {
    constexpr std::size_t kNeighbourhoodsPerHop = 2;
    fLayout = layout;
    fFiller = &filler;
    fGuard = static_cast<std::size_t>(kGuardSeconds * sampleRate);
    fModel.Prepare(2 * layout.hop, largestOrder);
    fDetector.Prepare(layout.Frame(), layout.hop / kNeighbourhoodsPerHop, sampleRate);
    fSound.assign(layout.Frame(), 0.0);
    fRestored.assign(layout.Frame(), 0.0);
    fUnknown.clear();
    fUnknown.reserve(layout.Frame());
    fPassCosts.fill(0);
    fStage = Stage::kDone;
}

void ClickRepairer::Begin(std::span<float> repaired, const Settings& settings) noexcept {
    fRepaired = repaired;
    fSettings = settings;
    fUnknown.clear();
    fRepairs = 0;
    fPass = 0;
    fPassCost = 0;
    fTaken = 0;
    fFitStep = 0;
    fStage = Stage::kTake;
}

double ClickRepairer::Work() noexcept {
    constexpr double kForgetting = 0.9; // a frame
    const std::size_t pass = fPass;
    const double cost = DoNext();
    fPassCost += cost;
    if (!IsDone() && fPass == pass) return cost;
    fPassCosts[pass] = std::max(fPassCost, kForgetting * fPassCosts[pass]);
    fPassCost = 0;
    return cost;
}

double ClickRepairer::DoNext() noexcept {
    switch (fStage) {
    case Stage::kTake: return Take();
    case Stage::kFit: return Fit();
    case Stage::kDetect: return Detect();
    case Stage::kFineFit: return FitFine();
    case Stage::kFill: return Fill();
    case Stage::kDone: return 0;
    }
    return 0;
}

// Where nothing was found yet nothing is expected; what was found is looked at in every pass that is left.
double ClickRepairer::CostLeft() const noexcept {
    if (IsDone()) return 0;
    const double fitting = CostOfFitting(LinearPrediction::kFitSteps - fFitStep);
    const double fit = fModel.CostOfFit();
    const double detect = fDetector.CostOf(fSettings.order);
    const double fill =
        fFiller->interpolator.CostOf(fDetector.SamplesFound() + fUnknown.size(), kFineOrders * fSettings.order);
    double left = 0;
    switch (fStage) {
    case Stage::kTake: left = CostOfTaking() + fitting + detect + fit + fill; break;
    case Stage::kFit: left = fitting + detect + fit + fill; break;
    case Stage::kDetect: left = fDetector.CostLeft() + fit + fill; break;
    case Stage::kFineFit: left = fitting + fill; break;
    default: left = fFiller->interpolator.CostLeft(); break;
    }
    const bool isChecking = fPass == 0 && fUnknown.empty();
    if (isChecking && fDetector.SamplesFound() == 0) return left;
    const double likely = isChecking ? kPartThatAreClicks : 1;
    for (std::size_t pass = fPass + 1; pass < kPasses; ++pass)
        left += likely * std::max(2 * fit + detect + fill, fPassCosts[pass]);
    return left;
}

double ClickRepairer::CostOfLooking() const noexcept {
    if (!IsLooking()) return 0;
    if (fStage == Stage::kDetect) return fDetector.CostOfCollecting();
    return CostOfTaking() + CostOfFitting(LinearPrediction::kFitSteps - fFitStep) +
           fDetector.CostOfCollecting(fSettings.order);
}

double ClickRepairer::CostOfTaking() const noexcept {
    return kTakeCost * static_cast<double>(fSound.size() - fTaken);
}

double ClickRepairer::CostOfFitting(std::size_t steps) const noexcept {
    return fModel.CostOfFit() / LinearPrediction::kFitSteps * static_cast<double>(steps);
}

double ClickRepairer::Take() noexcept {
    constexpr std::size_t kPiece = 2048;
    const std::size_t count = std::min(kPiece, fSound.size() - fTaken);
    const auto piece = fRepaired.subspan(fTaken, count);
    std::ranges::copy(piece, fSound.begin() + static_cast<std::ptrdiff_t>(fTaken));
    std::ranges::copy(piece, fRestored.begin() + static_cast<std::ptrdiff_t>(fTaken));
    fTaken += count;
    if (fTaken == fSound.size()) StartPass();
    return kTakeCost * static_cast<double>(count);
}

void ClickRepairer::StartPass() noexcept {
    fStage = Stage::kFit;
    fFitStep = 0;
}

double ClickRepairer::Fit() noexcept {
    fModel.Fit(Middle(), fSettings.order, fFitStep);
    if (++fFitStep < LinearPrediction::kFitSteps) return CostOfFitting(1);
    const bool isFromNew = fPass < 2;
    if (isFromNew) fUnknown.clear();
    ClickDetector::Settings settings = fSettings.detection;
    settings.isModelSpoiled = fPass == 0;
    fDetector.Begin(fModel, isFromNew ? fSound : fRestored, settings);
    fStage = Stage::kDetect;
    return CostOfFitting(1);
}

double ClickRepairer::Detect() noexcept {
    const double cost = fDetector.Work();
    if (fDetector.IsDone()) FinishDetecting();
    return cost;
}

void ClickRepairer::FinishDetecting() noexcept {
    const auto clicks = fDetector.Clicks();
    if (clicks.empty() && fPass != 1) return TakeOver();
    for (const ClickDetector::Click& click : clicks)
        AddClick(click, fPass == 0 ? fGuard : fPass == 1 ? 0 : 1);
    fStage = Stage::kFineFit;
    fFitStep = 0;
}

// A finer model than the one that finds clicks tells what was there.
double ClickRepairer::FitFine() noexcept {
    LinearPrediction& model = fFiller->model;
    model.Fit(Middle(), kFineOrders * fSettings.order, fFitStep);
    if (++fFitStep == LinearPrediction::kFitSteps) {
        fRestored = fSound;
        fFiller->interpolator.Begin(model.Coefficients(), fUnknown, fRestored);
        fStage = Stage::kFill;
    }
    return CostOfFitting(1);
}

double ClickRepairer::Fill() noexcept {
    const double cost = fFiller->interpolator.Work();
    if (!fFiller->interpolator.IsDone()) return cost;
    if (++fPass < kPasses)
        StartPass();
    else
        TakeOver();
    return cost;
}

// Of what has been restored, as much as a model is fitted to.
std::span<const double> ClickRepairer::Middle() const noexcept {
    return std::span(fRestored).subspan(fLayout.before - fLayout.hop / 2, 2 * fLayout.hop);
}

void ClickRepairer::AddClick(const ClickDetector::Click& click, std::size_t guard) noexcept {
    const std::size_t reach = kFineOrders * fSettings.order;
    const std::size_t begin = std::max(click.begin - std::min(click.begin, guard), reach);
    const std::size_t end = std::min(click.end + guard, fSound.size() - reach);
    for (std::size_t place = begin; place < end; ++place) {
        const auto next = std::ranges::lower_bound(fUnknown, place);
        if (next == fUnknown.end() || *next != place) fUnknown.insert(next, place);
    }
}

// Whole clicks that end within the hop or go on behind it, but for the samples that have been heard.
void ClickRepairer::TakeOver() noexcept {
    fStage = Stage::kDone;
    const std::size_t end = fLayout.before + fLayout.hop;
    for (std::size_t first = 0, next = 0; first < fUnknown.size(); first = next) {
        next = first + 1;
        while (next < fUnknown.size() && fUnknown[next] <= fUnknown[next - 1] + kOneClick)
            ++next;
        if (fUnknown[next - 1] < fLayout.before || fUnknown[first] >= end) continue;
        ++fRepairs;
        for (std::size_t i = first; i < next; ++i) {
            const std::size_t place = fUnknown[i];
            if (place >= fLayout.before) fRepaired[place] = static_cast<float>(fRestored[place]);
        }
    }
}

} // namespace qoc::dsp
