#pragma once

#include "kroui/controls/UI_StaticText.h"
#include "kroui/controls/UI_TextButton.h"
#include "workbench/views/TransportButton.h"
#include "workbench/views/WaveformView.h"

#include <boost/function.hpp>

namespace workbench {

// The buttons under the sound: play, stop, loop, bypass, render, and the time.
class TransportBar final : public kroui::ui::UI_Node {
public:
    static constexpr float kHeight = 88;

    struct Actions {
        boost::function<void()> playOrPause;
        boost::function<void()> stop;
        boost::function<void(bool)> loop;
        boost::function<void(bool)> bypass;
        boost::function<void()> render;
    };
    explicit TransportBar(Actions actions);

    void SetPlaying(bool playing);
    void SetLooping(bool looping) { fLoop->SetValue(looping ? 1 : 0); }
    void SetBypassed(bool bypassed) { fBypass->SetValue(bypassed ? 1 : 0); }
    // While it renders, the button cancels.
    void SetRendering(bool rendering);
    // Seconds; writes only what is another.
    void SetTime(double position);
    // What is played and rendered: a part of the sound, or all of it.
    void SetRange(const TimeRange& range, bool isSelection);

    void UI_Draw(kroui::limner::Limner* limner) override;
    void UI_SizeChanged(const kroui::RectT<float>& rect) override;

private:
    void Connect();
    void ShowRender();

    Actions fActions;
    boost::intrusive_ptr<TransportButton> fPlay;
    boost::intrusive_ptr<TransportButton> fStop;
    boost::intrusive_ptr<TransportButton> fLoop;
    boost::intrusive_ptr<kroui::controls::UI_TextButton> fBypass;
    boost::intrusive_ptr<kroui::controls::UI_TextButton> fRender;
    boost::intrusive_ptr<kroui::controls::UI_StaticText> fTime;
    boost::intrusive_ptr<kroui::controls::UI_StaticText> fRange;
    long fMilliseconds = -1; // as written
    bool fIsPlaying = false;
    bool fIsRendering = false;
    bool fIsSelection = false;
};

} // namespace workbench
