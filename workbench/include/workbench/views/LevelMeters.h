#pragma once

#include "kroui/ui/UI_Node.h"
#include "workbench/views/MeterBallistics.h"

#include <vector>

namespace workbench {

// The levels of every channel before and behind the effect, with the highest of late marked and written.
class LevelMeters final : public kroui::ui::UI_Node {
public:
    // One bar for each; "L", "R".
    void SetChannels(const std::vector<krocore::string16>& inputs, const std::vector<krocore::string16>& outputs);
    // The largest absolute samples of the last `seconds`, in the order of the bars, inputs first. Repaints what moved.
    void Feed(const std::vector<float>& peaks, float seconds);
    std::size_t Count() const { return fBars.size(); }
    // All bars silent and no mark left.
    bool IsAtRest() const;
    // The height that shows all bars well.
    float WantedHeight() const;

    void UI_Draw(kroui::limner::Limner* limner) override;
    kroui::ui::AccessibleInfo UI_GetAccessibleInfo() const override;
    // A bar each.
    int UI_GetAccessiblePartCount() const override { return static_cast<int>(fBars.size()); }
    kroui::ui::AccessiblePart UI_GetAccessiblePart(int part) const override;

private:
    struct Bar {
        krocore::string16 name;
        MeterBallistics level;
        krocore::string16 text; // the mark, as written
    };

    float Margin() const;
    float RowHeight() const;
    kroui::Rect RowRect(std::size_t row) const;
    kroui::Rect BarRect(std::size_t row) const;
    float PlaceOf(float decibels, const kroui::Rect& bar) const;
    void DrawBar(kroui::limner::Limner& limner, std::size_t row) const;
    void DrawScale(kroui::limner::Limner& limner) const;

    std::vector<Bar> fBars;
};

} // namespace workbench
