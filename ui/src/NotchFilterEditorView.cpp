#include "qocui/ui/NotchFilterEditorView.h"

#include "kroui/controls/UI_Checkbox.h"
#include "kroui/controls/UI_HotTextNumber.h"
#include "kroui/controls/UI_Popup.h"
#include "kroui/controls/UI_TextButton.h"
#include "qoc/components/GenericParameterInfo.h"
#include "qoc/components/ParameterIndices.h"
#include "qocui/module/Module.h"
#include "qocui/ui/NotchFilterGraph.h"

#include <boost/bind/bind.hpp>

#include <algorithm>
#include <cmath>

namespace qocui::ui {

using boost::placeholders::_1;
using kroui::controls::UI_Checkbox;
using kroui::controls::UI_ControlChangedMessage;
using kroui::controls::UI_HotTextNumber;
using kroui::controls::UI_InteractiveControlChangedMessage;
using kroui::controls::UI_Popup;
using kroui::controls::UI_TextButton;
using qoc::components::kNotchFirstEnable;
using qoc::components::kNotchFirstFrequency;
using qoc::components::kNotchFirstGain;
using qoc::components::kNotchFixGain;
using qoc::components::kNotchFixGainEnable;
using qoc::components::kNotchUltraQuiet;
using qoc::components::kNotchWidth;

namespace {

constexpr std::u16string_view kGraphClassName = u"NotchFilterGraph";
constexpr double kLowestFrequency = 20; // hertz, of the fields
constexpr float kWidthScale = 2;        // the three widths are stored as 0, 0.5, 1
constexpr float kVeryNarrowFrom = 0.9F; // of the scaled value
constexpr float kSuperNarrowFrom = 1.8F;
constexpr int kWidths = 3;

int Index(int first, std::size_t section) {
    return first + static_cast<int>(section);
}

bool IsFrequency(int parameterIndex) {
    return parameterIndex >= kNotchFirstFrequency && parameterIndex < kNotchFirstGain;
}

} // namespace

NotchFilterEditorView::NotchFilterEditorView(boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> filter)
    : AudioComponentEditorXMLView("NotchFilter", filter) {
}

NotchFilterEditorView::~NotchFilterEditorView() = default;

const kroui::limner::SupplierInterface* NotchFilterEditorView::UI_GetDrawSupplier() const {
    return module::GetDrawSupplier();
}

boost::intrusive_ptr<kroui::ui::UI_Node>
NotchFilterEditorView::CreateCustomNode(const krocore::string16& className) const {
    if (auto node = AudioComponentEditorXMLView::CreateCustomNode(className)) return node;
    if (className != kGraphClassName) return {};
    return boost::intrusive_ptr<kroui::ui::UI_Node>(new NotchFilterGraph(GetAudioFilter()));
}

void NotchFilterEditorView::ConnectControls() {
    AudioComponentEditorXMLView::ConnectControls();
    fGraph = FindNamed<NotchFilterGraph>("Graph");
    if (fGraph) fGraph->NotifyWhenSampleRateChanges(boost::bind(&NotchFilterEditorView::FollowSampleRate, this));
    for (std::size_t i = 0; i < kSections; ++i) {
        const std::string number = std::to_string(i + 1);
        fSections[i].frequency = ConnectHotText("Frequency" + number, Index(kNotchFirstFrequency, i));
        fSections[i].gain = ConnectHotText("Gain" + number, Index(kNotchFirstGain, i));
        fSections[i].enable = ConnectTextButton("Enable" + number, Index(kNotchFirstEnable, i));
    }
    ConnectNotchWidthPopup();
    fUltraQuiet = ConnectCheckbox("UltraQuiet", kNotchUltraQuiet);
    fFixGain = ConnectCheckbox("FixGainCheckbox", kNotchFixGainEnable);
    fFixedGain = ConnectHotText("FixGainHotText", kNotchFixGain);

    const auto updateEnablement = boost::bind(&NotchFilterEditorView::UpdateSectionControlsEnablement, this);
    updateEnablement();
    AddParameterObserver(kNotchFixGainEnable, updateEnablement);
    for (std::size_t i = 0; i < kSections; ++i)
        AddParameterObserver(Index(kNotchFirstEnable, i), updateEnablement);
}

NotchFilterEditorView::HotTextPtr NotchFilterEditorView::ConnectHotText(const std::string& id, int parameterIndex) {
    const HotTextPtr field = FindNamed<UI_HotTextNumber>(id);
    if (!field) return field;
    DescribeHotText(*field, parameterIndex);
    AlignNumber(*field);
    field->NotifyWhenChangedInteractively(
        boost::bind(&NotchFilterEditorView::OnHotTextChanged, this, _1, parameterIndex));
    Refresh(parameterIndex, boost::bind(&NotchFilterEditorView::UpdateHotText, this, field, parameterIndex));
    return field;
}

NotchFilterEditorView::TextButtonPtr NotchFilterEditorView::ConnectTextButton(const std::string& id,
                                                                              int parameterIndex) {
    const TextButtonPtr button = FindNamed<UI_TextButton>(id);
    if (!button) return button;
    // All six say "On".
    if (const auto* const info = GetGenericInfo(parameterIndex)) button->SetName(info->GetName());
    button->NotifyWhenChanged(boost::bind(&NotchFilterEditorView::OnTextButtonChanged, this, _1, parameterIndex));
    Refresh(parameterIndex, boost::bind(&NotchFilterEditorView::UpdateTextButton, this, button, parameterIndex));
    return button;
}

NotchFilterEditorView::CheckboxPtr NotchFilterEditorView::ConnectCheckbox(const std::string& id, int parameterIndex) {
    const CheckboxPtr box = FindNamed<UI_Checkbox>(id);
    if (!box) return box;
    box->NotifyWhenChanged(boost::bind(&NotchFilterEditorView::OnCheckboxChanged, this, _1, parameterIndex));
    Refresh(parameterIndex, boost::bind(&NotchFilterEditorView::UpdateCheckbox, this, box, parameterIndex));
    return box;
}

void NotchFilterEditorView::ConnectNotchWidthPopup() {
    fNotchWidth = FindNamed<UI_Popup>("NotchWidth");
    if (!fNotchWidth) return;
    fNotchWidth->NotifyWhenChanged(boost::bind(&NotchFilterEditorView::OnNotchWidthPopupChanged, this, _1));
    Refresh(kNotchWidth, boost::bind(&NotchFilterEditorView::UpdateNotchWidthPopup, this));
}

void NotchFilterEditorView::Refresh(int parameterIndex, const boost::function<void()>& refresher) {
    AddParameterObserver(parameterIndex, refresher);
    refresher();
}

void NotchFilterEditorView::DescribeHotText(UI_HotTextNumber& field, int parameterIndex) {
    const auto* const info = GetGenericInfo(parameterIndex);
    if (!info) return;
    double low = info->GetLoBound();
    double high = info->GetHiBound();
    if (IsFrequency(parameterIndex)) {
        low = kLowestFrequency;
        high = GetAudioComponent()->GetSampleRate() * 0.5F;
    }
    field.SetMinMaxValue(low, high, info->ToNatural(info->GetDefault()));
    field.SetName(info->GetName());
}

void NotchFilterEditorView::AlignNumber(UI_HotTextNumber& field) {
    const kroui::limner::SupplierInterface* const supplier = UI_GetDrawSupplier();
    if (!supplier) return;
    kroui::Rect frame = field.UI_GetFrame();
    frame.width += std::ceil(supplier->MeasureText(field.GetTextLabel(), {field.FontSize()}).width);
    field.UI_SetFrame(frame);
}

void NotchFilterEditorView::UpdateHotText(const HotTextPtr& field, int parameterIndex) {
    if (const auto natural = GetNatural(parameterIndex)) field->SetValue(*natural);
    UpdateGraph();
}

void NotchFilterEditorView::UpdateTextButton(const TextButtonPtr& button, int parameterIndex) {
    button->SetValue(IsOn(parameterIndex));
    UpdateGraph();
    UpdateSectionControlsEnablement();
}

void NotchFilterEditorView::UpdateCheckbox(const CheckboxPtr& box, int parameterIndex) {
    box->SetValue(IsOn(parameterIndex));
    UpdateGraph();
    UpdateSectionControlsEnablement();
}

void NotchFilterEditorView::UpdateNotchWidthPopup() {
    const float scaled = GetAudioComponent()->GetParameterValue(kNotchWidth) * kWidthScale;
    fNotchWidth->SetValue(scaled < kVeryNarrowFrom ? 0 : scaled < kSuperNarrowFrom ? 1 : 2);
    UpdateGraph();
}

void NotchFilterEditorView::UpdateSectionControlsEnablement() {
    const bool linked = IsOn(kNotchFixGainEnable);
    for (std::size_t i = 0; i < kSections; ++i) {
        const bool enabled = IsOn(Index(kNotchFirstEnable, i));
        if (fSections[i].frequency) fSections[i].frequency->SetDisabled(!enabled);
        if (fSections[i].gain) fSections[i].gain->SetDisabled(!enabled || linked);
    }
    if (fFixedGain) fFixedGain->SetDisabled(!linked);
}

void NotchFilterEditorView::UpdateGraph() {
    if (fGraph) fGraph->UpdateGraph();
}

// The bounds of the frequencies count in it.
void NotchFilterEditorView::FollowSampleRate() {
    for (std::size_t i = 0; i < kSections; ++i) {
        const int index = Index(kNotchFirstFrequency, i);
        if (!fSections[i].frequency) continue;
        DescribeHotText(*fSections[i].frequency, index);
        UpdateHotText(fSections[i].frequency, index);
    }
}

void NotchFilterEditorView::OnHotTextChanged(UI_InteractiveControlChangedMessage* message, int parameterIndex) {
    const auto filter = GetAudioComponent();
    const auto* const field = dynamic_cast<UI_HotTextNumber*>(message->GetControl());
    const auto value = field ? ToNormalised(parameterIndex, field->GetValue()) : std::nullopt;
    if (!value) return;
    switch (message->GetChangeMessage()) {
    case UI_InteractiveControlChangedMessage::kStarted:
        filter->BeginParameterEdit(parameterIndex);
        filter->SetParameterValue(parameterIndex, *value);
        break;
    case UI_InteractiveControlChangedMessage::kChanged: filter->SetParameterValue(parameterIndex, *value); break;
    // Abandoned, the field shows the value from before the drag.
    case UI_InteractiveControlChangedMessage::kEnded:
    case UI_InteractiveControlChangedMessage::kAbandoned:
        filter->SetParameterValue(parameterIndex, *value);
        filter->EndParameterEdit(parameterIndex);
        break;
    }
    if (fGraph) fGraph->EnsureSectionVisible(parameterIndex);
}

void NotchFilterEditorView::OnTextButtonChanged(UI_ControlChangedMessage* message, int parameterIndex) {
    WriteSwitch(message, parameterIndex);
}

void NotchFilterEditorView::OnCheckboxChanged(UI_ControlChangedMessage* message, int parameterIndex) {
    WriteSwitch(message, parameterIndex);
}

void NotchFilterEditorView::OnNotchWidthPopupChanged(UI_ControlChangedMessage* /*message*/) {
    const int item = fNotchWidth->GetValue();
    if (item < 0 || item >= kWidths) return;
    GetAudioComponent()->SetParameterValueQuietly(kNotchWidth, static_cast<float>(item) / kWidthScale);
}

void NotchFilterEditorView::WriteSwitch(UI_ControlChangedMessage* message, int parameterIndex) {
    const auto* const button = dynamic_cast<kroui::controls::UI_Button*>(message->GetControl());
    if (button) GetAudioComponent()->SetParameterValue(parameterIndex, controls::StoredSwitch(button->GetValue() == 1));
}

} // namespace qocui::ui
