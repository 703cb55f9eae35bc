#pragma once

#include "NumberAdapter.h"

#include "uit/controls/UI_EditNumber.h"

namespace uit::lio {

// The widget `aud_edit_number`: a number with label, slider, rulers and unit, bound to a cell that holds a number.
class EditNumberAdapter final : public NumberAdapter {
public:
    static const WidgetClass kClass;

    explicit EditNumberAdapter(const WidgetContext& context);

    void SetAttribute(int row, const orrin::any_regular_t& value) override;
    void Complete() override;
    WidgetExtent Measure(std::optional<float> width) override;

private:
    struct Table;

    EditNumberAdapter(const WidgetContext& context, const boost::intrusive_ptr<controls::UI_EditNumber>& edit);

    void SetFormatFlag(std::uint32_t flag, bool on);
    void SetHotTextScaleRange(const Bounds& range);
    void SetRuler(const orrin::any_regular_t& settings);
    void SetSecondRuler(const orrin::any_regular_t& settings);
    void UpdateRulers();
    void UpdateDigits();
    controls::RulerSettings RulerDefaults() const;

    const boost::intrusive_ptr<controls::UI_EditNumber> fEdit;
    // Rulers as the script has them; empty for none. Values that they leave open are those of the bounds.
    orrin::any_regular_t fRuler;
    orrin::any_regular_t fSecondRuler;
    controls::RulerSettings fShownRuler;
    controls::RulerSettings fShownSecondRuler;
    krocore::string16 fRulerLabel1;
    std::optional<double> fLogStep;
    int fRulerType = controls::RulerSettings::kNone;
    float fWidth = 0; // 0: what the texts need
    bool fHasDigits = false;
    bool fIsVertical = false;
};

} // namespace uit::lio
