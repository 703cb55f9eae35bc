#include "qocui/ui/DopplerEditorView.h"

#include "krocore/Localizer.h"
#include "krocore/NumberFormat.h"
#include "krocore/WholeNumber.h"
#include "kroui/controls/UI_Checkbox.h"
#include "kroui/controls/UI_HotTextNumber.h"
#include "kroui/controls/UI_Popup.h"
#include "kroui/controls/UI_RadioButton.h"
#include "kroui/controls/UI_StaticImage.h"
#include "kroui/controls/UI_StaticText.h"
#include "qoc/components/ParameterIndices.h"
#include "qocui/module/Module.h"
#include "qocui/ui/DopplerGraph.h"
#include "uit/ImageProvider.h"
#include "uit/controls/UI_OptionalView.h"

#include <boost/bind/bind.hpp>

#include <cmath>

namespace qocui::ui {

using boost::placeholders::_1;
using boost::placeholders::_2;
using boost::placeholders::_3;
using kroui::controls::UI_HotTextNumber;
using kroui::controls::UI_StaticText;
using qoc::components::kDopplerAdjustDirection;
using qoc::components::kDopplerAdjustDistance;
using qoc::components::kDopplerCenterFront;
using qoc::components::kDopplerCenterRight;
using qoc::components::kDopplerCircular;
using qoc::components::kDopplerQuality;
using qoc::components::kDopplerRadius;
using qoc::components::kDopplerStartingAngle;
using qoc::components::kDopplerVelocity;

namespace {

constexpr std::u16string_view kGraphClassName = u"DopplerShifterGraph";

constexpr const char* kQualityKeys[] = {
    "$$$/DopplerEditorView/QualityLow=Low (fastest)",        "$$$/DopplerEditorView/QualityGood=Good",
    "$$$/DopplerEditorView/QualityVeryGood=Very Good",       "$$$/DopplerEditorView/QualityExcellent=Excellent",
    "$$$/DopplerEditorView/QualityNearPerfect=Near Perfect", "$$$/DopplerEditorView/QualityPerfect=Perfect (slowest)",
};
constexpr float kQualitySteps = 6; // not one less than the items: the best quality stores 5/6

// The natural ranges behind the description.
constexpr float kRadiusRange = 99999.99F; // metres
constexpr float kLowestRadius = 0.01F;
constexpr float kVelocityRange = 354.9F; // metres a second
constexpr float kLowestVelocity = 0.1F;
constexpr float kFullTurn = 6.28318F; // radians

constexpr int kNaturalParameters[] = {kDopplerRadius, kDopplerVelocity, kDopplerStartingAngle, kDopplerCenterFront,
                                      kDopplerCenterRight};

double RoundedToTenths(double value) {
    return std::trunc(value * 10 + 0.5) / 10;
}

// How long, or how often a second, a source with this period (seconds) goes round.
krocore::string16 CircleText(double period) {
    const bool isFast = period < 1;
    const char* const key = isFast ? "$$$/DopplerEditorView/TimesSecond=Sound will go full circle @0 times/second"
                                   : "$$$/DopplerEditorView/CircleSeconds=Sound will go full circle every @0 seconds";
    const double number = RoundedToTenths(isFast ? 1 / period : period);
    return krocore::ReplacePlaceholders(krocore::Localize(key), {krocore::FormatNumber(number, 1)});
}

} // namespace

DopplerEditorView::DopplerEditorView(boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> filter)
    : AudioComponentEditorXMLView("Doppler", std::move(filter)) {
}

DopplerEditorView::~DopplerEditorView() = default;

const kroui::limner::SupplierInterface* DopplerEditorView::UI_GetDrawSupplier() const {
    return module::GetDrawSupplier();
}

void DopplerEditorView::ConnectControls() {
    AudioComponentEditorXMLView::ConnectControls();
    FindControls();
    AlignNumbers();
    FillQualityPopup();
    UpdateControls();
    ListenToControls();
    ProvideImages();
    ObserveParameters();
}

boost::intrusive_ptr<kroui::ui::UI_Node> DopplerEditorView::CreateCustomNode(const krocore::string16& className) const {
    if (auto node = AudioComponentEditorXMLView::CreateCustomNode(className)) return node;
    if (className != kGraphClassName) return {};
    return boost::intrusive_ptr<kroui::ui::UI_Node>(new DopplerGraph(GetAudioFilter()));
}

void DopplerEditorView::SyncParameters() {
    AudioComponentEditorXMLView::SyncParameters();
    if (fGraph) fGraph->FollowDuration();
    const bool isEnabled = GetAudioComponent()->CanChangeNonAutomatableParameters();
    if (isEnabled == fQualityEnabled) return;
    fQualityEnabled = isEnabled;
    if (fQuality) fQuality->SetEnabled(isEnabled);
}

void DopplerEditorView::FindControls() {
    using namespace kroui::controls;
    fGraph = FindNamed<DopplerGraph>("Graph");
    fStraightLine = FindNamed<UI_RadioButton>("StraightLine");
    fCircular = FindNamed<UI_RadioButton>("Circular");
    fStraightLineImage = FindNamed<UI_StaticImage>("StraightLineImage");
    fCircularImage = FindNamed<UI_StaticImage>("CircularImage");
    fRadius = FindNamed<UI_HotTextNumber>("Radius");
    fVelocity = FindNamed<UI_HotTextNumber>("Velocity");
    fStartingAngle = FindNamed<UI_HotTextNumber>("StartingAngle");
    fCenterFront = FindNamed<UI_HotTextNumber>("CenterFront");
    fCenterRight = FindNamed<UI_HotTextNumber>("CenterRight");
    fDistance = FindNamed<UI_Checkbox>("Distance");
    fDirection = FindNamed<UI_Checkbox>("Direction");
    fQuality = FindNamed<UI_Popup>("Quality");
    fDescription = FindNamed<UI_StaticText>("Description");
    fOptionalLabels = FindNamed<uit::controls::UI_OptionalView>("OptionalLabels");
}

void DopplerEditorView::FillQualityPopup() {
    if (!fQuality) return;
    fQuality->DeleteAllItems();
    for (const char* const key : kQualityKeys)
        fQuality->AddItem(krocore::Localize(key));
}

void DopplerEditorView::UpdateControls() {
    UpdateStraightLineCircularButtons();
    for (const int index : kNaturalParameters)
        UpdateHotText(FieldOf(index), index);
    UpdateDistanceCheckBox();
    UpdateDirectionCheckBox();
    UpdateQualityPopup();
}

void DopplerEditorView::ListenToControls() {
    if (fStraightLine)
        fStraightLine->NotifyWhenChanged(boost::bind(&DopplerEditorView::OnStraightLineButtonChanged, this, _1));
    if (fCircular) fCircular->NotifyWhenChanged(boost::bind(&DopplerEditorView::OnCircularButtonChanged, this, _1));
    for (const int index : kNaturalParameters)
        ListenToHotText(FieldOf(index), index);
    if (fDistance) fDistance->NotifyWhenChanged(boost::bind(&DopplerEditorView::OnDistanceCheckboxChanged, this, _1));
    if (fDirection) {
        fDirection->NotifyWhenChanged(boost::bind(&DopplerEditorView::OnDirectionCheckboxChanged, this, _1));
        if (GetAudioComponent()->GetNumberOfInputChannels() == 1) fDirection->SetEnabled(false);
    }
    if (fQuality) fQuality->NotifyWhenChanged(boost::bind(&DopplerEditorView::OnQualityPopupChanged, this, _1));
}

void DopplerEditorView::ListenToHotText(HotText* field, int parameterIndex) {
    if (!field) return;
    ResetToDefaultOf(parameterIndex, *field);
    field->NotifyWhenChangedInteractively(boost::bind(&DopplerEditorView::OnHotTextChanged, this, _1, parameterIndex));
}

void DopplerEditorView::ProvideImages() {
    uit::ImageProvider* const provider = module::GetImageProvider();
    if (!provider) return;
    for (kroui::controls::UI_StaticImage* const image : {fStraightLineImage, fCircularImage})
        if (image) image->SetImageSupplier(boost::bind(&uit::ImageProvider::ProvideImage, provider, _1, _2, _3));
}

void DopplerEditorView::ObserveParameters() {
    AddParameterObserver(kDopplerCircular, boost::bind(&DopplerEditorView::UpdateStraightLineCircularButtons, this));
    for (const int index : kNaturalParameters)
        AddParameterObserver(index, boost::bind(&DopplerEditorView::UpdateHotText, this, FieldOf(index), index));
    AddParameterObserver(kDopplerAdjustDirection, boost::bind(&DopplerEditorView::UpdateDirectionCheckBox, this));
    AddParameterObserver(kDopplerAdjustDistance, boost::bind(&DopplerEditorView::UpdateDistanceCheckBox, this));
    AddParameterObserver(kDopplerQuality, boost::bind(&DopplerEditorView::UpdateQualityPopup, this));
}

void DopplerEditorView::UpdateStraightLineCircularButtons() {
    const bool isCircular = IsOn(kDopplerCircular);
    if (fCircular) fCircular->SetValue(isCircular);
    if (fStraightLine) fStraightLine->SetValue(!isCircular);
    if (fOptionalLabels) fOptionalLabels->ShowChild(isCircular ? 1 : 0);
    NameFields(isCircular ? 1 : 0);
    if (fGraph) fGraph->SetCircular(isCircular);
    UpdateDescriptionText();
    UI_Invalidate();
}

void DopplerEditorView::UpdateHotText(HotText* field, int parameterIndex) {
    const auto natural = GetNatural(parameterIndex);
    if (!natural) return;
    if (field) field->SetValue(*natural);
    ShowInGraph(parameterIndex, *natural);
    UpdateDescriptionText();
}

void DopplerEditorView::UpdateDistanceCheckBox() {
    if (fDistance) fDistance->SetChecked(IsOn(kDopplerAdjustDistance));
}

void DopplerEditorView::UpdateDirectionCheckBox() {
    if (fDirection) fDirection->SetChecked(IsOn(kDopplerAdjustDirection));
}

void DopplerEditorView::UpdateQualityPopup() {
    const float stored = GetAudioComponent()->GetParameterValue(kDopplerQuality);
    constexpr int kBeyond = static_cast<int>(kQualitySteps); // no item any more
    if (fQuality) fQuality->SetValue(krocore::TruncatedWithin(stored * kQualitySteps + 0.5F, -1, kBeyond));
}

void DopplerEditorView::UpdateDescriptionText() {
    krocore::string16 text;
    if (IsOn(kDopplerCircular)) {
        const auto filter = GetAudioComponent();
        const float radius = filter->GetParameterValue(kDopplerRadius) * kRadiusRange + kLowestRadius;
        const float velocity = filter->GetParameterValue(kDopplerVelocity) * kVelocityRange + kLowestVelocity;
        text = CircleText(radius * kFullTurn / velocity);
    }
    if (fDescription) fDescription->SetText(text);
}

void DopplerEditorView::NameFields(int labelSet) {
    if (!fOptionalLabels || static_cast<std::size_t>(labelSet) >= fOptionalLabels->ChildCount()) return;
    const auto& labels = *fOptionalLabels->Child(static_cast<std::size_t>(labelSet));
    std::size_t row = 0;
    for (const int index : kNaturalParameters) {
        if (row == labels.ChildCount()) return;
        const auto* const label = dynamic_cast<const UI_StaticText*>(&*labels.Child(row++));
        UI_HotTextNumber* const field = FieldOf(index);
        if (label && field) field->SetName(label->Text());
    }
}

void DopplerEditorView::AlignNumbers() {
    const kroui::limner::SupplierInterface* const supplier = UI_GetDrawSupplier();
    if (!supplier) return;
    for (const int index : kNaturalParameters)
        if (UI_HotTextNumber* const field = FieldOf(index)) {
            kroui::Rect frame = field->UI_GetFrame();
            frame.width += std::ceil(supplier->MeasureText(field->GetTextLabel(), {field->FontSize()}).width);
            field->UI_SetFrame(frame);
        }
}

void DopplerEditorView::ShowInGraph(int parameterIndex, float value) {
    if (!fGraph) return;
    switch (parameterIndex) {
    case kDopplerRadius: fGraph->SetStartingDistance(value); break;
    case kDopplerVelocity: fGraph->SetVelocity(value); break;
    case kDopplerStartingAngle: fGraph->SetDirection(value); break;
    case kDopplerCenterFront: fGraph->SetPassesFront(value); break;
    case kDopplerCenterRight: fGraph->SetPassesRight(value); break;
    default: break;
    }
}

void DopplerEditorView::OnStraightLineButtonChanged(ChangedMessage* /*message*/) {
    GetAudioComponent()->SetParameterValue(kDopplerCircular, controls::StoredSwitch(!fStraightLine->IsChecked()));
}

void DopplerEditorView::OnCircularButtonChanged(ChangedMessage* /*message*/) {
    GetAudioComponent()->SetParameterValue(kDopplerCircular, controls::StoredSwitch(fCircular->IsChecked()));
}

void DopplerEditorView::OnDistanceCheckboxChanged(ChangedMessage* /*message*/) {
    GetAudioComponent()->SetParameterValue(kDopplerAdjustDistance, controls::StoredSwitch(fDistance->IsChecked()));
}

void DopplerEditorView::OnDirectionCheckboxChanged(ChangedMessage* /*message*/) {
    GetAudioComponent()->SetParameterValue(kDopplerAdjustDirection, controls::StoredSwitch(fDirection->IsChecked()));
}

void DopplerEditorView::OnQualityPopupChanged(ChangedMessage* /*message*/) {
    GetAudioComponent()->SetParameterValue(kDopplerQuality, static_cast<float>(fQuality->GetValue()) / kQualitySteps);
}

void DopplerEditorView::OnHotTextChanged(InteractiveMessage* message, int parameterIndex) {
    const UI_HotTextNumber* const field = FieldOf(parameterIndex);
    const auto value = field ? ToNormalised(parameterIndex, field->GetValue()) : std::nullopt;
    if (!value) return;
    switch (message->GetChangeMessage()) {
    case InteractiveMessage::kStarted:
        fInteractiveChange = true;
        GetAudioFilter()->BeginParameterEdit(parameterIndex);
        GetAudioComponent()->SetParameterValue(parameterIndex, *value);
        break;
    case InteractiveMessage::kChanged: GetAudioComponent()->SetParameterValue(parameterIndex, *value); break;
    case InteractiveMessage::kEnded:
    case InteractiveMessage::kAbandoned:
        GetAudioComponent()->SetParameterValue(parameterIndex, *value);
        fInteractiveChange = false;
        GetAudioFilter()->EndParameterEdit(parameterIndex);
        break;
    }
}

UI_HotTextNumber* DopplerEditorView::FieldOf(int parameterIndex) const {
    switch (parameterIndex) {
    case kDopplerRadius: return fRadius;
    case kDopplerVelocity: return fVelocity;
    case kDopplerStartingAngle: return fStartingAngle;
    case kDopplerCenterFront: return fCenterFront;
    case kDopplerCenterRight: return fCenterRight;
    default: return nullptr;
    }
}

} // namespace qocui::ui
