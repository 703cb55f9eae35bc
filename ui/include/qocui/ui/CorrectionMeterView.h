#pragma once

#include "kroui/ui/UI_SubView.h"
#include "kroui/utility/LinearRuler.h"
#include "qocui/module/Export.h"

namespace qocui::ui {

// A vertical bar that shows how far the pitch is being corrected, -100 to 100 cents from its middle, beside a scale
// whose marks cross the bar. Takes no input; the editor that made it feeds it.
class QOCUI_API CorrectionMeterView : public kroui::ui::UI_SubView {
public:
    CorrectionMeterView();

    // Shows a correction in cents, held within the range. The same value again repaints nothing; NaN changes nothing.
    void SetValue(float cents);

    void UI_SizeChanged(const kroui::RectT<float>& rect) override;
    void UI_Draw(kroui::limner::Limner* limner) override;

protected:
    ~CorrectionMeterView() override;

private:
    kroui::Rect BarRect() const;

    float fValue = 0;
    float fMinValue = -100;
    float fMaxValue = 100;
    kroui::Rect fMeterRect; // where the bar moves
    boost::intrusive_ptr<kroui::utility::LinearRuler> fRuler;
};

} // namespace qocui::ui
