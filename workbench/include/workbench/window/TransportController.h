#pragma once

#include "workbench/session/Session.h"
#include "workbench/views/TransportBar.h"
#include "workbench/views/WaveformView.h"

namespace workbench {

// Carries playing and selecting between the session and the controls for them. Owned by the view, which lives no longer
// than the session.
class TransportController {
public:
    // `render`: the user wants the sound rendered, or no more.
    TransportController(Session& session, boost::function<void()> render);

    const boost::intrusive_ptr<TransportBar>& Bar() const { return fBar; }
    const boost::intrusive_ptr<WaveformView>& Waveform() const { return fWaveform; }

    // The sound is another now.
    void ShowSound();
    // Time has gone on.
    void Follow();

    void PlayOrPause();
    void Stop();
    void SelectAll();
    void ToggleLoop() { SetLooping(!fSession.Engine().IsLooping()); }
    void ToggleBypass() { SetBypassed(!fSession.Engine().IsBypassed()); }

private:
    void Seek(double seconds);
    void Select(const TimeRange& range);
    void SetLooping(bool looping);
    void SetBypassed(bool bypassed);

    Session& fSession;
    boost::intrusive_ptr<TransportBar> fBar;
    boost::intrusive_ptr<WaveformView> fWaveform;
};

} // namespace workbench
