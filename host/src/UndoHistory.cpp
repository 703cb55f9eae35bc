#include "host/UndoHistory.h"

#include "krocore/Localizer.h"

#include <algorithm>
#include <chrono>
#include <iterator>
#include <utility>

namespace qohost {

using kroaudiofilterhost::AudioFilter;
using kroaudiofilterhost::AudioFilterParameterChange;

namespace {

double SteadySeconds() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

} // namespace

UndoHistory::UndoHistory(boost::intrusive_ptr<AudioFilter> filter, std::size_t limit, Clock clock)
    : fFilter(std::move(filter)), fLimit(std::max<std::size_t>(limit, 1)),
      fClock(clock ? std::move(clock) : Clock(&SteadySeconds)) {
    fFilter->AddListener(*this);
}

UndoHistory::~UndoHistory() {
    fFilter->RemoveListener(*this);
}

void UndoHistory::InputEnds() {
    fInInput = false;
    CloseIfDone();
}

bool UndoHistory::IsGestureOpen(int index) const {
    return std::ranges::find(fOpenBrackets, index) != fOpenBrackets.end();
}

bool UndoHistory::Undo() {
    if (!CanUndo()) return false;
    fLastIsLoose = false;
    Write(fSteps[--fPosition], &Change::before);
    return true;
}

bool UndoHistory::Redo() {
    if (!CanRedo()) return false;
    fLastIsLoose = false;
    Write(fSteps[fPosition++], &Change::after);
    return true;
}

krocore::string16 UndoHistory::UndoName() const {
    return fPosition > 0 ? NameOf(fSteps[fPosition - 1]) : krocore::string16();
}

krocore::string16 UndoHistory::RedoName() const {
    return fPosition < fSteps.size() ? NameOf(fSteps[fPosition]) : krocore::string16();
}

void UndoHistory::ParameterChanged(AudioFilter& /*filter*/, const AudioFilterParameterChange& change) {
    if (fRestoring || (change.quiet && !fInInput)) return;
    const auto known = std::ranges::find(fOpenStep, change.index, &Change::index);
    if (known != fOpenStep.end()) {
        known->after = change.newValue;
        known->quiet = known->quiet && change.quiet;
    } else {
        fOpenStep.push_back({change.index, change.oldValue, change.newValue, change.quiet});
    }
    CloseIfDone();
}

void UndoHistory::ParameterEditBegun(AudioFilter& /*filter*/, int index) {
    fOpenBrackets.push_back(index);
    fIsLoose = false;
}

void UndoHistory::ParameterEditEnded(AudioFilter& /*filter*/, int index) {
    const auto bracket = std::ranges::find(fOpenBrackets, index);
    if (bracket == fOpenBrackets.end()) return;
    fOpenBrackets.erase(bracket);
    CloseIfDone();
}

void UndoHistory::CloseIfDone() {
    if (fInInput || !fOpenBrackets.empty()) return;
    std::erase_if(fOpenStep, [](const Change& change) { return change.before == change.after; });
    if (std::ranges::all_of(fOpenStep, &Change::quiet)) fOpenStep.clear();
    if (fIsLoose && fOpenStep.size() == 1)
        CloseLooseStep();
    else
        CloseStep();
    fIsLoose = true;
}

void UndoHistory::CloseStep() {
    if (fOpenStep.empty()) return;
    fSteps.resize(fPosition);
    fSteps.push_back(std::exchange(fOpenStep, {}));
    if (fSteps.size() > fLimit) fSteps.pop_front();
    fPosition = fSteps.size();
    fLastIsLoose = false;
}

void UndoHistory::CloseLooseStep() {
    if (GoesOnFromLastStep()) {
        Change& last = fSteps.back().front();
        last.after = fOpenStep.front().after;
        fOpenStep.clear();
        if (last.after == last.before) fSteps.pop_back();
        fLastIsLoose = fPosition == fSteps.size();
        fPosition = fSteps.size();
    } else {
        CloseStep();
        fLastIsLoose = true;
    }
    fLastLooseTime = fClock();
}

bool UndoHistory::GoesOnFromLastStep() const {
    if (!fLastIsLoose || fPosition == 0 || fPosition != fSteps.size()) return false;
    if (fClock() - fLastLooseTime > kMergeSeconds) return false;
    const int index = fOpenStep.front().index;
    const auto* const info = fFilter->GetParameterInfo(index);
    return info && info->GetKind() == kroaudiofilterhost::AudioFilterParameterInfo::Kind::kNumber &&
           fSteps.back().size() == 1 && fSteps.back().front().index == index;
}

void UndoHistory::Write(const Step& step, float Change::*value) {
    std::vector<kroaudiofilterhost::AudioFilterParameterValue> values;
    std::ranges::transform(step, std::back_inserter(values), [value](const Change& change) {
        return kroaudiofilterhost::AudioFilterParameterValue{change.index, change.*value};
    });
    fRestoring = true;
    fFilter->SetParameterValues(values);
    fRestoring = false;
}

krocore::string16 UndoHistory::NameOf(const Step& step) const {
    const auto* info = step.size() == 1 ? fFilter->GetParameterInfo(step.front().index) : nullptr;
    return info != nullptr ? info->GetName() : krocore::Localize("$$$/qohost/Undo/Settings=Settings");
}

} // namespace qohost
