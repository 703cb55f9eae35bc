#pragma once

#include "kroui/controls/UI_ControlView.h"
#include "kroui/limner/CairoSupplier.h"
#include "kroui/ui/HeadlessWindow.h"
#include "qoc/components/EffectCatalogue.h"
#include "qocui/controls/AudioComponentEditorViewBase.h"
#include "qocui/module/ComponentUIFactory.h"
#include "qocui/module/Module.h"

#include <gmock/gmock.h>

namespace test {

// The panel of an effect with the effect itself, for tests that walk all its controls.
class PanelWalk : public testing::TestWithParam<qoc::components::EffectDescription> {
protected:
    PanelWalk() {
        qocui::module::Initialize(&fSupplier);
        fFilter->Prepare(48000, 64, kromediatypes::AudioChannelLayout::Stereo());
    }
    ~PanelWalk() override {
        Close();
        qocui::module::Terminate();
    }

    // A new panel of the effect as it is.
    void Open() {
        fView = qocui::module::ComponentUIFactory::GetInstance().CreateViewForComponent(fFilter);
        fWindow.Window().SetContent(fView);
        fWindow.Advance(0.02);
    }
    void Close() {
        fWindow.Window().SetContent(nullptr);
        fView.reset();
    }
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

    kroui::limner::CairoSupplier fSupplier;
    kroui::ui::HeadlessWindow fWindow{fSupplier, {1200, 900}};
    boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> fFilter = GetParam().create();
    boost::intrusive_ptr<qocui::controls::AudioComponentEditorViewBase> fView;

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
