#include "PanelHost.h"
#include "SourcePaths.h"
#include "kroui/controls/UI_Checkbox.h"
#include "kroui/controls/UI_DisclosureTriangleButton.h"
#include "kroui/controls/UI_DisplayNumber.h"
#include "kroui/controls/UI_Popup.h"
#include "kroui/controls/UI_RadioButton.h"
#include "kroui/controls/UI_TabGroup.h"
#include "orrin/functions.h"
#include "orrin/sheet.h"
#include "qoc/components/ComponentIDs.h"
#include "qoc/components/EffectCatalogue.h"
#include "qoc/components/GraphicEQ.h"
#include "uit/controls/UI_EditNumber.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <sstream>

using namespace kroui;
using namespace qoc::components;
using kroaudiofilterhost::AudioFilterParameterInfo;
using orrin::name_t;
using uit::controls::UI_EditNumber;

namespace {

// How a parameter of an effect shows in its panel.
struct Parameter {
    int index;
    std::string cell;
    std::string label; // or identifier
    bool isShownOnly = false;
};

struct Panel {
    std::string name; // of the scripts
    const char16_t* component;
    std::vector<Parameter> parameters;
};

std::vector<std::string> Words(const std::string& text) {
    std::istringstream stream(text);
    return {std::istream_iterator<std::string>(stream), {}};
}

Panel GraphicEQPanel(std::string name, const char16_t* component, const std::string& labels) {
    std::vector<Parameter> parameters = {{kGraphicEQRange, "range", "Range:"},
                                         {kGraphicEQAccuracy, "accuracy", "Accuracy:"},
                                         {kGraphicEQMasterGain, "master_gain", "Master Gain:"}};
    int band = 0;
    for (const std::string& label : Words(labels)) {
        parameters.push_back({kGraphicEQFirstGain + band, "band" + std::to_string(band + 1), label});
        ++band;
    }
    parameters.push_back({kGraphicEQFirstGain + band, "highest_gain", "Highest Gain:", true});
    return {std::move(name), component, std::move(parameters)};
}

const Panel& OctavePanel() {
    static const Panel panel =
        GraphicEQPanel("GRAPHICEQ10BANDS", kGraphicEQ10BandsComponentID, "31 63 125 250 500 1k 2k 4k 8k 16k");
    return panel;
}

const Panel& HalfOctavePanel() {
    static const Panel panel =
        GraphicEQPanel("GRAPHICEQ20BANDSUI", kGraphicEQ20BandsComponentID,
                       "22 31 44 63 88 125 177 250 354 500 707 1k 1.4k 2k 2.8k 4k 5.7k 8k 11.3k 16k");
    return panel;
}

const Panel& ThirdOctavePanel() {
    static const Panel panel = GraphicEQPanel("GRAPHICEQ30BANDSUI", kGraphicEQ30BandsComponentID,
                                              "25 31.5 40 50 63 80 100 125 160 200 250 315 400 500 630 800 1k 1.25k "
                                              "1.6k 2k 2.5k 3.15k 4k 5k 6.3k 8k 10k 12.5k 16k 20k");
    return panel;
}

const std::vector<Panel>& Panels() {
    static const std::vector<Panel> panels = {
        {"HARDLIMITERUI",
         kHardLimiterComponentID,
         {{kHardLimiterMaximumAmplitude, "max_amp", "Maximum Amplitude:"},
          {kHardLimiterInputBoost, "input_boost", "Input Boost:"},
          {kHardLimiterLookAhead, "lookahead_time", "Look-Ahead Time:"},
          {kHardLimiterRelease, "release_time", "Release Time:"},
          {kHardLimiterLinkChannels, "link_channels", "Link Channels"}}},
        OctavePanel(),
        HalfOctavePanel(),
        ThirdOctavePanel(),
        {"AUTOCLICKREMOVERUI",
         kAutoClickRemoverComponentID,
         {{kAutoClickRemoverThreshold, "threshold", "Threshold:"},
          {kAutoClickRemoverComplexity, "complexity", "Complexity:"},
          {kAutoClickRemoverRepairs, "repairs", "Clicks Repaired:", true}}},
        {"ADAPTIVENOISEREDUCTIONUI",
         kAdaptiveNoiseReductionComponentID,
         {{kAdaptiveNoiseReductionReduceBy, "reduce_by", "Reduce Noise By:"},
          {kAdaptiveNoiseReductionNoisiness, "noisiness", "Noisiness:"},
          {kAdaptiveNoiseReductionFineTune, "fine_tune", "Fine Tune Noise Floor:"},
          {kAdaptiveNoiseReductionThreshold, "signal_threshold", "Signal Threshold:"},
          {kAdaptiveNoiseReductionDecay, "decay_rate", "Spectral Decay Rate:"},
          {kAdaptiveNoiseReductionBroadband, "broadband", "Broadband Preservation:"},
          {kAdaptiveNoiseReductionFFTSize, "fft_size", "FFT Size:"},
          {kAdaptiveNoiseReductionHighQuality, "high_quality", "High Quality"},
          {kAdaptiveNoiseReductionNoiseFloor, "noise_floor", "Noise Floor:", true}}},
        {"INTRACLIPUI",
         kIntraClipComponentComponentID,
         {{kIntraClipGain, "gain", "Gain:"},
          {kIntraClipTolerance, "tolerance", "Tolerance:"},
          {kIntraClipMinimumSize, "minimum_size", "Minimum Size:"},
          {kIntraClipLevel, "clip_level", "Clip Level:"},
          {kIntraClipFindLevel, "find_level", "Find clip level"},
          {kIntraClipUseSpectrum, "use_spectrum", "FFT"},
          {kIntraClipFFTSize, "fft_size", "FFT Size:"},
          {kIntraClipDetail, "model_order", "Model Order:"}}},
        {"DELAYUI",
         kDelayComponentID,
         {{kDelayLeftTime, "left_time", "LeftTime"},
          {kDelayLeftMix, "left_mix", "LeftMix"},
          {kDelayLeftInvert, "left_invert", "LeftInvert"},
          {kDelayRightTime, "right_time", "RightTime"},
          {kDelayRightMix, "right_mix", "RightMix"},
          {kDelayRightInvert, "right_invert", "RightInvert"},
          {kDelayShowSamples, "show_samples", "Show in Samples"},
          {kDelayChannelCount, "channel_count", "", true}}},
        {"CHORUSUI",
         kChorusComponentID,
         {{kChorusVoices, "voices", "Voices:"},
          {kChorusDelay, "delay_time", "Delay Time:"},
          {kChorusRate, "delay_rate", "Delay Rate:"},
          {kChorusDepth, "delay_depth", "Delay Depth:"},
          {kChorusFeedback, "feedback", "Feedback:"},
          {kChorusSpread, "spread", "Spread:"},
          {kChorusLevelDepth, "level_depth", "Level Depth:"},
          {kChorusLevelRate, "level_rate", "Level Rate:"},
          {kChorusHighQuality, "highest_quality", "Highest Quality"},
          {kChorusAverage, "average", "Average Left and Right Channels"},
          {kChorusBinaural, "binaural_cues", "Add Binaural Cues"},
          {kChorusWidth, "stereo_width", "Stereo Width:"},
          {kChorusMix, "mix", "Mix:"}}},
        {"FLANGERUI",
         kFlangerComponentID,
         {{kFlangerInitialDelay, "initial_delay", "Initial Delay Time:"},
          {kFlangerFinalDelay, "final_delay", "Final Delay Time:"},
          {kFlangerStereoPhase, "stereo_phase", "Stereo Phasing:"},
          {kFlangerFeedback, "feedback", "Feedback:"},
          {kFlangerRate, "rate", "Modulation Rate:"},
          {kFlangerInverted, "inverted", "Inverted"},
          {kFlangerThroughZero, "through_zero", "Through Zero"},
          {kFlangerSinusoidal, "sinusoidal", "Sinusoidal"},
          {kFlangerMix, "mix", "Mix:"},
          {kFlangerShowPeriod, "show_period", "Show as Period"}}},
        {"ECHOUI",
         kEchoComponentID,
         {{kEchoLeftTime, "left_time", "LeftTime"},
          {kEchoLeftFeedback, "left_feedback", "LeftFeedback"},
          {kEchoLeftLevel, "left_level", "LeftLevel"},
          {kEchoRightTime, "right_time", "RightTime"},
          {kEchoRightFeedback, "right_feedback", "RightFeedback"},
          {kEchoRightLevel, "right_level", "RightLevel"},
          {kEchoFirstBand, "band1", "125"},
          {kEchoFirstBand + 1, "band2", "250"},
          {kEchoFirstBand + 2, "band3", "500"},
          {kEchoFirstBand + 3, "band4", "1k"},
          {kEchoFirstBand + 4, "band5", "2k"},
          {kEchoFirstBand + 5, "band6", "4k"},
          {kEchoFirstBand + 6, "band7", "8k"},
          {kEchoFirstBand + 7, "band8", "16k"},
          {kEchoBounce, "bounce", "Echo Bounce"},
          {kEchoLock, "lock", "Lock Left & Right"},
          {kEchoTimeUnit, "time_unit", "Delay Time Units:"},
          {kEchoChannelCount, "channel_count", "", true}}},
        {"REVERBUI",
         kReverbComponentID,
         {{kReverbDecay, "decay", "Decay Time:"},
          {kReverbPredelay, "predelay", "Pre-Delay Time:"},
          {kReverbDiffusion, "diffusion", "Diffusion:"},
          {kReverbPerception, "perception", "Perception:"},
          {kReverbDry, "dry", "Dry:"},
          {kReverbWet, "wet", "Wet:"},
          {kReverbSumInputs, "sum_inputs", "Sum Inputs"},
          {kReverbLength, "length", "Length:", true},
          {kReverbDirectRatio, "direct_ratio", "Direct to Reverberant:", true}}},
        {"STUDIOREVERBUI",
         kStudioReverbComponentID,
         {{kStudioReverbRoomSize, "room_size", "Room Size:"},
          {kStudioReverbDecay, "decay", "Decay Time:"},
          {kStudioReverbEarly, "early", "Early Reflections:"},
          {kStudioReverbWidth, "width", "Stereo Width:"},
          {kStudioReverbHighCut, "high_cut", "High Frequency Cut:"},
          {kStudioReverbLowCut, "low_cut", "Low Frequency Cut:"},
          {kStudioReverbDamping, "damping", "Damping:"},
          {kStudioReverbDiffusion, "diffusion", "Diffusion:"},
          {kStudioReverbDry, "dry", "Dry:"},
          {kStudioReverbWet, "wet", "Wet:"},
          {kStudioReverbLength, "length", "Length:", true},
          {kStudioReverbDirectRatio, "direct_ratio", "Direct to Reverberant:", true}}},
        // The switch that sets the decay comes last, as it stays on.
        {"FULLREVERBUI",
         kFullReverbComponentID,
         {{kFullReverbDecay, "decay", "Decay Time:"},
          {kFullReverbPredelay, "predelay", "Pre-Delay Time:"},
          {kFullReverbDiffusion, "diffusion", "Diffusion:"},
          {kFullReverbPerception, "perception", "Perception:"},
          {kFullReverbRoomSize, "room_size", "Room Size:"},
          {kFullReverbDimension, "dimension", "Width to Depth:"},
          {kFullReverbLocation, "location", "Left or Right:"},
          {kFullReverbDistance, "distance", "Distance:"},
          {kFullReverbHighPass, "high_pass", "High-Pass Cutoff:"},
          {kFullReverbLowFrequency, "low_frequency", "Low Shelf:"},
          {kFullReverbLowGain, "low_gain", "Low Gain:"},
          {kFullReverbMiddleFrequency, "middle_frequency", "Peak:"},
          {kFullReverbMiddleGain, "middle_gain", "Peak Gain:"},
          {kFullReverbMiddleQ, "middle_q", "Peak Q:"},
          {kFullReverbHighFrequency, "high_frequency", "High Shelf:"},
          {kFullReverbHighGain, "high_gain", "High Gain:"},
          {kFullReverbDry, "dry", "Dry"},
          {kFullReverbReverberation, "reverberation", "Reverb"},
          {kFullReverbEarly, "early", "Early"},
          {kFullReverbIncludeDirect, "include_direct", "Include Direct Sound"},
          {kFullReverbSumInputs, "sum_inputs", "Sum Inputs"},
          {kFullReverbSetByRoom, "set_by_room", "Set by Room Size"},
          {kFullReverbRoomWidth, "room_width", "Dimensions:", true},
          {kFullReverbRoomDepth, "room_depth", "Dimensions:", true},
          {kFullReverbRoomHeight, "room_height", "Dimensions:", true},
          {kFullReverbRoomDecay, "room_decay", "Decay Time:", true},
          {kFullReverbRoomPredelay, "room_predelay", "Pre-Delay Time:", true},
          {kFullReverbFirstReflection, "first_reflection", "First Reflection:", true}}},
    };
    return panels;
}

boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> PreparedEffect(const char16_t* component) {
    auto filter = CreateEffect(component);
    filter->Prepare(48000, 64, kromediatypes::AudioChannelLayout::Stereo());
    return filter;
}

std::string Contents(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

constexpr const char* kScripts = QO_SOURCE_DIR "/resources/scripts";

// A sheet alone has no functions; those of the view that reach the filter give nothing.
void LoadSheet(orrin::sheet_t& sheet, const std::string& name) {
    sheet.machine().set_function_lookup([](name_t function, const orrin::any_regular_t& arguments) {
        return function == name_t("serialize_regular") ? orrin::functions::serialize_regular(arguments)
                                                       : orrin::any_regular_t(orrin::array_t{});
    });
    sheet.load(Contents(std::filesystem::path(kScripts) / (name + ".trn")), name);
}

name_t Numbered(const char* prefix, int index) {
    return name_t(prefix + std::to_string(index));
}

float OutputOf(const orrin::sheet_t& sheet, int index) {
    return static_cast<float>(sheet[Numbered("out", index)].get<double>());
}

// A step of the stored float, in the parameter's unit.
double Tolerance(const AudioFilterParameterInfo& info) {
    return 1e-6 * std::abs(info.ToNatural(1) - info.ToNatural(0));
}

// What the effect takes the value for: of a switch or a choice, what is nearest.
float StandsFor(const AudioFilterParameterInfo& info, float value) {
    using Kind = AudioFilterParameterInfo::Kind;
    if (info.GetKind() == Kind::kChoice) return info.FromItem(info.ToItem(value));
    return info.GetKind() == Kind::kSwitch ? std::round(value) : value;
}

// The value goes to the cell as the effect understands it, and from there to the output as it came.
void ExpectCarried(orrin::sheet_t& sheet, const Parameter& parameter, const AudioFilterParameterInfo& info,
                   float value) {
    SCOPED_TRACE(parameter.cell + " " + std::to_string(value));
    sheet.set(Numbered("in", parameter.index), static_cast<double>(value));
    sheet.update();
    sheet.reinitialise();
    const orrin::any_regular_t& cell = sheet[name_t(parameter.cell)];
    const bool isSwitch = info.GetKind() == AudioFilterParameterInfo::Kind::kSwitch;
    if (isSwitch)
        EXPECT_EQ(cell.get<bool>(), info.ToText(value) == info.ToText(1));
    else
        EXPECT_NEAR(cell.get<double>(), info.ToNatural(StandsFor(info, value)), Tolerance(info));
    if (parameter.isShownOnly) return;
    EXPECT_EQ(OutputOf(sheet, parameter.index), StandsFor(info, value));
}

// What the user sets goes out through the effect's own formula.
void ExpectWritten(orrin::sheet_t& sheet, const Parameter& parameter, const AudioFilterParameterInfo& info) {
    if (info.GetKind() == AudioFilterParameterInfo::Kind::kSwitch) return;
    constexpr float kValue = 0.3125F;
    sheet.set(name_t(parameter.cell), static_cast<double>(info.ToNatural(kValue)));
    sheet.update();
    EXPECT_NEAR(OutputOf(sheet, parameter.index), kValue, 1e-6) << parameter.cell;
}

TEST(ScriptPanelSheets, CarryEveryParameterInAndOut) {
    for (const Panel& panel : Panels()) {
        SCOPED_TRACE(panel.name);
        const auto filter = PreparedEffect(panel.component);
        orrin::sheet_t sheet;
        LoadSheet(sheet, panel.name);
        for (const Parameter& parameter : panel.parameters) {
            const AudioFilterParameterInfo& info = *filter->GetParameterInfo(parameter.index);
            for (const float value : {0.0F, 0.1F, 0.49F, 0.5F, 0.7F, 1.0F})
                ExpectCarried(sheet, parameter, info, value);
            if (!parameter.isShownOnly) ExpectWritten(sheet, parameter, info);
        }
        EXPECT_THAT(sheet.errors(), testing::IsEmpty());
        EXPECT_THAT(sheet.warnings(), testing::IsEmpty());
    }
}

// Inputs beside the parameters: those that the view sets, and the page that is open.
bool IsOfTheHost(std::string_view cell) {
    return cell == "sample_rate" || cell == "current_duration" || cell == "suspended" || cell == "time_format" ||
           cell == "page";
}

TEST(ScriptPanelSheets, HaveNoInputsAndOutputsButThoseOfTheirParameters) {
    for (const Panel& panel : Panels()) {
        orrin::sheet_t sheet;
        LoadSheet(sheet, panel.name);
        std::vector<std::string> expected;
        for (const Parameter& parameter : panel.parameters) {
            expected.push_back("in" + std::to_string(parameter.index));
            if (!parameter.isShownOnly) expected.push_back("out" + std::to_string(parameter.index));
        }
        std::vector<std::string> there;
        for (const orrin::cell_info_t& cell : sheet.cells())
            if ((cell.kind == orrin::cell_kind_t::input || cell.kind == orrin::cell_kind_t::output) &&
                !IsOfTheHost(cell.name.text()))
                there.emplace_back(cell.name.text());
        EXPECT_THAT(there, testing::UnorderedElementsAreArray(expected)) << panel.name;
    }
}

// What the script begins with: "sheet HardLimiterUI", the name without the word.
std::string NameIn(const std::string& script, const std::string& word) {
    const std::vector<std::string> words = Words(script.substr(0, script.find('{')));
    return words.size() == 2 && words[0] == word ? words[1] : "no " + word;
}

TEST(ScriptPanelSheets, StandBesideALayoutOfTheirNameBothInPlainTextWithWindowsLineEnds) {
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(kScripts)) {
        const std::string text = Contents(entry.path());
        SCOPED_TRACE(entry.path());
        for (std::size_t i = 0; i < text.size(); ++i) {
            const bool isPlain = (text[i] >= ' ' && text[i] <= '~') || text[i] == '\t' || text[i] == '\r';
            const bool endsLine = text[i] == '\n' && i > 0 && text[i - 1] == '\r';
            ASSERT_TRUE(isPlain || endsLine) << "byte " << i;
        }
        if (entry.path().extension() != ".trn") continue;
        const std::string layout = Contents(std::filesystem::path(entry.path()).replace_extension(".lio"));
        EXPECT_EQ(NameIn(text, "sheet"), NameIn(layout, "layout"));
        ++count;
    }
    EXPECT_GT(count, 0);
}

class ScriptPanelsTest : public test::PanelHost<> {
protected:
    ScriptPanelsTest() : PanelHost({1100, 600}) {}

    void Open(const Panel& panel) {
        fFilter = PreparedEffect(panel.component);
        ShowPanelOf(fFilter);
        if (auto* const reveal = Find<controls::UI_DisclosureTriangleButton>("Advanced"))
            fWindow.Click(ui::HeadlessWindow::CentreOf(*reveal));
    }
    // Turns the panel's tabs until the control is to be seen.
    void ShowPageOf(const ui::UI_Node& control) {
        for (int tab = 0; !control.UI_IsVisibleInWindow(); ++tab) {
            auto* const tabs = Find<controls::UI_TabGroup>("Settings");
            ASSERT_TRUE(tabs && tab < tabs->GetTabCount());
            fWindow.Click(tabs->UI_LocalToWindow(tabs->TabRect(tab).Centre()));
        }
    }

    // The control of that kind with that identifier, or else the first that is called so; null if there is none.
    template <class Control>
    Control* Find(const std::string& label) {
        if (auto* const control = dynamic_cast<Control*>(fView->UI_FindNode(label))) return control;
        return Find<Control>(label, *fView);
    }
    template <class Control>
    Control* Find(const std::string& label, ui::UI_Node& node) {
        auto* const control = dynamic_cast<Control*>(&node);
        if (control && krocore::ToStdString(node.UI_GetAccessibleInfo().name) == label) return control;
        for (const auto& child : node.Children())
            if (Control* const found = Find<Control>(label, *child)) return found;
        return nullptr;
    }
    std::vector<float> Stored() const {
        std::vector<float> values;
        for (int i = 0; i < fFilter->GetParameterCount(); ++i)
            values.push_back(fFilter->GetParameterInfo(i) && fFilter->GetParameterInfo(i)->IsReadOnly()
                                 ? 0.0F
                                 : fFilter->GetParameterValue(i));
        return values;
    }
    double Natural(int index) const {
        return fFilter->GetParameterInfo(index)->ToNatural(fFilter->GetParameterValue(index));
    }
    void Set(int index, double natural) {
        fFilter->SetParameterValue(index, fFilter->GetParameterInfo(index)->ToNormalised(static_cast<float>(natural)));
        Poll();
    }

    void ExpectFollows(const Parameter& parameter, const UI_EditNumber& control);
    void ExpectWritesDrags(const Parameter& parameter, UI_EditNumber& control);
    void ExpectResets(const Parameter& parameter, UI_EditNumber& control);
    void ExpectSwitches(const Parameter& parameter, controls::UI_Checkbox& control);
    void ExpectChooses(const Parameter& parameter, controls::UI_Popup& control);
    void ExpectTurnsOn(const Parameter& parameter, controls::UI_RadioButton& control);

    boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> fFilter;
};

// As after automation: shown, and not written back.
void ScriptPanelsTest::ExpectFollows(const Parameter& parameter, const UI_EditNumber& control) {
    for (const float value : {1.0F, 0.0F, 0.123456F, 0.5F}) {
        fFilter->SetParameterValue(parameter.index, value);
        const std::int32_t dirtyCount = fFilter->GetParameterDirtyCount();
        Poll();
        const AudioFilterParameterInfo& info = *fFilter->GetParameterInfo(parameter.index);
        EXPECT_NEAR(control.GetValue(), info.ToNatural(value), Tolerance(info));
        Poll();
        EXPECT_EQ(fFilter->GetParameterDirtyCount(), dirtyCount) << "an echo";
    }
}

// From the middle of the range. Neither way must anything else be written.
void ScriptPanelsTest::ExpectWritesDrags(const Parameter& parameter, UI_EditNumber& control) {
    std::vector<float> expected = Stored();
    const auto& layout = control.Layout();
    const Rect& held = layout.slider.IsEmpty() ? layout.number : layout.track;
    const Point from = control.UI_LocalToWindow(held.Centre());
    for (const float distance : {30.0F, -45.0F}) {
        // The knob of a logarithmic slider stands elsewhere: a press brings it here. The drag is no double-click.
        if (!layout.slider.IsEmpty()) fWindow.Click(from);
        fWindow.Advance(1);
        const double before = control.GetValue();
        const Point at = control.UI_LocalToWindow(held.Centre());
        fWindow.Drag(from, {at.x + distance, at.y - distance});
        Poll();
        EXPECT_EQ(control.GetValue() > before, distance > 0) << distance;
        const AudioFilterParameterInfo& info = *fFilter->GetParameterInfo(parameter.index);
        expected[static_cast<std::size_t>(parameter.index)] = info.ToNormalised(static_cast<float>(control.GetValue()));
        EXPECT_THAT(Stored(), testing::Pointwise(testing::FloatNear(1e-6F), expected));
        fFilter->SetParameterValue(parameter.index, 0.5F);
        Poll();
    }
}

// A reset goes to what the effect begins with, not to the bounds or to 0.
void ScriptPanelsTest::ExpectResets(const Parameter& parameter, UI_EditNumber& control) {
    const auto& layout = control.Layout();
    const Rect& held = layout.slider.IsEmpty() ? layout.number : layout.track;
    fWindow.Click(control.UI_LocalToWindow(held.Centre()), ui::kCommand);
    EXPECT_NEAR(fFilter->GetParameterValue(parameter.index), fFilter->GetParameterInfo(parameter.index)->GetDefault(),
                1e-6);
}

void ScriptPanelsTest::ExpectSwitches(const Parameter& parameter, controls::UI_Checkbox& control) {
    for (const float value : {0.0F, 1.0F}) {
        fFilter->SetParameterValue(parameter.index, 1 - value);
        Poll();
        EXPECT_EQ(control.IsChecked(), value == 0);
        fWindow.Click(ui::HeadlessWindow::CentreOf(control));
        EXPECT_EQ(fFilter->GetParameterValue(parameter.index), value);
    }
}

void ScriptPanelsTest::ExpectChooses(const Parameter& parameter, controls::UI_Popup& control) {
    const AudioFilterParameterInfo& info = *fFilter->GetParameterInfo(parameter.index);
    ASSERT_EQ(control.GetItemCount(), info.GetItemCount());
    for (int item = 0; item < info.GetItemCount(); ++item) {
        fFilter->SetParameterValue(parameter.index, info.FromItem(item));
        Poll();
        EXPECT_EQ(control.GetValue(), item);
        EXPECT_EQ(control.GetItemText(item), info.GetItemName(item));
    }
    control.UI_TakeFocus();
    fWindow.PressKey(ui::Key::kHome);
    EXPECT_EQ(fFilter->GetParameterValue(parameter.index), info.FromItem(0));
    fWindow.PressKey(ui::Key::kDown);
    EXPECT_EQ(fFilter->GetParameterValue(parameter.index), info.FromItem(1));
}

// The button of several that stands for the parameter being on.
void ScriptPanelsTest::ExpectTurnsOn(const Parameter& parameter, controls::UI_RadioButton& control) {
    fFilter->SetParameterValue(parameter.index, 0);
    Poll();
    EXPECT_FALSE(control.IsChecked());
    fWindow.Click(ui::HeadlessWindow::CentreOf(control));
    EXPECT_EQ(fFilter->GetParameterValue(parameter.index), 1);
}

TEST_F(ScriptPanelsTest, EveryControlFollowsItsParameterAndWritesIt) {
    for (const Panel& panel : Panels()) {
        SCOPED_TRACE(panel.name);
        Open(panel);
        for (const Parameter& parameter : panel.parameters) {
            SCOPED_TRACE(parameter.label);
            if (parameter.isShownOnly) continue;
            // The whole range of a graphic equaliser, so that it bounds none of its gains.
            fFilter->SetParameterValue(0, 1);
            if (auto* const edit = Find<UI_EditNumber>(parameter.label)) {
                ShowPageOf(*edit);
                ExpectFollows(parameter, *edit);
                ExpectWritesDrags(parameter, *edit);
                ExpectResets(parameter, *edit);
            } else if (auto* const check = Find<controls::UI_Checkbox>(parameter.label)) {
                ShowPageOf(*check);
                ExpectSwitches(parameter, *check);
            } else if (auto* const popup = Find<controls::UI_Popup>(parameter.label)) {
                ExpectChooses(parameter, *popup);
            } else if (auto* const radio = Find<controls::UI_RadioButton>(parameter.label)) {
                ExpectTurnsOn(parameter, *radio);
            } else {
                ADD_FAILURE() << "has no control";
            }
        }
    }
}

using Bands = GraphicEQ::Bands;

struct GraphicEQCase {
    const Panel& (*panel)();
    Bands bands;
};

class GraphicEQPanelTest : public ScriptPanelsTest, public testing::WithParamInterface<GraphicEQCase> {
protected:
    GraphicEQPanelTest() { Open(GetParam().panel()); }

    static std::vector<std::string> Labels() {
        std::vector<std::string> labels;
        for (const Parameter& parameter : GetParam().panel().parameters)
            if (parameter.cell.starts_with("band")) labels.push_back(parameter.label);
        return labels;
    }
    Rect Track(const std::string& label) {
        UI_EditNumber& band = *Find<UI_EditNumber>(label);
        const Rect track = band.Layout().track;
        const Point corner = band.UI_LocalToWindow({track.left, track.top});
        return {corner.x, corner.y, track.width, track.height};
    }
};

TEST_P(GraphicEQPanelTest, BandsAreCalledByTheFrequenciesOfTheEffect) {
    const auto centres = GraphicEQ::Centres(GetParam().bands);
    const std::vector<std::string> labels = Labels();
    ASSERT_EQ(labels.size(), centres.size());
    for (std::size_t i = 0; i < labels.size(); ++i) {
        const double hertz = std::stod(labels[i]) * (labels[i].ends_with('k') ? 1000 : 1);
        EXPECT_NEAR(hertz / centres[i], 1, 0.011) << labels[i]; // as far as two digits can tell
    }
}

TEST_P(GraphicEQPanelTest, BandsStandSideBySideAtEqualDistancesInAThousandUnits) {
    const std::vector<std::string> labels = Labels();
    const Rect first = Track(labels[0]);
    const float distance = Track(labels[1]).left - first.left;
    for (std::size_t i = 1; i < labels.size(); ++i) {
        const Rect track = Track(labels[i]);
        EXPECT_EQ(track.top, first.top) << labels[i];
        EXPECT_EQ(track.height, first.height) << labels[i];
        EXPECT_EQ(track.left, first.left + distance * static_cast<float>(i)) << labels[i];
    }
    EXPECT_LE(fView->UI_GetFrame().width, 1000);
}

TEST_P(GraphicEQPanelTest, RangeBoundsWhatTheGainsShowAndLeavesThemStored) {
    const UI_EditNumber& band = *Find<UI_EditNumber>("1k");
    int index = 0;
    for (const Parameter& parameter : GetParam().panel().parameters)
        if (parameter.label == "1k") index = parameter.index;
    Set(kGraphicEQRange, 30);
    Set(index, 12);
    Set(kGraphicEQRange, 10);
    EXPECT_NEAR(band.GetMaxValue(), 5, 1e-5);
    EXPECT_NEAR(band.GetMinValue(), -5, 1e-5);
    EXPECT_NEAR(band.GetValue(), 5, 1e-5);
    EXPECT_NEAR(Natural(index), 12, 1e-5);
    Set(kGraphicEQRange, 30);
    EXPECT_NEAR(band.GetValue(), 12, 1e-5);
}

TEST_P(GraphicEQPanelTest, HighestGainIsShownAndFollowsTheCurve) {
    const auto& shown = *Find<controls::UI_DisplayNumber>("Highest Gain:");
    EXPECT_EQ(shown.ShownText(), u"0.0");
    for (const Parameter& parameter : GetParam().panel().parameters)
        if (parameter.cell.starts_with("band")) Set(parameter.index, 6);
    Set(kGraphicEQMasterGain, 3);
    const int last = GetParam().panel().parameters.back().index;
    EXPECT_NEAR(Natural(last), 9, 1);
    EXPECT_NEAR(std::stod(krocore::ToStdString(shown.ShownText())), Natural(last), 0.0501);
}

INSTANTIATE_TEST_SUITE_P(Panels, GraphicEQPanelTest,
                         testing::Values(GraphicEQCase{&OctavePanel, Bands::kOctave},
                                         GraphicEQCase{&HalfOctavePanel, Bands::kHalfOctave},
                                         GraphicEQCase{&ThirdOctavePanel, Bands::kThirdOctave}),
                         [](const auto& instance) { return instance.param.panel().name; });

} // namespace
