// Every parameter of every effect whose panel is a pair of scripts, walked through its sheet: from the input to the
// cell that a control shows, and on to the output.

#include "SourcePaths.h"
#include "kroui/limner/CairoSupplier.h"
#include "orrin/dictionary.h"
#include "orrin/sheet.h"
#include "qoc/components/ComponentIDs.h"
#include "qoc/components/EffectCatalogue.h"
#include "qoc/components/ParameterIndices.h"
#include "qocui/controls/TarnLioAudioComponentEditorView.h"
#include "qocui/module/ComponentUIFactory.h"
#include "qocui/module/Module.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <optional>
#include <set>

using namespace qoc::components;
using kroaudiofilterhost::AudioFilter;
using kroaudiofilterhost::AudioFilterParameterInfo;
using orrin::any_regular_t;
using orrin::name_t;
using qocui::controls::TarnLioAudioComponentEditorView;
using Kind = AudioFilterParameterInfo::Kind;

namespace {

constexpr const char* kScripts = QO_SOURCE_DIR "/resources/scripts";

struct ScriptEffect {
    const char* script;
    const char16_t* component;
    std::size_t channels = 2;
    int counted = -1; // the parameter, a number by its kind, that the effect rounds: of channels or points
};

constexpr ScriptEffect kScriptEffects[] = {
    {"ADAPTIVENOISEREDUCTIONUI", kAdaptiveNoiseReductionComponentID},
    {"AUTOCLICKREMOVERUI", kAutoClickRemoverComponentID},
    {"AUTOPHASECORRECTIONUI", kAutoPhaseCorrectionComponentID, 2, kAutoPhaseChannel},
    {"CENTERCHANNELEXTRACTUI", kCenterChannelExtractComponentID},
    {"CHANNELMIXERUI", kChannelMixerComponentID},
    {"CHANNELMIXERUI", kChannelMixerComponentID, 8},
    {"CHORUSUI", kChorusComponentID},
    {"DELAYUI", kDelayComponentID},
    {"DYNAMICSUI", kDynamicsComponentID, 2, kDynamicsPointCount},
    {"ECHOUI", kEchoComponentID},
    {"FLANGERUI", kFlangerComponentID},
    {"FULLREVERBUI", kFullReverbComponentID},
    {"GRAPHICEQ10BANDS", kGraphicEQ10BandsComponentID},
    {"GRAPHICEQ20BANDSUI", kGraphicEQ20BandsComponentID},
    {"GRAPHICEQ30BANDSUI", kGraphicEQ30BandsComponentID},
    {"HARDLIMITERUI", kHardLimiterComponentID},
    {"INTRACLIPUI", kIntraClipComponentComponentID},
    {"PARAMETRICEQ", kParametricEQComponentID},
    {"REVERBUI", kReverbComponentID},
    {"STUDIOREVERBUI", kStudioReverbComponentID},
};

// 0.1 is no sum of few powers of 2.
constexpr float kProbes[] = {0.0F, 0.1F, 0.25F, 0.5F, 0.75F, 1.0F};
constexpr double kStoredTolerance = 1e-6;

name_t Numbered(const char* prefix, int index) {
    return name_t(prefix + std::to_string(index));
}

boost::intrusive_ptr<AudioFilter> Prepared(const char16_t* component, std::size_t channels) {
    auto filter = CreateEffect(component);
    filter->Prepare(48000, 64, kromediatypes::AudioChannelLayout::ForChannelCount(channels));
    return filter;
}

// The numbers and bools that a value is made of, by where they stand in it: "curve[2].x".
using Leaves = std::map<std::string, double>;

void Collect(const any_regular_t& value, const std::string& path, Leaves& leaves) {
    if (const auto* const number = value.get_if<double>()) leaves[path] = *number;
    if (const auto* const boolean = value.get_if<bool>()) leaves[path] = *boolean ? 1 : 0;
    if (const auto* const array = value.get_if<orrin::array_t>())
        for (std::size_t i = 0; i < array->size(); ++i)
            Collect((*array)[i], path + "[" + std::to_string(i) + "]", leaves);
    if (const auto* const dictionary = value.get_if<orrin::dictionary_t>())
        for (const auto& [key, element] : *dictionary)
            Collect(element, path + "." + std::string(key.text()), leaves);
}

class ScriptSheetWalk : public testing::Test {
protected:
    ScriptSheetWalk() { qocui::module::Initialize(&fSupplier); }
    ~ScriptSheetWalk() override {
        fSheet.reset();
        fView.reset();
        qocui::module::Terminate();
    }

    static boost::intrusive_ptr<TarnLioAudioComponentEditorView> ViewFor(boost::intrusive_ptr<AudioFilter> filter) {
        const auto view = qocui::module::ComponentUIFactory::GetInstance().CreateViewForComponent(std::move(filter));
        return boost::dynamic_pointer_cast<TarnLioAudioComponentEditorView>(view);
    }

    void Open(const ScriptEffect& effect);
    bool HasParameter(int index) const { return fFilter->GetParameterInfo(index) != nullptr; }
    const AudioFilterParameterInfo& Info(int index) const { return *fFilter->GetParameterInfo(index); }
    float StandsFor(int index, float stored) const;
    double Shown(int index, float stored) const;
    double ShownTolerance(int index) const;
    bool HasInput(int index) const { return fSheet->has_input(Numbered("in", index)); }
    bool HasOutput(int index) const { return fSheet->has_output(Numbered("out", index)); }
    float Output(int index) const { return static_cast<float>(fSheet->get(Numbered("out", index)).get<double>()); }
    // As the view does it when the effect has changed.
    void SetInput(int index, float value) {
        fStored[static_cast<std::size_t>(index)] = value;
        fSheet->set(Numbered("in", index), static_cast<double>(value));
        fSheet->update();
        fSheet->reinitialise();
    }
    Leaves Cells() const;
    // Otherwise it only displays, or is part of what a graph sets all at once.
    bool IsInitialised(const std::string& cell) const {
        return std::ranges::any_of(fSheet->cells(),
                                   [&](const auto& info) { return info.initialised && info.name.text() == cell; });
    }

    void ExpectComesOut(int index, float value) const;
    void ExpectAllComeOutWhile(int state, float value);
    std::vector<std::string> CellsThatShow(int index, const std::map<float, Leaves>& cells) const;
    void ExpectGoesOutFrom(const std::string& cell, int index);
    void Walk(int index);

    kroui::limner::CairoSupplier fSupplier;
    boost::intrusive_ptr<AudioFilter> fFilter;
    int fCounted = -1;
    std::vector<float> fStored;                                  // what the inputs have, a parameter each
    boost::intrusive_ptr<TarnLioAudioComponentEditorView> fView; // has the functions that the sheet calls
    std::optional<orrin::sheet_t> fSheet;
};

// The sheet is the test's own: what it computes is not written to the effect.
void ScriptSheetWalk::Open(const ScriptEffect& effect) {
    fSheet.reset();
    fFilter = Prepared(effect.component, effect.channels);
    fCounted = effect.counted;
    fStored.assign(static_cast<std::size_t>(fFilter->GetParameterCount()), 0);
    fView = ViewFor(fFilter);
    ASSERT_NE(fView, nullptr);
    fSheet.emplace();
    fView->SetupVirtualMachine(fSheet->machine(), &*fSheet);
    const auto file = (std::filesystem::path(kScripts) / effect.script).replace_extension(".trn");
    std::ifstream stream(file, std::ios::binary);
    fSheet->load(std::string(std::istreambuf_iterator<char>(stream), {}), effect.script);
    if (const name_t cell("sample_rate"); fSheet->has_input(cell))
        fSheet->set(cell, static_cast<double>(fFilter->GetSampleRate()));
    for (int i = 0; i < fFilter->GetParameterCount(); ++i)
        if (HasParameter(i) && HasInput(i)) SetInput(i, Info(i).GetDefault());
}

// The same stored value; of a switch, a choice or a count, the one that the effect takes it for.
float ScriptSheetWalk::StandsFor(int index, float stored) const {
    const AudioFilterParameterInfo& info = Info(index);
    switch (info.GetKind()) {
    case Kind::kSwitch: return info.ToText(stored) == info.ToText(1) ? 1.0F : 0.0F;
    case Kind::kChoice: return info.FromItem(info.ToItem(stored));
    case Kind::kNumber: break;
    }
    return index == fCounted ? info.ToNormalised(std::round(info.ToNatural(stored))) : stored;
}

// What a control shows for a stored value, and how far off it may be.
double ScriptSheetWalk::Shown(int index, float stored) const {
    return Info(index).ToNatural(StandsFor(index, stored));
}

double ScriptSheetWalk::ShownTolerance(int index) const {
    return kStoredTolerance * std::abs(Info(index).ToNatural(1) - Info(index).ToNatural(0));
}

Leaves ScriptSheetWalk::Cells() const {
    Leaves leaves;
    for (const orrin::cell_info_t& cell : fSheet->cells())
        if (cell.kind == orrin::cell_kind_t::interface || cell.kind == orrin::cell_kind_t::logic)
            Collect(fSheet->get(cell.name), std::string(cell.name.text()), leaves);
    return leaves;
}

// And no other parameter is touched.
void ScriptSheetWalk::ExpectComesOut(int index, float value) const {
    for (int i = 0; i < fFilter->GetParameterCount(); ++i) {
        if (!HasOutput(i)) continue;
        const float stored = i == index ? value : fStored[static_cast<std::size_t>(i)];
        EXPECT_NEAR(Output(i), StandsFor(i, stored), kStoredTolerance)
            << "out" << i << " for in" << index << " = " << value;
    }
}

// Panels show some parameters otherwise, or not at all, while a switch is on or an item is chosen.
void ScriptSheetWalk::ExpectAllComeOutWhile(int state, float value) {
    SetInput(state, value);
    for (int i = 0; i < fFilter->GetParameterCount(); ++i) {
        if (i == state || !HasOutput(i)) continue;
        for (const float probe : kProbes) {
            SetInput(i, probe);
            ExpectComesOut(i, probe);
        }
        SetInput(i, Info(i).GetDefault());
    }
    SetInput(state, Info(state).GetDefault());
}

// Those that tell at every probe what the effect makes of it.
std::vector<std::string> ScriptSheetWalk::CellsThatShow(int index, const std::map<float, Leaves>& cells) const {
    std::vector<std::string> showing;
    for (const auto& [name, first] : cells.begin()->second) {
        const bool shows = std::all_of(cells.begin(), cells.end(), [&, &cell = name](const auto& probe) {
            const auto found = probe.second.find(cell);
            return found != probe.second.end() &&
                   std::abs(found->second - Shown(index, probe.first)) <= ShownTolerance(index);
        });
        if (shows) showing.push_back(name);
    }
    return showing;
}

// As when a control sets the cell.
void ScriptSheetWalk::ExpectGoesOutFrom(const std::string& cell, int index) {
    const name_t name(cell);
    for (const float value : kProbes) {
        const double shown = Shown(index, value);
        const bool isSwitch = fSheet->get(name).type() == orrin::type_t::boolean;
        fSheet->set(name, isSwitch ? any_regular_t(shown != 0) : any_regular_t(shown));
        fSheet->update();
        ExpectComesOut(index, value);
    }
}

void ScriptSheetWalk::Walk(int index) {
    std::map<float, Leaves> cells;
    for (const float value : kProbes) {
        SetInput(index, value);
        cells[value] = Cells();
        if (HasOutput(index)) ExpectComesOut(index, value);
    }
    const std::vector<std::string> showing = CellsThatShow(index, cells);
    EXPECT_THAT(showing, testing::Not(testing::IsEmpty())) << "no cell has what the effect understands";
    if (HasOutput(index))
        for (const std::string& cell : showing)
            if (IsInitialised(cell)) ExpectGoesOutFrom(cell, index);
    SetInput(index, Info(index).GetDefault());
}

TEST_F(ScriptSheetWalk, KnowsEveryEffectThatHasAScriptPanel) {
    std::set<std::u16string> registered;
    for (const EffectDescription& effect : AllEffects())
        if (effect.create && ViewFor(Prepared(std::u16string(effect.componentID).c_str(), 2)))
            registered.emplace(effect.componentID);
    std::set<std::string> scripts;
    for (const auto& entry : std::filesystem::directory_iterator(kScripts))
        scripts.insert(entry.path().stem());
    scripts.erase("STRETCHUI"); // has no effect behind it
    std::set<std::u16string> walked;
    std::set<std::string> walkedScripts;
    for (const ScriptEffect& effect : kScriptEffects) {
        walked.emplace(effect.component);
        walkedScripts.emplace(effect.script);
    }
    EXPECT_EQ(walked, registered);
    EXPECT_EQ(walkedScripts, scripts);
}

TEST_F(ScriptSheetWalk, EveryParameterHasAnInputAndUnlessReadOnlyAnOutput) {
    for (const ScriptEffect& effect : kScriptEffects) {
        SCOPED_TRACE(effect.script);
        ASSERT_NO_FATAL_FAILURE(Open(effect));
        std::size_t known = 0;
        for (int i = 0; i < fFilter->GetParameterCount(); ++i) {
            SCOPED_TRACE(i);
            EXPECT_EQ(HasOutput(i), HasParameter(i) && !Info(i).IsReadOnly());
            EXPECT_TRUE(HasInput(i) || !HasOutput(i));
            EXPECT_TRUE(HasParameter(i) || !HasInput(i));
            known += (HasInput(i) ? 1 : 0) + (HasOutput(i) ? 1 : 0);
        }
        // Nor is there any beyond the last parameter.
        EXPECT_EQ(known, static_cast<std::size_t>(std::ranges::count_if(fSheet->cells(), [](const auto& cell) {
                      const std::string_view name = cell.name.text();
                      const std::size_t prefix = name.starts_with("out") ? 3 : name.starts_with("in") ? 2 : 0;
                      return prefix && name.size() > prefix &&
                             name.find_first_not_of("0123456789", prefix) == std::string_view::npos;
                  })));
    }
}

TEST_F(ScriptSheetWalk, EveryParameterComesOutAsItWentInThroughACellThatTheEffectWouldSay) {
    for (const ScriptEffect& effect : kScriptEffects) {
        SCOPED_TRACE(effect.script);
        ASSERT_NO_FATAL_FAILURE(Open(effect));
        for (int i = 0; i < fFilter->GetParameterCount(); ++i) {
            SCOPED_TRACE(i);
            if (HasParameter(i) && HasInput(i)) Walk(i);
        }
        EXPECT_THAT(fSheet->errors(), testing::IsEmpty());
    }
}

TEST_F(ScriptSheetWalk, EveryParameterComesOutAsItWentInWhateverIsSwitchedOrChosen) {
    for (const ScriptEffect& effect : kScriptEffects) {
        SCOPED_TRACE(effect.script);
        ASSERT_NO_FATAL_FAILURE(Open(effect));
        for (int i = 0; i < fFilter->GetParameterCount(); ++i) {
            SCOPED_TRACE(i);
            if (!HasOutput(i) || Info(i).GetKind() == Kind::kNumber) continue;
            for (const float value : {0.0F, 0.5F, 1.0F})
                ExpectAllComeOutWhile(i, value);
        }
    }
}

} // namespace
