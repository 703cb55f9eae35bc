#pragma once

#include "kroui/controls/UI_StaticText.h"
#include "kroui/controls/UI_TextButton.h"
#include "workbench/TransportButton.h"

#include <boost/function.hpp>

namespace workbench {

// The buttons under the sound: play, stop, loop, bypass, and the time.
class TransportBar final : public kroui::ui::UI_Node {
public:
    static constexpr float kHeight = 88;

    struct Actions {
        boost::function<void()> playOrPause;
        boost::function<void()> stop;
        boost::function<void(bool)> loop;
        boost::function<void(bool)> bypass;
    };
    explicit TransportBar(Actions actions);

    void SetPlaying(bool playing);
    void SetLooping(bool looping) { fLoop->SetValue(looping ? 1 : 0); }
    void SetBypassed(bool bypassed) { fBypass->SetValue(bypassed ? 1 : 0); }
    // Seconds; writes only what is another.
    void SetTime(double position, double duration);

    void UI_Draw(kroui::limner::Limner* limner) override;
    void UI_SizeChanged(const kroui::RectT<float>& rect) override;

private:
    void Connect();

    Actions fActions;
    boost::intrusive_ptr<TransportButton> fPlay;
    boost::intrusive_ptr<TransportButton> fStop;
    boost::intrusive_ptr<TransportButton> fLoop;
    boost::intrusive_ptr<kroui::controls::UI_TextButton> fBypass;
    boost::intrusive_ptr<kroui::controls::UI_StaticText> fTime;
    boost::intrusive_ptr<kroui::controls::UI_StaticText> fDuration;
    long fMilliseconds = -1; // as written
    double fShownDuration = -1;
    bool fIsPlaying = false;
};

} // namespace workbench
