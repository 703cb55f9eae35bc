#include "qocui/controls/TarnLioAudioComponentEditorView.h"

#include "krocore/String.h"
#include "krocore/WholeNumber.h"
#include "krocore/debug/Trace.h"
#include "krotarnlio/UI_KROLioRoot.h"
#include "krotarnlio/UI_Lio.h"
#include "kroui/controls/UI_ControlView.h"
#include "qoc/components/ComponentIDs.h"
#include "uit/lio/WidgetAdapter.h"

#include "OutOfRangeTrace.h"

#include <boost/bind/bind.hpp>

#include <algorithm>
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

constexpr std::int32_t kMostHertz = 1'000'000'000;

bool IsRate(float hertz) {
    return hertz > 0 && hertz <= static_cast<float>(kMostHertz);
}

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

// As a parameter: a number, and neither infinite nor undefined.
bool IsStorable(const any_regular_t& value) {
    const double* const number = value.get_if<double>();
    return number && std::isfinite(*number);
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
      fLastSuspended(false), fSupplier(supplier), fSheetFile(krocore::ToStdString(resourceName) + ".trn") {
    const Scripts scripts = LoadScripts(resourceName, module);
    InitStandardFunctionPack();
    InitStandardReflectedVariableSet();
    SetupVirtualMachine(*fSheet);
    ParseSheet(scripts.sheet);
    {
        const FlagScope syncing(fSyncing);
        ClearInputs();
        SetSampleRateCell();
        SetCell(Cells().currentDuration, GetAudioFilter()->GetDuration());
        RecalculateSheet();
        SubscribeOutputs();
        ParseLayout(scripts.layout, module);
        fLayoutRoot->Layout();
        fLayoutRoot->GetSizeChangedSignal().connect(boost::bind(&TarnLioAudioComponentEditorView::RecalcLayout, this));
        if (fSheet->has_input(Cells().sampleRate)) {
            SetSampleRateCell();
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

// A filter that knows no rate yet leaves the one that the sheet begins with.
void TarnLioAudioComponentEditorView::SetSampleRateCell() {
    const float rate = GetAudioFilter()->GetSampleRate();
    if (IsRate(rate)) SetCell(Cells().sampleRate, static_cast<double>(rate));
}

void TarnLioAudioComponentEditorView::AskHostForTime() {
    const kroaudiofilterhost::AudioFilterHost* const host = GetAudioFilter()->GetAudioFilterHost();
    if (!host) return;
    const kroaudiofilterhost::AudioFilterTimeFormat format = host->GetTimeFormat();
    const kroaudiofilterhost::AudioFilterTempo tempo = host->GetTempo();
    fTimeFormat = orrin::dictionary_t{
        {name_t("sample_rate"),
         krocore::TruncatedWithin<std::int32_t>(GetAudioFilter()->GetSampleRate(), 0, kMostHertz)},
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

// What is no number is told as a problem; the filter keeps what it has.
void TarnLioAudioComponentEditorView::OnParameterChanged(const any_regular_t& value, int index) {
    static OutOfRangeTrace trace("TarnLioAudioComponentEditorView::OnParameterChanged", "(from UI)");
    if (fSyncing || !IsStorable(value)) return;
    const auto stored = static_cast<float>(value.get<double>());
    const boost::intrusive_ptr<AudioFilter> filter = GetAudioFilter();
    if (filter->GetParameterValue(index) == stored) return;
    if (std::isfinite(stored)) filter->SetParameterValue(index, stored);
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
    if (suspendedChanged) GiveInput(Cells().suspended, suspended);
    if (pushed)
        PushEnvironment();
    else
        fSheet->settle();
    FollowProblems();
}

bool TarnLioAudioComponentEditorView::PushParameters() {
    static OutOfRangeTrace trace("TarnLioAudioComponentEditorView::SyncParameters", "(from component)");
    const boost::intrusive_ptr<AudioFilter> filter = GetAudioFilter();
    if (filter->GetParameterDirtyCount() == fLastDirtyCount) return false;
    for (int i = 0; i < filter->GetParameterCount(); ++i) {
        NameParameters();
        const auto index = static_cast<std::size_t>(i);
        if (!fSheet->has_input(fInputNames[index])) continue;
        const float value = filter->GetParameterValue(i);
        GiveParameter(index, value);
        trace.Check(i, value);
    }
    return true;
}

void TarnLioAudioComponentEditorView::NameParameters() {
    const auto count = static_cast<std::size_t>(GetAudioFilter()->GetParameterCount());
    for (std::size_t i = fInputNames.size(); i < count; ++i) {
        fInputNames.push_back(Numbered("in", static_cast<int>(i)));
        fOutputNames.push_back(Numbered("out", static_cast<int>(i)));
    }
}

// What the sheet says itself comes back rounded as it was stored: an echo. Any other value than that is news, also one
// that the sheet was given before.
void TarnLioAudioComponentEditorView::GiveParameter(std::size_t index, float value) {
    const name_t input = fInputNames[index];
    const name_t output = fOutputNames[index];
    const any_regular_t said = fSheet->has_output(output) ? fSheet->get(output) : any_regular_t();
    const bool isEcho = IsStorable(said) && static_cast<float>(said.get<double>()) == value;
    const any_regular_t given = static_cast<double>(value);
    const bool isNew = fSheet->contributed(input) != given;
    if (isNew || (!isEcho && said.type() != orrin::type_t::empty))
        fGiven.push_back({input, isEcho ? said : any_regular_t()});
    fSheet->set(input, given);
}

bool TarnLioAudioComponentEditorView::PushTimeFormat() {
    if (!std::exchange(fTimeFormatPending, false)) return false;
    GiveInput(Cells().timeFormat, fTimeFormat);
    return true;
}

void TarnLioAudioComponentEditorView::PushEnvironment() {
    const boost::intrusive_ptr<AudioFilter> filter = GetAudioFilter();
    if (IsRate(filter->GetSampleRate())) GiveInput(Cells().sampleRate, static_cast<double>(filter->GetSampleRate()));
    GiveInput(Cells().currentDuration, filter->GetDuration());
    fLastDirtyCount = filter->GetParameterDirtyCount();
    fSheet->update();
    fSheet->reinitialise(fGiven);
    fGiven.clear();
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

void TarnLioAudioComponentEditorView::GiveInput(name_t input, const any_regular_t& value) {
    if (!fSheet->has_input(input) || fSheet->contributed(input) == value) return;
    fSheet->set(input, value);
    fGiven.push_back({input, {}});
}

void TarnLioAudioComponentEditorView::SetCell(name_t cell, const any_regular_t& value) {
    if (fSheet->has_input(cell)) fSheet->set(cell, value);
}

void TarnLioAudioComponentEditorView::RecalculateSheet() {
    fSheet->update();
    fSheet->reinitialise();
}

// After every computation, whoever has caused it.
void TarnLioAudioComponentEditorView::FollowProblems() {
    if (std::exchange(fSeenEvaluations, fSheet->evaluation_count()) == fSheet->evaluation_count()) return;
    std::vector<orrin::error_t> problems = FindProblems();
    if (std::ranges::equal(problems, fProblems, {}, &orrin::error_t::what, &orrin::error_t::what)) return;
    fProblems = std::move(problems);
    UI_Invalidate();
}

std::vector<orrin::error_t> TarnLioAudioComponentEditorView::FindProblems() const {
    std::vector<orrin::error_t> problems;
    for (const orrin::error_t& error : fSheet->errors())
        problems.emplace_back(fSheetFile, error.position(), error.message());
    for (const name_t output : fOutputNames) {
        if (!fSheet->has_output(output) || IsStorable(fSheet->get(output))) continue;
        const orrin::type_t type = fSheet->get(output).type();
        if (type == orrin::type_t::empty) continue; // it has never been computed, which is told already
        problems.emplace_back(
            fSheetFile, fSheet->position(output),
            "cell " + orrin::in_quotes(output.text()) + ": an output needs a number, not " +
                (type == orrin::type_t::number ? "one that is infinite or undefined" : orrin::type_phrase(type)));
    }
    return problems;
}

// A frame, and the first of the messages on a strip at the bottom.
void TarnLioAudioComponentEditorView::UI_DrawOver(kroui::limner::Limner* limner) {
    AudioComponentEditorViewBase::UI_DrawOver(limner);
    if (fProblems.empty()) return;
    constexpr float kFrame = 2;
    constexpr float kStrip = 16; // the margin around the widgets
    constexpr float kMargin = 8;
    const kroui::Rect rect = UI_GetLocalRect();
    const kroui::limner::Color warning = GetColor(kroui::ui::kColorWarning);
    const kroui::Rect strip{rect.left, rect.Bottom() - kStrip, rect.width, kStrip};
    limner->FillRect(strip, GetColor(kroui::ui::kColorPanel));
    limner->FrameRoundRect(rect.Inset(kFrame / 2, kFrame / 2), 0, warning, kFrame);
    limner->DrawText(krocore::ToUTF16(fProblems.front().what()), {}, GetColor(kroui::ui::kColorText),
                     strip.Inset(kMargin, 0), {.truncation = kroui::limner::TextTruncation::kEnd});
}

kroui::ui::AccessibleInfo TarnLioAudioComponentEditorView::UI_GetAccessibleInfo() const {
    kroui::ui::AccessibleInfo info = AudioComponentEditorViewBase::UI_GetAccessibleInfo();
    if (!fProblems.empty()) info.value = krocore::ToUTF16(fProblems.front().what());
    return info;
}

} // namespace qocui::controls
