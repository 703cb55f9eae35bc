#pragma once

#include "PanelHost.h"
#include "kroui/controls/UI_ControlView.h"
#include "qoc/components/EffectCatalogue.h"

#include <gmock/gmock.h>

namespace test {

// The panel of an effect with the effect itself, for tests that walk all its controls.
class PanelWalk : public PanelHost<testing::TestWithParam<qoc::components::EffectDescription>> {
protected:
    PanelWalk() : PanelHost({1200, 900}) { fFilter->Prepare(48000, 64, kromediatypes::AudioChannelLayout::Stereo()); }

    // A new panel of the effect as it is.
    void Open() { ShowPanelOf(fFilter); }
    void StoreDefaults() {
        for (int i = 0; i < fFilter->GetParameterCount(); ++i)
            if (const auto* const info = fFilter->GetParameterInfo(i))
                fFilter->SetParameterValueQuietly(i, info->GetDefault());
    }
    std::vector<float> StoredValues() const {
        std::vector<float> values;
        for (int i = 0; i < fFilter->GetParameterCount(); ++i)
            values.push_back(fFilter->GetParameterValue(i));
        return values;
    }

    // What can be operated now, in the order of the tree.
    template <class Control = kroui::controls::UI_ControlView>
    std::vector<Control*> Controls() const {
        std::vector<Control*> controls;
        Collect(*fView, controls);
        return controls;
    }

    boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> fFilter = GetParam().create();

private:
    template <class Control>
    static void Collect(kroui::ui::UI_Node& node, std::vector<Control*>& controls) {
        if (!node.UI_IsVisible()) return;
        const auto* const view = dynamic_cast<kroui::controls::UI_ControlView*>(&node);
        auto* const control = dynamic_cast<Control*>(&node);
        if (control && view && view->IsEnabled() && view->WantsKeyboardFocus()) controls.push_back(control);
        for (const auto& child : node.Children())
            Collect(*child, controls);
    }
};

struct EffectName {
    std::string operator()(const testing::TestParamInfo<qoc::components::EffectDescription>& info) const {
        return std::string(info.param.shortName);
    }
};

} // namespace test
