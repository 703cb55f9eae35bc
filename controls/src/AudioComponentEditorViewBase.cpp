#include "qocui/controls/AudioComponentEditorViewBase.h"

#include "kroui/ui/UI_NodeManager.h"
#include "qoc/components/MultiChannelComponentBase.h"

namespace qocui::controls {

namespace {

constexpr float kPollSeconds = 0.01F;

} // namespace

AudioComponentEditorViewBase::AudioComponentEditorViewBase(boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> filter)
    : AudioFilterEditorViewBase(filter), fFilter(std::move(filter)),
      fMultiChannelComponent(dynamic_cast<qoc::components::MultiChannelComponentBase*>(fFilter.get())) {
}

AudioComponentEditorViewBase::~AudioComponentEditorViewBase() {
    if (fTimerID != 0) UI_RemoveTimer(fTimerID, false);
    fTimerID = 0;
}

bool AudioComponentEditorViewBase::UI_DoTimerNotify(long timerID) {
    const kroui::ui::MessageScope scope;
    if (timerID == fTimerID) {
        fFilter->ServeAutomation();
        SyncParameters();
    }
    return true;
}

void AudioComponentEditorViewBase::UI_NodeChanged(NodeChange change) {
    if (change == kAttached || change == kDetaching) CheckTimer();
    AudioFilterEditorViewBase::UI_NodeChanged(change);
}

bool AudioComponentEditorViewBase::CanScrollContent() const {
    return false;
}

bool AudioComponentEditorViewBase::CanResizeContent() const {
    return false;
}

void AudioComponentEditorViewBase::Init() {
}

void AudioComponentEditorViewBase::SyncParameters() {
    // By index: an observer may add observers.
    for (std::size_t i = 0; i < fObservers.size(); ++i) {
        const int index = fObservers[i].parameterIndex;
        const float value = GetShownValue(index);
        if (value == fObservers[i].lastValue) continue;
        fObservers[i].lastValue = value;
        fFilter->SetParameterValueQuietly(index, value);
        if (!fAllowObserverNotification) continue;
        const boost::function<void()> callback = fObservers[i].callback;
        callback();
    }
}

float AudioComponentEditorViewBase::GetShownValue(int parameterIndex) const {
    const float value = fFilter->GetParameterValue(parameterIndex);
    float shown = value;
    if (fMultiChannelComponent && fMultiChannelComponent->GetDisplayParameterValue(parameterIndex, shown) &&
        shown != value)
        return shown;
    return value;
}

void AudioComponentEditorViewBase::AddParameterObserver(int parameterIndex, boost::function<void()> callback) {
    fObservers.push_back({parameterIndex, fFilter->GetParameterValue(parameterIndex), std::move(callback)});
}

void AudioComponentEditorViewBase::CheckTimer() {
    const bool isInTree = UI_GetParentEventRecipientNode() != nullptr;
    if (fTimerID != 0) {
        if (isInTree) UI_RemoveTimer(fTimerID, true);
        fTimerID = 0;
    } else if (isInTree) {
        fTimerID = kroui::ui::UI_NodeManager::Get().GetUniqueTimerID();
        UI_InstallTimer(kPollSeconds, fTimerID);
    }
}

} // namespace qocui::controls
