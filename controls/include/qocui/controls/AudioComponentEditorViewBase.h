#pragma once

#include "kroaudiofilterhost/AudioFilter.h"
#include "kroaudiofilterhostui/AudioFilterEditorViewBase.h"
#include "kroui/ui/Signal.h"
#include "qocui/module/Export.h"

#include <boost/function.hpp>
#include <boost/signals2/trackable.hpp>

#include <vector>

namespace qoc::components {
class MultiChannelComponentBase;
}

namespace qocui::controls {

// The base of every editor view: holds the filter that the view edits and, while the view is attached, looks every 10
// ms whether a parameter that it watches has changed (automation, presets, undo, another view) and calls back who
// asked. Owned by the host by reference count; user-interface thread.
class QOCUI_API AudioComponentEditorViewBase : public kroaudiofilterhostui::AudioFilterEditorViewBase,
                                               public boost::signals2::trackable {
public:
    explicit AudioComponentEditorViewBase(boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> filter);
    ~AudioComponentEditorViewBase() override;

    bool UI_DoTimerNotify(long timerID) override;
    void UI_NodeChanged(NodeChange change) override;

    // Whether the panel may be scrolled, and resized, by its host. Either way it may change its size by itself; see
    // GetContentSizeChangedSignal.
    virtual bool CanScrollContent() const;
    virtual bool CanResizeContent() const;
    // Builds the controls. Called once, right after construction, while nobody holds a reference to the view yet.
    virtual void Init();

protected:
    // Calls the observers of the parameters that have changed since the last look, in the order in which they were
    // added. A multichannel component may want another value shown than the one it stores; that one is then written
    // back quietly. Overrides call this version too.
    virtual void SyncParameters();

    boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> GetAudioComponent() { return fFilter; }

    // Calls `callback` at the first look that finds another value of the parameter than the one it has now.
    void AddParameterObserver(int parameterIndex, boost::function<void()> callback);

    // While false, values are followed without calling anybody.
    void SetAllowObserverNotificationDuringSyncParameters(bool allow) { fAllowObserverNotification = allow; }

    // Installs the timer when the view has come into an attached tree, removes it when it leaves.
    void CheckTimer();

private:
    struct ParameterObserver {
        int parameterIndex;
        float lastValue; // normalised
        boost::function<void()> callback;
    };

    float GetShownValue(int parameterIndex) const;

    boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> fFilter;
    long fTimerID = 0;
    kroui::ui::Signal<> fChanged;
    std::vector<ParameterObserver> fObservers;
    bool fAllowObserverNotification = true;
    qoc::components::MultiChannelComponentBase* fMultiChannelComponent; // the filter, if it is one
};

} // namespace qocui::controls
