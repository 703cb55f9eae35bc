#pragma once

#include "kroui/ui/UI_Node.h"
#include "workbench/WaveformPeaks.h"

#include <boost/function.hpp>

namespace workbench {

// The whole sound as a picture, with the place that is heard. A press or drag goes to a place, as do the arrow keys
// while it has the focus.
class WaveformView final : public kroui::ui::UI_Node {
public:
    // The listener hears the time, in seconds, that the user wants.
    explicit WaveformView(boost::function<void(double)> listener);

    void SetSound(const qohost::Sound& sound);
    void SetPosition(double seconds);

    void UI_Draw(kroui::limner::Limner* limner) override;
    bool UI_DoMouseEvent(kroui::ui::UI_Node* node, const kroui::ui::MouseEvent& event) override;
    bool UI_DoKeyEvent(const kroui::ui::KeyEvent& event) override;
    void UI_FocusChanged(bool hasFocus) override;
    kroui::ui::AccessibleInfo UI_GetAccessibleInfo() const override;

private:
    kroui::Rect WaveRect() const;
    float PlaceOf(double seconds) const;
    double TimeAt(float x) const;
    kroui::Rect PlayheadRect(float x) const;
    void DrawWave(kroui::limner::Limner& limner) const;
    void DrawRuler(kroui::limner::Limner& limner) const;
    bool SeekTo(double seconds);

    boost::function<void(double)> fListener;
    WaveformPeaks fPeaks;
    double fSampleRate = 1;
    double fSeconds = 0;
    double fPosition = 0;
    float fDrawnAt = -1; // where the play head was put last, view units
};

} // namespace workbench
