#include "workbench/window/TransportController.h"

#include <cmath>

namespace workbench {

TransportController::TransportController(Session& session, boost::function<void()> render)
    : fSession(session),
      fBar(new TransportBar({[this] { PlayOrPause(); }, [this] { Stop(); }, [this](bool on) { SetLooping(on); },
                             [this](bool on) { SetBypassed(on); }, std::move(render)})),
      fWaveform(new WaveformView(
          {[this](double seconds) { Seek(seconds); }, [this](const TimeRange& range) { Select(range); }})) {
}

void TransportController::ShowSound() {
    fWaveform->SetSound(fSession.CurrentSound(), fSession.Peaks());
    fBar->SetRange({0, fSession.CurrentSound().Seconds()}, false);
    fBar->SetTime(0);
}

void TransportController::Follow() {
    const double position = fSession.Position();
    fBar->SetPlaying(fSession.Engine().IsPlaying());
    fBar->SetTime(position);
    fWaveform->SetPosition(position);
    fWaveform->FollowPeaks();
}

void TransportController::PlayOrPause() {
    fSession.Engine().IsPlaying() ? fSession.Stop() : fSession.Play();
    Follow();
}

void TransportController::Stop() {
    fSession.StopOrRewind();
    Follow();
}

void TransportController::Seek(double seconds) {
    fSession.Seek(seconds);
    Follow();
}

void TransportController::SelectAll() {
    const TimeRange all = {0, fSession.CurrentSound().Seconds()};
    fWaveform->SetSelection(all);
    Select(all);
}

void TransportController::Select(const TimeRange& range) {
    const qohost::SoundSource& sound = fSession.CurrentSound();
    const auto frame = [&sound](double seconds) {
        return static_cast<std::size_t>(std::llround(seconds * sound.SampleRate()));
    };
    fSession.Select({frame(range.begin), frame(range.end)});
    fBar->SetRange(fSession.HasSelection() ? range : TimeRange{0, sound.Seconds()}, fSession.HasSelection());
}

void TransportController::SetLooping(bool looping) {
    fSession.Engine().SetLoop(looping);
    fBar->SetLooping(looping);
}

void TransportController::SetBypassed(bool bypassed) {
    fSession.Engine().SetBypass(bypassed);
    fBar->SetBypassed(bypassed);
}

} // namespace workbench
