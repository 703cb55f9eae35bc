#include "qocui/controls/TarnLioAudioComponentEditorView.h"

#include "krocore/String.h"
#include "krocore/debug/Trace.h"
#include "krotarnlio/UI_KROLioRoot.h"
#include "krotarnlio/UI_Lio.h"
#include "kroui/controls/UI_ControlView.h"
#include "qoc/components/ComponentIDs.h"
#include "uit/lio/WidgetAdapter.h"

#include "OutOfRangeTrace.h"

#include <boost/bind/bind.hpp>

#include <cmath>
#include <sstream>
#include <utility>

namespace qocui::controls {

using boost::placeholders::_1;
using kroaudiofilterhost::AudioFilter;
using krotarnlio::UI_KROLioRoot;
using krotarnlio::UI_Lio;
using orrin::any_regular_t;
using orrin::name_t;

namespace {

// The cells, beside inputs and outputs, that the view looks for.
struct CellNames {
    name_t sampleRate{"sample_rate"};
    name_t currentDuration{"current_duration"};
    name_t suspended{"suspended"};
    name_t timeFormat{"time_format"};
};

const CellNames& Cells() {
    static const CellNames names;
    return names;
}

name_t Numbered(const char* prefix, int index) {
    return name_t(prefix + std::to_string(index));
}

std::string ResourceText(const krocore::string16& name, std::u16string_view type, HINSTANCE module, bool& found) {
    std::vector<std::uint8_t> bytes;
    found = found && krocore::utility::GetBinaryFromModule(module, name, type, bytes);
    return {bytes.begin(), bytes.end()};
}

// Scripts may name a picture as the file that it comes from: "P_Plus_N.png".
std::string_view Stem(std::string_view picture) {
    constexpr std::string_view kExtension = ".png";
    return picture.ends_with(kExtension) ? picture.substr(0, picture.size() - kExtension.size()) : picture;
}

// An expression fails with the values that there are now: its cell keeps the value that it had.
void TraceSheetError(const orrin::error_t& error) {
    static constexpr const char* kCategory = "TarnLioAudioComponentEditorView::Sheet";
    if (krocore::debug::TraceEnabled(kCategory, 1, true)) krocore::debug::Trace(std::string(error.what()) + "\n");
}

// Sets a flag and gives it back its former value at the end.
class FlagScope {
public:
    explicit FlagScope(bool& flag) : fFlag(flag), fSaved(std::exchange(flag, true)) {}
    ~FlagScope() { fFlag = fSaved; }
    FlagScope(const FlagScope&) = delete;
    FlagScope& operator=(const FlagScope&) = delete;

private:
    bool& fFlag;
    bool fSaved;
};

} // namespace

void TarnLioAudioComponentEditorView::ReleaseRoot::operator()(const UI_KROLioRoot* root) const {
    UI_Lio::Release(root);
}

boost::intrusive_ptr<TarnLioAudioComponentEditorView>
TarnLioAudioComponentEditorView::Create(boost::intrusive_ptr<AudioFilter> filter,
                                        const kroui::limner::SupplierInterface* supplier,
                                        const krocore::string16& resourceName, HINSTANCE module) {
    const boost::intrusive_ptr<TarnLioAudioComponentEditorView> view(
        new TarnLioAudioComponentEditorView(std::move(filter), supplier, resourceName, module));
    view->CreateLayout();
    return view;
}

TarnLioAudioComponentEditorView::TarnLioAudioComponentEditorView(boost::intrusive_ptr<AudioFilter> filter,
                                                                 const kroui::limner::SupplierInterface* supplier,
                                                                 const krocore::string16& resourceName,
                                                                 HINSTANCE module)
    : AudioComponentEditorViewBase(std::move(filter)), fSheet(std::make_shared<orrin::sheet_t>()),
      fLastSuspended(false), fSupplier(supplier) {
    const Scripts scripts = LoadScripts(resourceName, module);
    InitStandardFunctionPack();
    InitStandardReflectedVariableSet();
    SetupVirtualMachine(*fSheet);
    ParseSheet(scripts.sheet);
    {
        const FlagScope syncing(fSyncing);
        ClearInputs();
        SetCell(Cells().sampleRate, static_cast<double>(GetAudioFilter()->GetSampleRate()));
        SetCell(Cells().currentDuration, GetAudioFilter()->GetDuration());
        RecalculateSheet();
        SubscribeOutputs();
        ParseLayout(scripts.layout, module);
        fLayoutRoot->Layout();
        fLayoutRoot->GetSizeChangedSignal().connect(boost::bind(&TarnLioAudioComponentEditorView::RecalcLayout, this));
        if (fSheet->has_input(Cells().sampleRate)) {
            SetCell(Cells().sampleRate, static_cast<double>(GetAudioFilter()->GetSampleRate()));
            RecalculateSheet();
        }
        TakeDefaults();
    }
    AskHostForTime();
    fLastSuspended = !GetAudioFilter()->IsSuspended();
    TarnLioAudioComponentEditorView::SyncParameters();
    UI_SetStateFlags(kStateTellBackgroundPresses);
}

TarnLioAudioComponentEditorView::~TarnLioAudioComponentEditorView() {
    if (fLayoutRoot) ChildRemove(fLayoutRoot->GetTopNode());
    fLayoutRoot.reset();
    fSheet.reset();
    fTimeFormat.clear();
    fReflectedNames.clear();
    fFunctionPack.clear();
}

void TarnLioAudioComponentEditorView::CreateLayout() {
    if (!fLayoutRoot) return;
    const boost::intrusive_ptr<kroui::ui::UI_Node> node(fLayoutRoot->GetTopNode());
    node->UI_Show(true);
    ChildPushBack(node);
    UI_SetFrame(node->UI_GetFrame());
    node->UI_SetFrame(node->UI_GetFrame());
    if (auto* const control = dynamic_cast<kroui::controls::UI_ControlView*>(node.get()))
        control->SetWantsKeyboardFocus(false);
}

void TarnLioAudioComponentEditorView::RecalcLayout() {
    const kroui::Rect& content = fLayoutRoot->GetTopNode()->UI_GetFrame();
    const float width = std::trunc(content.width);
    const float height = std::trunc(content.height);
    const kroui::Rect& frame = UI_GetFrame();
    if (frame.width == width && frame.height == height) return;
    UI_SetFrame({frame.left, frame.top, width, height});
    GetContentSizeChangedSignal()();
}

bool TarnLioAudioComponentEditorView::UI_DoMouseEvent(UI_Node* node, const kroui::ui::MouseEvent& event) {
    if (!node && event.IsAction(kroui::ui::MouseEvent::Action::kPressed))
        GetAudioFilter()->BeginParameterEdit(AudioFilter::kAllParameters);
    return false;
}

void TarnLioAudioComponentEditorView::ControlReleased() {
    GetAudioFilter()->EndParameterEdit(AudioFilter::kAllParameters);
}

TarnLioAudioComponentEditorView::Scripts
TarnLioAudioComponentEditorView::LoadScripts(const krocore::string16& resourceName, HINSTANCE module) {
    if (!module) return {};
    bool found = true;
    Scripts scripts{ResourceText(resourceName, u"TRN", module, found), {}};
    scripts.layout = ResourceText(resourceName, u"LIO", module, found);
    return found ? scripts : Scripts{};
}

void TarnLioAudioComponentEditorView::ParseSheet(const std::string& script) {
    UI_Lio parser(nullptr, nullptr);
    std::istringstream stream(script);
    parser.ParseTarnScript(stream, fSheet, "property model description");
    fSheet->set_error_handler(&TraceSheetError);
}

void TarnLioAudioComponentEditorView::ClearInputs() {
    const int count = GetAudioFilter()->GetParameterCount();
    for (int i = 0; i < count; ++i)
        SetCell(Numbered("in", i), 0.0);
}

void TarnLioAudioComponentEditorView::SubscribeOutputs() {
    const int count = GetAudioFilter()->GetParameterCount();
    for (int i = 0; i < count; ++i) {
        const name_t output = Numbered("out", i);
        if (fSheet->has_output(output))
            fSheet->subscribe(output, boost::bind(&TarnLioAudioComponentEditorView::OnParameterChanged, this, _1, i));
    }
}

void TarnLioAudioComponentEditorView::ParseLayout(const std::string& script, HINSTANCE module) {
    UI_Lio parser(fSupplier, nullptr);
    if (module)
        parser.SetResourceProvider([module](name_t name) {
            std::vector<std::uint8_t> bytes;
            krocore::utility::GetBinaryFromModule(module, krocore::ToUTF16(Stem(name.text())), u"PNG", bytes);
            return bytes;
        });
    SetupVirtualMachine(parser.GetLayoutEngineVM());
    parser.SetClientWidgetAdpaterFactory(uit::lio::GetAdapterFactoryProc());
    std::istringstream stream(script);
    fLayoutRoot.reset(parser.ParseLioScript(stream, fSheet));
}

// The sheet tells what a control shows when every parameter has its default.
void TarnLioAudioComponentEditorView::TakeDefaults() {
    const boost::intrusive_ptr<AudioFilter> filter = GetAudioFilter();
    for (int i = 0; i < filter->GetParameterCount(); ++i)
        if (const auto* const info = filter->GetParameterInfo(i))
            SetCell(Numbered("in", i), static_cast<double>(info->GetDefault()));
    RecalculateSheet();
    fLayoutRoot->TakeDefaults();
}

void TarnLioAudioComponentEditorView::AskHostForTime() {
    const kroaudiofilterhost::AudioFilterHost* const host = GetAudioFilter()->GetAudioFilterHost();
    if (!host) return;
    const kroaudiofilterhost::AudioFilterTimeFormat format = host->GetTimeFormat();
    const kroaudiofilterhost::AudioFilterTempo tempo = host->GetTempo();
    fTimeFormat = orrin::dictionary_t{
        {name_t("sample_rate"), static_cast<std::int32_t>(GetAudioFilter()->GetSampleRate())},
        {name_t("format"), format.format},
        {name_t("current_fps"), format.currentFps},
        {name_t("custom_fps"), format.customFps},
        {name_t("beatinfo_ticks_per_quarter"), tempo.ticksPerQuarter},
        {name_t("beatinfo_beats_per_minute"), tempo.beatsPerMinute},
        {name_t("beatinfo_beats_per_bar"), tempo.beatsPerBar},
        {name_t("beatinfo_note_len"), tempo.noteLength},
        {name_t("beatinfo_beat_offset_ms"), tempo.beatOffsetMs},
    };
    fTimeFormatPending = true;
}

void TarnLioAudioComponentEditorView::OnParameterChanged(const any_regular_t& value, int index) {
    static OutOfRangeTrace trace("TarnLioAudioComponentEditorView::OnParameterChanged", "(from UI)");
    if (fSyncing) return;
    const auto stored = static_cast<float>(value.get<double>());
    const boost::intrusive_ptr<AudioFilter> filter = GetAudioFilter();
    if (filter->GetParameterValue(index) == stored) return;
    filter->SetParameterValue(index, stored);
    trace.Check(index, stored);
}

void TarnLioAudioComponentEditorView::SyncParameters() {
    AudioComponentEditorViewBase::SyncParameters();
    const boost::intrusive_ptr<AudioFilter> filter = GetAudioFilter();
    const bool suspended = filter->IsSuspended();
    const bool suspendedChanged = suspended != fLastSuspended;
    if (suspendedChanged) {
        fLastSuspended = suspended;
        // One less, whatever that wraps to: other than the count now, so that every parameter is pushed.
        fLastDirtyCount = static_cast<std::int32_t>(static_cast<std::uint32_t>(filter->GetParameterDirtyCount()) - 1U);
        OnSuspendedStateChanged(filter);
    }
    const FlagScope syncing(fSyncing);
    if (!fSheet) return;
    bool pushed = PushParameters();
    pushed = PushTimeFormat() || pushed;
    if (suspendedChanged) SetCell(Cells().suspended, suspended);
    if (pushed) PushEnvironment();
}

bool TarnLioAudioComponentEditorView::PushParameters() {
    static OutOfRangeTrace trace("TarnLioAudioComponentEditorView::SyncParameters", "(from component)");
    const boost::intrusive_ptr<AudioFilter> filter = GetAudioFilter();
    if (filter->GetParameterDirtyCount() == fLastDirtyCount) return false;
    for (int i = 0; i < filter->GetParameterCount(); ++i) {
        if (static_cast<std::size_t>(i) == fInputNames.size()) fInputNames.push_back(Numbered("in", i));
        const name_t input = fInputNames[static_cast<std::size_t>(i)];
        if (!fSheet->has_input(input)) continue;
        const float value = filter->GetParameterValue(i);
        fSheet->set(input, static_cast<double>(value));
        trace.Check(i, value);
    }
    return true;
}

bool TarnLioAudioComponentEditorView::PushTimeFormat() {
    if (!std::exchange(fTimeFormatPending, false)) return false;
    SetCell(Cells().timeFormat, fTimeFormat);
    return true;
}

void TarnLioAudioComponentEditorView::PushEnvironment() {
    const boost::intrusive_ptr<AudioFilter> filter = GetAudioFilter();
    SetCell(Cells().sampleRate, static_cast<double>(filter->GetSampleRate()));
    SetCell(Cells().currentDuration, filter->GetDuration());
    fLastDirtyCount = filter->GetParameterDirtyCount();
    RecalculateSheet();
    if (fLayoutRoot) fLayoutRoot->Refresh();
}

void TarnLioAudioComponentEditorView::OnSuspendedStateChanged(const boost::intrusive_ptr<AudioFilter>& filter) {
    if (!fLayoutRoot || filter->GetComponentID() != qoc::components::kAutoPhaseCorrectionComponentID) return;
    // What changes the analysis may be changed only while nothing is being analysed.
    for (const char* const identifier :
         {"Checkbox_globalTimeShift", "Popup_TimeResolution", "Popup_Responsiveness", "Popup_AnalysisSize"}) {
        auto* const control =
            dynamic_cast<kroui::controls::UI_ControlView*>(fLayoutRoot->GetViewHolder().GetControl(identifier));
        const bool disabled = !filter->IsSuspended();
        if (control && control->IsDisabled() != disabled) control->SetDisabled(disabled);
    }
}

void TarnLioAudioComponentEditorView::SetCell(name_t cell, const any_regular_t& value) {
    if (fSheet->has_input(cell)) fSheet->set(cell, value);
}

void TarnLioAudioComponentEditorView::RecalculateSheet() {
    fSheet->update();
    fSheet->reinitialise();
}

} // namespace qocui::controls
