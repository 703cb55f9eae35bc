#include "qocui/ui/GraphicPhaseShifterEditorView.h"

#include "krocore/Localizer.h"
#include "krocore/WholeNumber.h"
#include "kroui/controls/UI_Checkbox.h"
#include "kroui/controls/UI_PictureButton.h"
#include "kroui/controls/UI_Popup.h"
#include "kroui/controls/UI_RadioButton.h"
#include "qoc/components/ParameterIndices.h"
#include "qocui/module/Module.h"
#include "qocui/ui/FFTSizeChoice.h"
#include "qocui/ui/GraphicPhaseShifterGraph.h"
#include "uit/ImageProvider.h"

#include <boost/bind/bind.hpp>

#include <string>

namespace qocui::ui {

using boost::placeholders::_1;
using boost::placeholders::_2;
using boost::placeholders::_3;
using qoc::components::kPhaseShifterChannel;
using qoc::components::kPhaseShifterRange;
using qoc::components::kPhaseShifterScale;
using qoc::components::kPhaseShifterSize;
using qoc::components::kPhaseShifterSplineCurves;

namespace {

constexpr std::string_view kGraphID = "GraphicPhaseShifterGraph";
constexpr std::u16string_view kGraphClassName = u"GraphicPhaseShifterGraph";
constexpr FFTSizeChoice kSizes(512, 65536, 65504);
constexpr float kChannelItems = 33; // all of them, and the most that there can be

} // namespace

GraphicPhaseShifterEditorView::GraphicPhaseShifterEditorView(
    boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> filter)
    : AudioComponentEditorXMLView("GraphicPhaseShifter", std::move(filter)) {
}

GraphicPhaseShifterEditorView::~GraphicPhaseShifterEditorView() = default;

const kroui::limner::SupplierInterface* GraphicPhaseShifterEditorView::UI_GetDrawSupplier() const {
    return module::GetDrawSupplier();
}

boost::intrusive_ptr<kroui::ui::UI_Node>
GraphicPhaseShifterEditorView::CreateCustomNode(const krocore::string16& className) const {
    if (auto node = AudioComponentEditorXMLView::CreateCustomNode(className)) return node;
    if (className != kGraphClassName) return {};
    return boost::intrusive_ptr<kroui::ui::UI_Node>(new GraphicPhaseShifterGraph(GetAudioFilter()));
}

void GraphicPhaseShifterEditorView::ConnectControls() {
    AudioComponentEditorXMLView::ConnectControls();
    FindControls();
    if (fFFTSize) kSizes.Fill(*fFFTSize);
    FillChannelPopup();
    ListenToControls();
    ProvideImages();
    UpdateScaleButtons();
    UpdateRangeButtons();
    UpdateSplinesCheckBox();
    UpdateFFTSizePopup();
    UpdateChannelPopup();
    UpdateAdvancedControlsEnabement();
    ObserveParameters();
}

void GraphicPhaseShifterEditorView::SyncParameters() {
    AudioComponentEditorXMLView::SyncParameters();
    if (fGraph) fGraph->FollowSampleRate();
    FollowChannels();
    SyncGraph();
    UpdateAdvancedControlsEnabement();
}

void GraphicPhaseShifterEditorView::FindControls() {
    using namespace kroui::controls;
    fGraph = FindNamed<GraphicPhaseShifterGraph>(kGraphID);
    fLinear = FindNamed<UI_RadioButton>("Linear");
    fLogarithmic = FindNamed<UI_RadioButton>("Logarithmic");
    fRange180 = FindNamed<UI_RadioButton>("Range180");
    fRange360 = FindNamed<UI_RadioButton>("Range360");
    fSplines = FindNamed<UI_Checkbox>("SplineCurves");
    fFFTSize = FindNamed<UI_Popup>("FFTSize");
    fChannel = FindNamed<UI_Popup>("Channel");
    fReset = FindNamed<UI_PictureButton>("ResetButton");
}

void GraphicPhaseShifterEditorView::FillChannelPopup() {
    if (!fChannel) return;
    const auto& buses = GetAudioFilter()->GetInputBuses();
    if (!buses.empty()) fChannelLayout = buses.front().GetLayout();
    const std::size_t count = GetAudioFilter()->GetNumberOfInputChannels();
    fChannel->DeleteAllItems();
    fChannel->AddItem(krocore::Localize(count == 2 ? "$$$/GraphicPhaseShifter/BothChannels=Both"
                                                   : "$$$/GraphicPhaseShifter/AllChannels=All"));
    for (std::size_t channel = 0; channel < count; ++channel)
        fChannel->AddItem(GetChannelName(channel));
}

void GraphicPhaseShifterEditorView::FollowChannels() {
    const auto& buses = GetAudioFilter()->GetInputBuses();
    if (buses.empty() || buses.front().GetLayout() == fChannelLayout) return;
    FillChannelPopup();
    UpdateChannelPopup();
}

void GraphicPhaseShifterEditorView::ListenToControls() {
    using View = GraphicPhaseShifterEditorView;
    if (fLinear) fLinear->NotifyWhenChanged(boost::bind(&View::OnScaleButtonChanged, this, _1, true));
    if (fLogarithmic) fLogarithmic->NotifyWhenChanged(boost::bind(&View::OnScaleButtonChanged, this, _1, false));
    if (fRange180) fRange180->NotifyWhenChanged(boost::bind(&View::OnRangeButtonChanged, this, _1, false));
    if (fRange360) fRange360->NotifyWhenChanged(boost::bind(&View::OnRangeButtonChanged, this, _1, true));
    if (fSplines) fSplines->NotifyWhenChanged(boost::bind(&View::OnSplinesCheckboxChanged, this, _1));
    if (fFFTSize) fFFTSize->NotifyWhenChanged(boost::bind(&View::OnFFTSizePopupChanged, this, _1));
    if (fChannel) fChannel->NotifyWhenChanged(boost::bind(&View::OnChannelPopupChanged, this, _1));
    if (fReset) fReset->NotifyWhenChanged(boost::bind(&View::OnResetButtonChanged, this, _1));
}

void GraphicPhaseShifterEditorView::ProvideImages() {
    uit::ImageProvider* const provider = module::GetImageProvider();
    if (fReset && provider)
        fReset->SetImageSupplier(boost::bind(&uit::ImageProvider::ProvideImage, provider, _1, _2, _3));
}

void GraphicPhaseShifterEditorView::ObserveParameters() {
    using View = GraphicPhaseShifterEditorView;
    AddParameterObserver(kPhaseShifterScale, boost::bind(&View::UpdateScaleButtons, this));
    AddParameterObserver(kPhaseShifterRange, boost::bind(&View::UpdateRangeButtons, this));
    AddParameterObserver(kPhaseShifterSplineCurves, boost::bind(&View::UpdateSplinesCheckBox, this));
    AddParameterObserver(kPhaseShifterSize, boost::bind(&View::UpdateFFTSizePopup, this));
    AddParameterObserver(kPhaseShifterChannel, boost::bind(&View::UpdateChannelPopup, this));
}

void GraphicPhaseShifterEditorView::UpdateScaleButtons() {
    const bool isLinear = IsOn(kPhaseShifterScale);
    if (fLinear) fLinear->SetValue(isLinear);
    if (fLogarithmic) fLogarithmic->SetValue(!isLinear);
}

void GraphicPhaseShifterEditorView::UpdateRangeButtons() {
    const bool isWide = IsOn(kPhaseShifterRange);
    if (fRange360) fRange360->SetValue(isWide);
    if (fRange180) fRange180->SetValue(!isWide);
}

void GraphicPhaseShifterEditorView::UpdateSplinesCheckBox() {
    if (fSplines) fSplines->SetChecked(IsOn(kPhaseShifterSplineCurves));
}

void GraphicPhaseShifterEditorView::UpdateFFTSizePopup() {
    if (fFFTSize) kSizes.Show(*fFFTSize, GetAudioFilter()->GetParameterValue(kPhaseShifterSize));
}

void GraphicPhaseShifterEditorView::UpdateChannelPopup() {
    // In single precision, which undoes the rounding of the stored value.
    const float item = GetAudioFilter()->GetParameterValue(kPhaseShifterChannel) * kChannelItems;
    if (fChannel) fChannel->SetValue(krocore::TruncatedWithin(item, -1, static_cast<int>(kChannelItems)));
}

void GraphicPhaseShifterEditorView::UpdateAdvancedControlsEnabement() {
    if (fFFTSize) fFFTSize->SetEnabled(GetAudioFilter()->CanChangeNonAutomatableParameters());
}

void GraphicPhaseShifterEditorView::OnScaleButtonChanged(ChangedMessage* /*message*/, bool linear) {
    GetAudioFilter()->SetParameterValueQuietly(kPhaseShifterScale, controls::StoredSwitch(linear));
    SyncGraph();
}

void GraphicPhaseShifterEditorView::OnRangeButtonChanged(ChangedMessage* /*message*/, bool wide) {
    GetAudioFilter()->SetParameterValue(kPhaseShifterRange, controls::StoredSwitch(wide));
    SyncGraph();
}

void GraphicPhaseShifterEditorView::OnSplinesCheckboxChanged(ChangedMessage* /*message*/) {
    GetAudioFilter()->SetParameterValue(kPhaseShifterSplineCurves, controls::StoredSwitch(fSplines->IsChecked()));
}

void GraphicPhaseShifterEditorView::OnFFTSizePopupChanged(ChangedMessage* /*message*/) {
    if (const auto stored = kSizes.Stored(fFFTSize->GetValue()))
        GetAudioFilter()->SetParameterValue(kPhaseShifterSize, *stored);
}

void GraphicPhaseShifterEditorView::OnChannelPopupChanged(ChangedMessage* /*message*/) {
    GetAudioFilter()->SetParameterValue(kPhaseShifterChannel, static_cast<float>(fChannel->GetValue()) / kChannelItems);
}

void GraphicPhaseShifterEditorView::OnResetButtonChanged(ChangedMessage* /*message*/) {
    if (fGraph) fGraph->ResetPoints();
}

krocore::string16 GraphicPhaseShifterEditorView::GetChannelName(std::size_t index) const {
    const auto& buses = GetAudioFilter()->GetInputBuses();
    krocore::string16 name;
    if (!buses.empty()) name = buses.front().GetLayout().ChannelName(index, false);
    return name.empty() ? krocore::FromASCII(std::to_string(index + 1)) : name;
}

void GraphicPhaseShifterEditorView::SyncGraph() {
    if (fGraph) fGraph->SyncParameters();
}

} // namespace qocui::ui
