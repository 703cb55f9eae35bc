#include "host/UndoHistory.h"

#include "krocore/Localizer.h"

#include <algorithm>
#include <utility>

namespace qohost {

using kroaudiofilterhost::AudioFilter;
using kroaudiofilterhost::AudioFilterParameterChange;

UndoHistory::UndoHistory(boost::intrusive_ptr<AudioFilter> filter, std::size_t limit)
    : fFilter(std::move(filter)), fLimit(std::max<std::size_t>(limit, 1)) {
    fFilter->AddListener(*this);
}

UndoHistory::~UndoHistory() {
    fFilter->RemoveListener(*this);
}

bool UndoHistory::Undo() {
    if (!CanUndo()) return false;
    Write(fSteps[--fPosition], &Change::before);
    return true;
}

bool UndoHistory::Redo() {
    if (!CanRedo()) return false;
    Write(fSteps[fPosition++], &Change::after);
    return true;
}

krocore::string16 UndoHistory::UndoName() const {
    return fPosition > 0 ? NameOf(fSteps[fPosition - 1]) : krocore::string16();
}

krocore::string16 UndoHistory::RedoName() const {
    return fPosition < fSteps.size() ? NameOf(fSteps[fPosition]) : krocore::string16();
}

void UndoHistory::Clear() noexcept {
    fSteps.clear();
    fOpenStep.clear();
    fPosition = 0;
}

void UndoHistory::ParameterChanged(AudioFilter& /*filter*/, const AudioFilterParameterChange& change) {
    if (fRestoring || change.quiet) return;
    const auto known = std::ranges::find(fOpenStep, change.index, &Change::index);
    if (known != fOpenStep.end()) {
        known->after = change.newValue;
    } else {
        fOpenStep.push_back({change.index, change.oldValue, change.newValue});
    }
    if (fOpenBrackets.empty()) CloseStep();
}

void UndoHistory::ParameterEditBegun(AudioFilter& /*filter*/, int index) {
    fOpenBrackets.push_back(index);
}

void UndoHistory::ParameterEditEnded(AudioFilter& /*filter*/, int index) {
    const auto bracket = std::ranges::find(fOpenBrackets, index);
    if (bracket == fOpenBrackets.end()) return;
    fOpenBrackets.erase(bracket);
    if (fOpenBrackets.empty()) CloseStep();
}

void UndoHistory::CloseStep() {
    std::erase_if(fOpenStep, [](const Change& change) { return change.before == change.after; });
    if (fOpenStep.empty()) return;
    fSteps.resize(fPosition);
    fSteps.push_back(std::exchange(fOpenStep, {}));
    if (fSteps.size() > fLimit) fSteps.pop_front();
    fPosition = fSteps.size();
}

void UndoHistory::Write(const Step& step, float Change::*value) {
    fRestoring = true;
    for (const Change& change : step)
        fFilter->SetParameterValue(change.index, change.*value);
    fRestoring = false;
}

krocore::string16 UndoHistory::NameOf(const Step& step) const {
    const auto* info = step.size() == 1 ? fFilter->GetParameterInfo(step.front().index) : nullptr;
    return info != nullptr ? info->GetName() : krocore::Localize("$$$/qohost/Undo/Settings=Settings");
}

} // namespace qohost
