#pragma once

#include "host/SoundSource.h"
#include "kroui/ui/UI_Node.h"
#include "workbench/sound/WaveformPeaks.h"

#include <boost/function.hpp>

#include <memory>

namespace workbench {

// A part of a sound, in seconds. Empty if the end is not behind the begin.
struct TimeRange {
    double begin = 0;
    double end = 0;

    bool IsEmpty() const { return end <= begin; }
};

// The whole sound as a picture, with the place that is heard and the part that is selected. A click goes to a place and
// selects nothing; a drag, or a press with Shift, selects. With the focus the arrow keys go, with Shift they select.
class WaveformView final : public kroui::ui::UI_Node {
public:
    // What the user wants.
    struct Actions {
        boost::function<void(double)> seek; // seconds
        boost::function<void(const TimeRange&)> select;
    };
    explicit WaveformView(Actions actions);

    // Nothing of it is selected. The peaks may still be coming.
    void SetSound(const qohost::SoundSource& sound, std::shared_ptr<const WaveformPeaks> peaks);
    // More of the peaks may be known.
    void FollowPeaks();
    void SetPosition(double seconds);
    // Tells nobody.
    void SetSelection(const TimeRange& range);

    void UI_Draw(kroui::limner::Limner* limner) override;
    bool UI_DoMouseEvent(kroui::ui::UI_Node* node, const kroui::ui::MouseEvent& event) override;
    bool UI_DoKeyEvent(const kroui::ui::KeyEvent& event) override;
    void UI_FocusChanged(bool hasFocus) override;
    kroui::ui::AccessibleInfo UI_GetAccessibleInfo() const override;

private:
    kroui::Rect WaveRect() const;
    double KnownSeconds() const;
    float PlaceOf(double seconds) const;
    double TimeAt(float x) const;
    kroui::Rect PlayheadRect(float x) const;
    void DrawSelection(kroui::limner::Limner& limner) const;
    void DrawWave(kroui::limner::Limner& limner) const;
    void DrawUnknown(kroui::limner::Limner& limner) const;
    void DrawRuler(kroui::limner::Limner& limner) const;
    bool IsLit(float x) const;
    bool Press(const kroui::ui::MouseEvent& event);
    bool DragTo(float x);
    bool Release();
    bool SelectTo(double seconds);
    bool SelectByKey(double step);
    bool SeekTo(double seconds);

    Actions fActions;
    std::shared_ptr<const WaveformPeaks> fPeaks = std::make_shared<const WaveformPeaks>();
    double fKnownSeconds = 0; // how far the peaks were known last
    double fSampleRate = 1;
    double fSeconds = 0;
    double fPosition = 0;
    TimeRange fSelection;
    double fAnchor = 0;        // the end of the selection that stays, seconds
    float fPressedAt = 0;      // view units
    bool fIsSelecting = false; // the press that is held has become a drag
    float fDrawnAt = -1;       // where the play head was put last, view units
};

} // namespace workbench
