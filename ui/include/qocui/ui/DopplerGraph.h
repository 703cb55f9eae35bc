#pragma once

#include "kroaudiofilterhost/AudioFilter.h"
#include "kroui/ui/UI_SubView.h"
#include "qocui/module/Export.h"
#include "uit/CacheSurface.h"

namespace qocui::ui {

// The picture of the doppler effect's path: the listener as a cross in the middle, ahead upwards, and the way of the
// source around it for as long as the sound lasts, a dot a second, with an arrow head at its end. Takes no input. Made
// by the doppler editor, which hands it the parameters' natural values, and owned by that editor's control tree.
class QOCUI_API DopplerGraph : public kroui::ui::UI_SubView {
public:
    // The filter tells how long the sound is.
    explicit DopplerGraph(boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> filter);

    // Distances are metres, the velocity metres a second, the direction degrees clockwise from straight ahead. Nothing
    // is checked or clamped. Each repaints the whole view.
    void SetStartingDistance(float distance); // from the path's centre; the radius of a circular path
    void SetVelocity(float velocity);
    void SetDirection(float degrees); // where the source comes from, or starts
    void SetPassesFront(float distance);
    void SetPassesRight(float distance);
    void SetCircular(bool circular);
    // Repaints the whole view if the sound is not as long as at the call before.
    void FollowDuration();

    void UI_SizeChanged(const kroui::RectT<float>& rect) override;
    void UI_Draw(kroui::limner::Limner* context) override;
    kroui::ui::AccessibleInfo UI_GetAccessibleInfo() const override;
    // The path's centre, its start and, of a sound whose length is known, its end.
    int UI_GetAccessiblePartCount() const override;
    kroui::ui::AccessiblePart UI_GetAccessiblePart(int part) const override;

protected:
    ~DopplerGraph() override;

private:
    class Picture;

    void Changed();
    void DrawListener(kroui::limner::Limner& context) const;
    void DrawPath(kroui::limner::Limner& context, float seconds) const;
    bool IsLong(float seconds) const;
    void DrawStraightPath(Picture& picture, float seconds) const;
    void DrawCircularPath(Picture& picture, float seconds) const;
    // Where the source is then, in metres to the right and ahead of the listener.
    kroui::Point SourceAfter(float seconds) const;
    float PixelsPerMetre() const;
    // How long there is something to be drawn; a circle of no radius has no path.
    float PathSeconds() const;
    // The largest distance from the listener, along one axis, that has to fit into half the view.
    float Extent() const;
    // How long the sound is; 0 when that is not known.
    float Seconds() const;

    boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> fFilter;
    float fStartingDistance = 0;
    float fVelocity = 0;
    float fDirection = 0;
    float fPassesFront = 0;
    float fPassesRight = 0;
    bool fCircular = false;
    float fSeenSeconds = 0;
    // A path of many lines, kept as a picture until something changes.
    uit::CacheSurface fLongPath;
    float fLongSeconds = 0;
};

} // namespace qocui::ui
