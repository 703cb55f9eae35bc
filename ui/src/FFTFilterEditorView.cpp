#include "qocui/ui/FFTFilterEditorView.h"

#include "krocore/WholeNumber.h"
#include "kroui/controls/UI_Checkbox.h"
#include "kroui/controls/UI_DisclosureTriangleButton.h"
#include "kroui/controls/UI_PictureButton.h"
#include "kroui/controls/UI_Popup.h"
#include "qoc/components/ParameterIndices.h"
#include "qocui/module/Module.h"
#include "qocui/ui/FFTFilterGraph.h"
#include "qocui/ui/FFTSizeChoice.h"
#include "uit/ImageProvider.h"

#include <boost/bind/bind.hpp>

#include <cmath>

namespace qocui::ui {

using boost::placeholders::_1;
using boost::placeholders::_2;
using boost::placeholders::_3;
using kroui::controls::UI_InteractiveControlChangedMessage;
using kroui::controls::UI_Popup;
using qoc::components::kFFTFilterScale;
using qoc::components::kFFTFilterSize;
using qoc::components::kFFTFilterSplineCurves;
using qoc::components::kFFTFilterWindowType;

namespace {

constexpr std::string_view kGraphID = "FFTFilterGraph";
constexpr std::u16string_view kGraphClassName = u"FFTFilterGraph";
constexpr int kLinear = 0;
constexpr int kLogarithmic = 1;
constexpr FFTSizeChoice kSizes(32, 32768, 23968); // the largest is stored above 1
constexpr float kWindowTypes = 8;

} // namespace

FFTFilterEditorView::FFTFilterEditorView(boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> filter)
    : AudioComponentEditorXMLView("FFTFilter", std::move(filter)) {
}

FFTFilterEditorView::~FFTFilterEditorView() = default;

const kroui::limner::SupplierInterface* FFTFilterEditorView::UI_GetDrawSupplier() const {
    return module::GetDrawSupplier();
}

boost::intrusive_ptr<kroui::ui::UI_Node>
FFTFilterEditorView::CreateCustomNode(const krocore::string16& className) const {
    if (auto node = AudioComponentEditorXMLView::CreateCustomNode(className)) return node;
    if (className != kGraphClassName) return {};
    return boost::intrusive_ptr<kroui::ui::UI_Node>(new FFTFilterGraph(GetAudioFilter()));
}

void FFTFilterEditorView::ConnectControls() {
    AudioComponentEditorXMLView::ConnectControls();
    FindControls();
    FillFFTSizePopup();
    ListenToControls();
    UpdateModePopup();
    UpdateSplinesCheckBox();
    UpdateFFTSizePopup();
    UpdateWindowTypePopup();
    UpdateAdvancedSection();
    UpdateAdvancedControlsEnabement();
    ObserveParameters();
}

void FFTFilterEditorView::SyncParameters() {
    AudioComponentEditorXMLView::SyncParameters();
    if (fGraph) {
        fGraph->FollowSampleRate();
        fGraph->SyncParameters();
    }
    UpdateAdvancedControlsEnabement();
}

void FFTFilterEditorView::FindControls() {
    using namespace kroui::controls;
    fGraph = FindNamed<FFTFilterGraph>(kGraphID);
    fMode = FindNamed<UI_Popup>("LinearLogMode");
    fSplines = FindNamed<UI_Checkbox>("SplineCurves");
    fAdvanced = FindNamed<UI_DisclosureTriangleButton>("Advanced");
    fFFTSize = FindNamed<UI_Popup>("FFTSize");
    fWindowType = FindNamed<UI_Popup>("WindowType");
    fReset = FindNamed<UI_PictureButton>("ResetButton");
    fAdvancedSection = FindNamedNode("AdvancedSection");
}

void FFTFilterEditorView::FillFFTSizePopup() {
    if (fFFTSize) kSizes.Fill(*fFFTSize);
}

void FFTFilterEditorView::ListenToControls() {
    using View = FFTFilterEditorView;
    if (fMode) fMode->NotifyWhenChanged(boost::bind(&View::OnLinearLogPopupChanged, this, _1));
    if (fSplines) fSplines->NotifyWhenChanged(boost::bind(&View::OnSplinesCheckboxChanged, this, _1));
    if (fFFTSize) fFFTSize->NotifyWhenChanged(boost::bind(&View::OnFFTSizePopupChanged, this, _1));
    if (fWindowType) fWindowType->NotifyWhenChanged(boost::bind(&View::OnWindowTypePopupChanged, this, _1));
    if (fAdvanced)
        fAdvanced->NotifyWhenChangedInteractively(boost::bind(&View::OnAdvancedButtonChangedInteractively, this, _1));
    if (!fReset) return;
    fReset->NotifyWhenChanged(boost::bind(&View::OnResetButtonChanged, this, _1));
    if (uit::ImageProvider* const provider = module::GetImageProvider())
        fReset->SetImageSupplier(boost::bind(&uit::ImageProvider::ProvideImage, provider, _1, _2, _3));
}

void FFTFilterEditorView::ObserveParameters() {
    using View = FFTFilterEditorView;
    AddParameterObserver(kFFTFilterScale, boost::bind(&View::UpdateModePopup, this));
    AddParameterObserver(kFFTFilterSplineCurves, boost::bind(&View::UpdateSplinesCheckBox, this));
    AddParameterObserver(kFFTFilterSize, boost::bind(&View::UpdateFFTSizePopup, this));
    AddParameterObserver(kFFTFilterSize, boost::bind(&View::UpdateGraph, this));
    AddParameterObserver(kFFTFilterWindowType, boost::bind(&View::UpdateWindowTypePopup, this));
    AddParameterObserver(kFFTFilterWindowType, boost::bind(&View::UpdateGraph, this));
}

void FFTFilterEditorView::UpdateModePopup() {
    if (fMode) fMode->SetValue(IsOn(kFFTFilterScale) ? kLinear : kLogarithmic);
}

void FFTFilterEditorView::UpdateSplinesCheckBox() {
    if (fSplines) fSplines->SetChecked(IsOn(kFFTFilterSplineCurves));
}

void FFTFilterEditorView::UpdateFFTSizePopup() {
    if (fFFTSize) kSizes.Show(*fFFTSize, GetAudioComponent()->GetParameterValue(kFFTFilterSize));
}

void FFTFilterEditorView::UpdateWindowTypePopup() {
    const float item = std::trunc(GetAudioComponent()->GetParameterValue(kFFTFilterWindowType) * kWindowTypes);
    constexpr int kBeyond = static_cast<int>(kWindowTypes);
    if (fWindowType && item < kWindowTypes) fWindowType->SetValue(krocore::TruncatedWithin(item, -1, kBeyond));
}

void FFTFilterEditorView::UpdateAdvancedControlsEnabement() {
    const bool enabled = fIsAdvancedOpen && GetAudioFilter()->CanChangeNonAutomatableParameters();
    for (UI_Popup* const popup : {fFFTSize, fWindowType})
        if (popup) popup->SetEnabled(enabled);
}

void FFTFilterEditorView::UpdateAdvancedSection() {
    if (!fAdvanced || !fAdvancedSection || fAdvanced->DownState() == fAdvancedSection->UI_IsVisible()) return;
    fIsAdvancedOpen = fAdvanced->DownState();
    fAdvancedSection->UI_Show(fIsAdvancedOpen);
    const auto content = GetContentView();
    content->RecalcAutoLayout();
    UI_SetLocalRect(content->UI_GetLocalRect());
    UpdateAdvancedControlsEnabement();
    GetContentSizeChangedSignal()();
}

void FFTFilterEditorView::UpdateGraph() {
    if (fGraph) fGraph->UpdateGraph();
}

void FFTFilterEditorView::OnLinearLogPopupChanged(ChangedMessage* /*message*/) {
    GetAudioComponent()->SetParameterValueQuietly(kFFTFilterScale,
                                                  controls::StoredSwitch(fMode->GetValue() == kLinear));
}

void FFTFilterEditorView::OnSplinesCheckboxChanged(ChangedMessage* /*message*/) {
    GetAudioComponent()->SetParameterValue(kFFTFilterSplineCurves, controls::StoredSwitch(fSplines->IsChecked()));
}

void FFTFilterEditorView::OnFFTSizePopupChanged(ChangedMessage* /*message*/) {
    if (const auto stored = kSizes.Stored(fFFTSize->GetValue()))
        GetAudioComponent()->SetParameterValue(kFFTFilterSize, *stored);
}

void FFTFilterEditorView::OnWindowTypePopupChanged(ChangedMessage* /*message*/) {
    const auto item = static_cast<float>(fWindowType->GetValue());
    const bool isType = item >= 0 && item < kWindowTypes;
    GetAudioComponent()->SetParameterValue(kFFTFilterWindowType, isType ? item / kWindowTypes : 0);
}

void FFTFilterEditorView::OnResetButtonChanged(ChangedMessage* /*message*/) {
    if (fGraph) fGraph->ResetPoints();
}

void FFTFilterEditorView::OnAdvancedButtonChangedInteractively(UI_InteractiveControlChangedMessage* message) {
    using Message = UI_InteractiveControlChangedMessage;
    const auto change = message->GetChangeMessage();
    if (change == Message::kChanged || change == Message::kAbandoned) UpdateAdvancedSection();
}

} // namespace qocui::ui
