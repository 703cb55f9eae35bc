#include "qocui/ui/ScientificFilterEditorView.h"

#include "krocore/WholeNumber.h"
#include "kroui/controls/UI_HotTextNumber.h"
#include "kroui/controls/UI_Popup.h"
#include "kroui/controls/UI_RadioButton.h"
#include "kroui/controls/UI_StaticText.h"
#include "qoc/components/GenericParameterInfo.h"
#include "qoc/components/ParameterIndices.h"
#include "qocui/module/Module.h"
#include "uit/controls/ColorField.h"

#include <boost/bind/bind.hpp>

#include <algorithm>
#include <cmath>
#include <utility>

namespace qocui::ui {

using namespace qoc::components;

using boost::placeholders::_1;
using kroaudiofilterhost::AudioFilterParameterValue;
using kroui::controls::UI_HotTextNumber;
using kroui::controls::UI_InteractiveControlView;
using kroui::controls::UI_Popup;
using kroui::controls::UI_RadioButton;
using kroui::controls::UI_StaticText;
using uit::controls::ColorField;

namespace {

constexpr std::u16string_view kGraphClassName = u"SFGraph";

constexpr const char* kViewIDs[SFGraph::kViewCount] = {"Magnitude", "Phase", "GroupDelay"};
constexpr const char* kColorIDs[SFGraph::kViewCount] = {"MagnitudeColor", "PhaseColor", "GroupDelayColor"};
constexpr SFGraph::View kViews[SFGraph::kViewCount] = {SFGraph::View::kMagnitude, SFGraph::View::kPhase,
                                                       SFGraph::View::kGroupDelay};

constexpr int kFrequencies[] = {kSFCutoff, kSFHighCutoff, kSFTransitionBandwidth};

bool IsFrequency(int parameterIndex) {
    return std::ranges::find(kFrequencies, parameterIndex) != std::end(kFrequencies);
}

// A number that is only about the picture is no edit of the sound.
bool IsOfTheView(int parameterIndex) {
    return parameterIndex == kSFLevelRange;
}

// The parameter that a number's gesture is about.
int EditedParameter(int parameterIndex) {
    return parameterIndex == kSFTransitionBandwidth ? kSFOrder : parameterIndex;
}

} // namespace

const std::array<ScientificFilterEditorView::Number, 8> ScientificFilterEditorView::kNumbers = {{
    {kSFOrder, "Order"},
    {kSFCutoff, "Cutoff"},
    {kSFHighCutoff, "HighCutoff"},
    {kSFTransitionBandwidth, "TransitionBandwidth"},
    {kSFPassRipple, "PassRipple"},
    {kSFStopAttenuation, "StopAttenuation"},
    {kSFLevelRange, "LevelRange"},
    {kSFMasterGain, "MasterGain"},
}};

ScientificFilterEditorView::ScientificFilterEditorView(boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> filter)
    : AudioComponentEditorXMLView("ScientificFilter", std::move(filter)) {
}

ScientificFilterEditorView::~ScientificFilterEditorView() = default;

const kroui::limner::SupplierInterface* ScientificFilterEditorView::UI_GetDrawSupplier() const {
    return module::GetDrawSupplier();
}

void ScientificFilterEditorView::ConnectControls() {
    AudioComponentEditorXMLView::ConnectControls();
    FindControls();
    InitNumbers();
    LimitFrequencies();
    UpdateControls();
    ListenToControls();
    ObserveParameters();
}

boost::intrusive_ptr<kroui::ui::UI_Node>
ScientificFilterEditorView::CreateCustomNode(const krocore::string16& className) const {
    if (auto node = AudioComponentEditorXMLView::CreateCustomNode(className)) return node;
    if (className != kGraphClassName) return {};
    return boost::intrusive_ptr<kroui::ui::UI_Node>(new SFGraph(GetAudioFilter()));
}

void ScientificFilterEditorView::SyncParameters() {
    AudioComponentEditorXMLView::SyncParameters();
    if (GetAudioComponent()->GetSampleRate() != fSampleRate) {
        LimitFrequencies();
        fIsStale = true;
    }
    if (std::exchange(fIsStale, false)) UpdateControls();
}

void ScientificFilterEditorView::FindControls() {
    fGraph = FindNamed<SFGraph>("Graph");
    fType = FindNamed<UI_Popup>("Type");
    fMode = FindNamed<UI_Popup>("Mode");
    for (std::size_t i = 0; i < kNumbers.size(); ++i)
        fNumbers[i] = FindNamed<ValueControl>(kNumbers[i].id);
    for (std::size_t i = 0; i < SFGraph::kViewCount; ++i) {
        fViews[i] = FindNamed<UI_RadioButton>(kViewIDs[i]);
        fColors[i] = FindNamed<ColorField>(kColorIDs[i]);
        if (fColors[i] && fGraph) fColors[i]->SetColor(fGraph->GetCurveColor(kViews[i]));
    }
    fLinearAxis = FindNamed<UI_RadioButton>("LinearAxis");
    fLogarithmicAxis = FindNamed<UI_RadioButton>("LogarithmicAxis");
}

void ScientificFilterEditorView::InitNumbers() {
    for (const auto& [index, id] : kNumbers) {
        ValueControl* const control = ControlOf(index);
        const auto* const info = GetGenericInfo(index);
        if (!control || !info) continue;
        control->SetMinMaxValue(info->GetLoBound(), info->GetHiBound(), info->ToNatural(info->GetDefault()));
        if (IsFrequency(index)) control->SetScale(ValueControl::kLogarithmic);
        const auto* const label = FindNamed<UI_StaticText>(std::string(id) + "Label");
        if (auto* const field = dynamic_cast<UI_HotTextNumber*>(control); field && label) field->SetName(label->Text());
    }
}

// A frequency beyond what the sample rate allows is shown as the filter takes it.
void ScientificFilterEditorView::LimitFrequencies() {
    fSampleRate = GetAudioComponent()->GetSampleRate();
    for (const int index : kFrequencies) {
        ValueControl* const control = ControlOf(index);
        const auto* const info = GetGenericInfo(index);
        if (control && info)
            control->SetMaxValue(std::min<double>(info->GetHiBound(), WarpedEdges::kHighestEdge * fSampleRate));
    }
}

void ScientificFilterEditorView::ListenToControls() {
    if (fType) fType->NotifyWhenChanged(boost::bind(&ScientificFilterEditorView::OnTypeChanged, this, _1));
    if (fMode) fMode->NotifyWhenChanged(boost::bind(&ScientificFilterEditorView::OnModeChanged, this, _1));
    for (const auto& [index, id] : kNumbers) {
        if (auto* const control = FindNamed<UI_InteractiveControlView>(id))
            control->NotifyWhenChangedInteractively(
                boost::bind(&ScientificFilterEditorView::OnNumberChanged, this, _1, index));
    }
    for (std::size_t i = 0; i < SFGraph::kViewCount; ++i) {
        if (fViews[i])
            fViews[i]->NotifyWhenChanged(boost::bind(&ScientificFilterEditorView::OnViewChanged, this, _1, kViews[i]));
        if (fColors[i])
            fColors[i]->NotifyWhenChangedInteractively(
                boost::bind(&ScientificFilterEditorView::OnColorChanged, this, _1, kViews[i]));
    }
    for (UI_RadioButton* const axis : {fLinearAxis, fLogarithmicAxis}) {
        if (axis) axis->NotifyWhenChanged(boost::bind(&ScientificFilterEditorView::OnAxisChanged, this, _1));
    }
}

void ScientificFilterEditorView::ObserveParameters() {
    for (int index = kSFType; index <= kSFViewEnd; ++index)
        AddParameterObserver(index, [this] { fIsStale = true; });
}

void ScientificFilterEditorView::UpdateControls() {
    if (fType) fType->SetValue(Item(kSFType));
    if (fMode) fMode->SetValue(Item(kSFMode));
    UpdateNumbers();
    UpdateView();
    UpdateEnablement();
}

void ScientificFilterEditorView::UpdateNumbers() {
    for (const auto& [index, id] : kNumbers) {
        ValueControl* const control = ControlOf(index);
        if (control && index != fGestureIndex) control->SetValue(GetNaturalOrStored(index));
    }
}

void ScientificFilterEditorView::UpdateEnablement() {
    const ScientificFilterSettings settings = Settings();
    const bool showsLevels = Item(kSFView) == static_cast<int>(View::kMagnitude);
    const std::pair<int, bool> uses[] = {{kSFHighCutoff, settings.IsBand()},
                                         {kSFTransitionBandwidth, settings.UsesStopAttenuation()},
                                         {kSFPassRipple, settings.UsesPassRipple()},
                                         {kSFStopAttenuation, settings.UsesStopAttenuation()},
                                         {kSFLevelRange, showsLevels}};
    for (const auto& [index, id] : kNumbers) {
        const auto* const use = std::ranges::find(uses, index, &std::pair<int, bool>::first);
        if (use == std::end(uses)) continue;
        for (const std::string& name : {std::string(id), std::string(id) + "Label"}) {
            if (auto* const control = FindNamed<kroui::controls::UI_ControlView>(name))
                control->SetEnabled(use->second);
        }
    }
}

void ScientificFilterEditorView::UpdateView() {
    const int view = Item(kSFView);
    for (std::size_t i = 0; i < SFGraph::kViewCount; ++i) {
        if (fViews[i]) fViews[i]->SetValue(static_cast<int>(i) == view);
    }
    const bool isLogarithmic = IsOn(kSFLogarithmicAxis);
    if (fLinearAxis) fLinearAxis->SetValue(!isLogarithmic);
    if (fLogarithmicAxis) fLogarithmicAxis->SetValue(isLogarithmic);
    if (fGraph) fGraph->UpdateGraph();
}

void ScientificFilterEditorView::OnTypeChanged(ChangedMessage* /*message*/) {
    SetNatural(kSFType, fType->GetValue());
    UpdateControls();
}

void ScientificFilterEditorView::OnModeChanged(ChangedMessage* /*message*/) {
    GetAudioComponent()->SetParameterValues(ValuesForMode(fMode->GetValue()));
    UpdateControls();
}

// A low pass may have its cutoff above the high cutoff, which it does not use; a band has them in order. That is the
// band which the filter makes of the two anyway.
std::vector<AudioFilterParameterValue> ScientificFilterEditorView::ValuesForMode(int item) {
    const auto* const info = GetAudioComponent()->GetParameterInfo(kSFMode);
    if (!info) return {};
    ScientificFilterSettings settings = Settings();
    settings.mode = static_cast<FilterMode>(item);
    const float cutoff = GetAudioComponent()->GetParameterValue(kSFCutoff);
    const float highCutoff = GetAudioComponent()->GetParameterValue(kSFHighCutoff);
    std::vector<AudioFilterParameterValue> values = {{kSFMode, info->FromItem(item)}};
    if (settings.IsBand() && cutoff > highCutoff)
        values.insert(values.end(), {{kSFCutoff, highCutoff}, {kSFHighCutoff, cutoff}});
    return values;
}

void ScientificFilterEditorView::OnViewChanged(ChangedMessage* /*message*/, View view) {
    SetNatural(kSFView, static_cast<int>(view));
    UpdateControls();
}

void ScientificFilterEditorView::OnAxisChanged(ChangedMessage* /*message*/) {
    SetNatural(kSFLogarithmicAxis, fLogarithmicAxis && fLogarithmicAxis->IsChecked() ? 1 : 0);
    UpdateView();
}

void ScientificFilterEditorView::OnColorChanged(InteractiveMessage* /*message*/, View view) {
    if (fGraph) fGraph->SetCurveColor(view, fColors[static_cast<std::size_t>(view)]->GetColor());
}

void ScientificFilterEditorView::OnNumberChanged(InteractiveMessage* message, int parameterIndex) {
    switch (message->GetChangeMessage()) {
    case InteractiveMessage::kStarted: BeginGesture(parameterIndex); break;
    case InteractiveMessage::kChanged: WriteNumber(parameterIndex); break;
    case InteractiveMessage::kEnded:
        WriteNumber(parameterIndex);
        EndGesture(parameterIndex);
        break;
    case InteractiveMessage::kAbandoned:
        TakeBack();
        EndGesture(parameterIndex);
        break;
    }
}

void ScientificFilterEditorView::BeginGesture(int parameterIndex) {
    SetAllowObserverNotificationDuringSyncParameters(false);
    fGestureIndex = parameterIndex;
    for (int index = 0; index < kSoundParameterCount; ++index)
        fBeforeGesture[static_cast<std::size_t>(index)] = GetAudioComponent()->GetParameterValue(index);
    if (!IsOfTheView(parameterIndex)) GetAudioComponent()->BeginParameterEdit(EditedParameter(parameterIndex));
}

void ScientificFilterEditorView::EndGesture(int parameterIndex) {
    if (!IsOfTheView(parameterIndex)) GetAudioComponent()->EndParameterEdit(EditedParameter(parameterIndex));
    fGestureIndex = -1;
    SetAllowObserverNotificationDuringSyncParameters(true);
    UpdateControls();
}

void ScientificFilterEditorView::TakeBack() {
    if (IsOfTheView(fGestureIndex)) {
        WriteNumber(fGestureIndex); // which shows what it did before
        return;
    }
    for (const int index : {EditedParameter(fGestureIndex), int{kSFCutoff}, int{kSFHighCutoff}})
        GetAudioComponent()->SetParameterValue(index, fBeforeGesture[static_cast<std::size_t>(index)]);
}

void ScientificFilterEditorView::WriteNumber(int parameterIndex) {
    const double value = ControlOf(parameterIndex)->GetValue();
    if (parameterIndex == kSFTransitionBandwidth) {
        SetNatural(kSFOrder, OrderForTransitionBandwidth(Settings(), fSampleRate, value));
    } else if (parameterIndex == kSFCutoff || parameterIndex == kSFHighCutoff) {
        WriteCutoff(parameterIndex, value);
    } else {
        SetNatural(parameterIndex, value);
    }
    UpdateNumbers();
    if (fGraph) fGraph->UpdateGraph();
}

void ScientificFilterEditorView::WriteCutoff(int parameterIndex, double hertz) {
    SetNatural(parameterIndex, hertz);
    if (!Settings().IsBand()) return;
    const bool isLow = parameterIndex == kSFCutoff;
    const int other = isLow ? kSFHighCutoff : kSFCutoff;
    const auto* const info = GetAudioComponent()->GetParameterInfo(other);
    if (!info) return;
    const double before = info->ToNatural(fBeforeGesture[static_cast<std::size_t>(other)]);
    SetNatural(other, isLow ? std::max(before, hertz * WarpedEdges::kNarrowestBand)
                            : std::min(before, hertz / WarpedEdges::kNarrowestBand));
}

void ScientificFilterEditorView::SetNatural(int parameterIndex, double value) {
    const auto stored = ToNormalised(parameterIndex, value);
    if (!stored) return;
    if (parameterIndex < kSoundParameterCount) {
        GetAudioComponent()->SetParameterValue(parameterIndex, *stored);
    } else {
        GetAudioComponent()->SetParameterValueQuietly(parameterIndex, *stored);
    }
}

kroui::controls::ValueControl* ScientificFilterEditorView::ControlOf(int parameterIndex) const {
    const auto* const number = std::ranges::find(kNumbers, parameterIndex, &Number::parameterIndex);
    return number == kNumbers.end() ? nullptr : fNumbers[static_cast<std::size_t>(number - kNumbers.begin())];
}

int ScientificFilterEditorView::Item(int parameterIndex) {
    const auto* const info = GetAudioComponent()->GetParameterInfo(parameterIndex);
    return info ? info->ToItem(GetAudioComponent()->GetParameterValue(parameterIndex)) : 0;
}

ScientificFilterSettings ScientificFilterEditorView::Settings() {
    ScientificFilterSettings settings;
    settings.family = static_cast<FilterFamily>(Item(kSFType));
    settings.mode = static_cast<FilterMode>(Item(kSFMode));
    settings.order = krocore::TruncatedWithin<int>(std::round(GetNaturalOrStored(kSFOrder)), 1,
                                                   ScientificFilterSettings::kHighestOrder);
    settings.cutoff = GetNaturalOrStored(kSFCutoff);
    settings.highCutoff = GetNaturalOrStored(kSFHighCutoff);
    settings.passRipple = GetNaturalOrStored(kSFPassRipple);
    settings.stopAttenuation = GetNaturalOrStored(kSFStopAttenuation);
    return settings;
}

} // namespace qocui::ui
