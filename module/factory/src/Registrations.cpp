// The components that have an editor, a row each, in the order in which they are registered.

#include "qoc/components/ComponentIDs.h"
#include "qocui/controls/TarnLioAudioComponentEditorView.h"
#include "qocui/module/ComponentUIFactoryRegistrar.h"
#include "qocui/module/Module.h"
#include "qocui/ui/AmplifyEditorView.h"
#include "qocui/ui/AutoPitchCorrectView.h"
#include "qocui/ui/DopplerEditorView.h"
#include "qocui/ui/DynamicsEditorView.h"
#include "qocui/ui/FFTFilterEditorView.h"
#include "qocui/ui/GraphicPhaseShifterEditorView.h"
#include "qocui/ui/NotchFilterEditorView.h"
#include "qocui/ui/PitchShiftEditorView.h"
#include "qocui/ui/ScientificFilterEditorView.h"
#include "qocui/ui/StereoExpanderEditorView.h"

#include <boost/bind/bind.hpp>

namespace qocui::module {

namespace {

using namespace qoc::components;
using Creator = ComponentUIFactory::Creator;

// An editor with a class of its own.
template <class View>
boost::intrusive_ptr<controls::AudioComponentEditorViewBase>
CreateView(boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> filter) {
    View* const view = new View(std::move(filter));
    // Nobody holds the view yet, so Init must not be left by an exception without releasing it.
    struct Release {
        View* view;
        ~Release() {
            if (view) boost::intrusive_ptr<View>{view};
        }
    } release{view};
    view->Init();
    release.view = nullptr;
    return view;
}

boost::intrusive_ptr<controls::AudioComponentEditorViewBase>
CreateScriptView(boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> filter, const char* name) {
    return controls::TarnLioAudioComponentEditorView::Create(std::move(filter), GetDrawSupplier(),
                                                             krocore::ToUTF16(name), GetModuleInstance());
}

// An editor that is a pair of scripts of this name.
Creator ScriptView(const char* name) {
    return boost::bind(&CreateScriptView, boost::placeholders::_1, name);
}

// A script view that sets itself up: no Init.
boost::intrusive_ptr<controls::AudioComponentEditorViewBase>
CreateDynamicsView(boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> filter) {
    return new ui::DynamicsEditorView(std::move(filter));
}

const ComponentUIFactoryRegistrar sRegistrars[] = {
    {kPitchShiftComponentID, &CreateView<ui::PitchShiftEditorView>},
    {kGraphicPhaseShifterComponentID, &CreateView<ui::GraphicPhaseShifterEditorView>},
    {kDopplerComponentID, &CreateView<ui::DopplerEditorView>},
    {kStereoExpanderComponentID, &CreateView<ui::StereoExpanderEditorView>},
    {kNotchComponentID, &CreateView<ui::NotchFilterEditorView>},
    {kAdaptiveNoiseReductionComponentID, ScriptView("AdaptiveNoiseReductionUI")},
    {kAutoClickRemoverComponentID, ScriptView("AutoClickRemoverUI")},
    {kAutoPhaseCorrectionComponentID, ScriptView("AutoPhaseCorrectionUI")},
    {kCenterChannelExtractComponentID, ScriptView("CenterChannelExtractUI")},
    {kChannelMixerComponentID, ScriptView("ChannelMixerUI")},
    {kChorusComponentID, ScriptView("ChorusUI")},
    {kDelayComponentID, ScriptView("DelayUI")},
    {kEchoComponentID, ScriptView("EchoUI")},
    {kFlangerComponentID, ScriptView("FlangerUI")},
    {kFullReverbComponentID, ScriptView("FullReverbUI")},
    {kGraphicEQ10BandsComponentID, ScriptView("GraphicEQ10Bands")},
    {kGraphicEQ20BandsComponentID, ScriptView("GraphicEQ20BandsUI")},
    {kGraphicEQ30BandsComponentID, ScriptView("GraphicEQ30BandsUI")},
    {kHardLimiterComponentID, ScriptView("HardLimiterUI")},
    {kIntraClipComponentComponentID, ScriptView("IntraClipUI")},
    {kParametricEQComponentID, ScriptView("ParametricEQ")},
    {kReverbComponentID, ScriptView("ReverbUI")},
    {kStudioReverbComponentID, ScriptView("StudioReverbUI")},
    {kScientificFilterComponentID, &CreateView<ui::ScientificFilterEditorView>},
    {kPitchCorrectComponentID, &CreateView<ui::AutoPitchCorrectView>},
    {kAmplifyComponentID, &CreateView<ui::AmplifyEditorView>},
    {kDynamicsComponentID, &CreateDynamicsView},
    {kFFTFilterComponentID, &CreateView<ui::FFTFilterEditorView>},
};

} // namespace

} // namespace qocui::module
