// The script panels of the channel mixer, the center channel extractor and the phase correction, and the stretch panel,
// which has no effect behind it.

#include "FakeFilter.h"
#include "PanelHost.h"
#include "SourcePaths.h"
#include "kroui/controls/UI_Checkbox.h"
#include "kroui/controls/UI_Popup.h"
#include "orrin/sheet.h"
#include "qoc/components/ComponentIDs.h"
#include "qoc/components/EffectCatalogue.h"
#include "qoc/components/ParameterIndices.h"
#include "qocui/controls/TarnLioAudioComponentEditorView.h"
#include "uit/controls/UI_EditNumber.h"
#include "uit/controls/UI_TimecodeEdit.h"

#include <gmock/gmock.h>

#include <fstream>

using namespace kroui;
using namespace qoc::components;
using kroaudiofilterhost::AudioFilter;
using kroaudiofilterhost::AudioFilterParameterInfo;
using orrin::name_t;

namespace {

using Filter = boost::intrusive_ptr<AudioFilter>;

constexpr float kRate = 48000;

Filter Prepared(const char16_t* component, std::size_t channels = 2) {
    Filter filter = CreateEffect(component);
    filter->Prepare(kRate, 64, kromediatypes::AudioChannelLayout::ForChannelCount(channels));
    return filter;
}

struct Sheet {
    const char* name;
    const char16_t* component;
    std::vector<const char*> cells; // a parameter each
};

const std::vector<Sheet>& Sheets() {
    static const std::vector<Sheet> sheets = {
        {"CENTERCHANNELEXTRACTUI",
         kCenterChannelExtractComponentID,
         {"position",
          "phase",
          "pan",
          "delay",
          "range",
          "low",
          "high",
          "center_level",
          "side_level",
          "phase_discrimination",
          "amplitude_discrimination",
          "crossover",
          "bleed",
          "decay",
          "size",
          "window",
          "overlaps",
          "mono",
          "keep_outside",
          "hear_removed",
          "present_low",
          "present_high"}},
        {"AUTOPHASECORRECTIONUI",
         kAutoPhaseCorrectionComponentID,
         {"global_time_shift", "auto_align", "channel", "size", "time_resolution", "responsiveness", "strength",
          "smoothing", "time_shift", "phase_shift", "longest_shift", "balance", "found_shift"}},
    };
    return sheets;
}

void Load(orrin::sheet_t& sheet, const std::string& name) {
    std::ifstream stream(QO_SOURCE_DIR "/resources/scripts/" + name + ".trn", std::ios::binary);
    sheet.machine().set_function_lookup([](name_t, const orrin::any_regular_t&) { return orrin::any_regular_t(); });
    sheet.load(std::string(std::istreambuf_iterator<char>(stream), {}), name);
    if (sheet.has_input(name_t("sample_rate"))) sheet.set(name_t("sample_rate"), double{kRate});
}

// What a cell should hold for a stored value: the item's number, whether it is on, or the natural value.
void ExpectMeans(const orrin::any_regular_t& cell, const AudioFilterParameterInfo& info, float stored) {
    switch (info.GetKind()) {
    case AudioFilterParameterInfo::Kind::kSwitch: EXPECT_EQ(cell.get<bool>(), stored >= 0.5F); break;
    case AudioFilterParameterInfo::Kind::kChoice: EXPECT_EQ(cell.get<double>(), info.ToItem(stored)); break;
    default: EXPECT_NEAR(cell.get<double>(), info.ToNatural(stored), 2e-6 * (info.ToNatural(1) - info.ToNatural(0)));
    }
}

std::vector<float> StoredValues(const AudioFilterParameterInfo& info) {
    if (info.GetKind() == AudioFilterParameterInfo::Kind::kSwitch) return {0, 1};
    std::vector<float> values;
    for (int item = 0; item < info.GetItemCount(); ++item)
        values.push_back(info.FromItem(item));
    return values.empty() ? std::vector<float>{0, 0.123456F, 0.5F, 1} : values;
}

TEST(ChannelPanelSheets, CarryEveryParameterInAndOut) {
    for (const auto& [name, component, cells] : Sheets()) {
        const Filter filter = Prepared(component);
        orrin::sheet_t sheet;
        Load(sheet, name);
        ASSERT_EQ(static_cast<int>(cells.size()), filter->GetParameterCount());
        for (int index = 0; index < filter->GetParameterCount(); ++index) {
            const AudioFilterParameterInfo& info = *filter->GetParameterInfo(index);
            const std::string number = std::to_string(index);
            const name_t output("out" + number);
            EXPECT_EQ(sheet.has_output(output), !info.IsReadOnly()) << name << " " << number;
            if (std::string_view(cells[static_cast<std::size_t>(index)]) == "channel") continue; // see the panel
            for (const float stored : StoredValues(info)) {
                SCOPED_TRACE(cells[static_cast<std::size_t>(index)]);
                sheet.set(name_t("in" + number), double{stored});
                sheet.update();
                sheet.reinitialise();
                ExpectMeans(sheet[name_t(cells[static_cast<std::size_t>(index)])], info, stored);
                if (info.IsReadOnly()) continue;
                EXPECT_FLOAT_EQ(static_cast<float>(sheet[output].get<double>()), stored);
            }
        }
        EXPECT_THAT(sheet.errors(), testing::IsEmpty());
    }
}

class ChannelPanelTest : public test::PanelHost<> {
protected:
    ChannelPanelTest() : PanelHost({1000, 700}) {}

    void Open(const char16_t* component, std::size_t channels = 2) {
        fFilter = Prepared(component, channels);
        ShowPanelOf(fFilter);
    }
    // Stands in a field with its label.
    controls::UI_Popup& Popup(std::string_view id) {
        for (const auto& child : fView->UI_FindNode(id)->Children())
            if (auto* const popup = dynamic_cast<controls::UI_Popup*>(child.get())) return *popup;
        throw std::out_of_range("no pop-up");
    }
    void Choose(std::string_view id, int item) {
        auto& popup = Popup(id);
        popup.UI_TakeFocus();
        fWindow.PressKey(ui::Key::kHome);
        for (int step = 0; step < item; ++step)
            fWindow.PressKey(ui::Key::kDown);
        Poll();
        ASSERT_EQ(popup.GetValue(), item);
    }
    void Click(std::string_view id) {
        fWindow.Click(ui::HeadlessWindow::CentreOf(*fView->UI_FindNode(id)));
        Poll();
    }
    void Press(std::string_view id, ui::Key key) {
        fView->UI_FindNode(id)->UI_TakeFocus();
        fWindow.PressKey(key);
        Poll();
    }
    bool IsChecked(std::string_view id) { return Find<controls::UI_Checkbox>(id).IsChecked(); }
    double Shown(std::string_view id) { return Find<uit::controls::UI_EditNumber>(id).GetValue(); }
    bool IsShown(std::string_view id) { return fView->UI_FindNode(id)->UI_IsVisible(); }
    double Natural(int index) const {
        return fFilter->GetParameterInfo(index)->ToNatural(fFilter->GetParameterValue(index));
    }
    void Store(int index, double natural) {
        fFilter->SetParameterValue(index, fFilter->GetParameterInfo(index)->ToNormalised(static_cast<float>(natural)));
        Poll();
    }

    Filter fFilter;
};

TEST_F(ChannelPanelTest, MixerShowsAnInvertedAmountAsOneAndTurnsItOver) {
    Open(kChannelMixerComponentID);
    Store(1, -37.5);
    EXPECT_NEAR(Shown("Amount_1_2"), -37.5, 1e-4);
    EXPECT_TRUE(IsChecked("Invert_1_2"));
    Click("Invert_1_2");
    EXPECT_NEAR(Natural(1), 37.5, 1e-4);
    EXPECT_NEAR(Shown("Amount_1_2"), 37.5, 1e-4);
    Click("Invert_1_2");
    EXPECT_NEAR(Natural(1), -37.5, 1e-4);
    // Up to the other end.
    Press("Amount_1_2", ui::Key::kEnd);
    EXPECT_NEAR(Natural(1), 100, 1e-4);
    EXPECT_FALSE(IsChecked("Invert_1_2"));
    Press("Amount_1_2", ui::Key::kHome);
    EXPECT_TRUE(IsChecked("Invert_1_2"));
}

TEST_F(ChannelPanelTest, MixerKeepsAnInvertedZero) {
    Open(kChannelMixerComponentID);
    Click("Invert_1_2");
    EXPECT_TRUE(IsChecked("Invert_1_2"));
    EXPECT_LT(Natural(1), 0);
    Store(0, 50);
    EXPECT_TRUE(IsChecked("Invert_1_2"));
    Click("Invert_1_2");
    EXPECT_FALSE(IsChecked("Invert_1_2"));
    EXPECT_GE(Natural(1), 0);
}

TEST_F(ChannelPanelTest, MixerStaysOnThePageOfItsOutputChannel) {
    Open(kChannelMixerComponentID, 6);
    auto& outputs = Popup("Popup_OutputChannel");
    EXPECT_EQ(outputs.GetItemCount(), 6);
    EXPECT_EQ(krocore::ToStdString(outputs.GetItemText(3)), "LFE");
    Choose("Popup_OutputChannel", 3);
    EXPECT_TRUE(IsShown("Amount_4_6"));
    EXPECT_FALSE(IsShown("Amount_4_7"));
    EXPECT_FALSE(IsShown("Amount_1_1"));
    Store(3 * 8 + 5, -80);
    EXPECT_TRUE(IsShown("Amount_4_6"));
    Click("Invert_4_6");
    EXPECT_NEAR(Natural(3 * 8 + 5), 80, 1e-4);
    EXPECT_EQ(outputs.GetValue(), 3);
}

TEST_F(ChannelPanelTest, MixerWritesEachAmountToItsOwnParameter) {
    Open(kChannelMixerComponentID, 8);
    for (int output = 0; output < 8; ++output) {
        Choose("Popup_OutputChannel", output);
        for (int input = 0; input < 8; ++input) {
            const std::string which = std::to_string(output + 1) + "_" + std::to_string(input + 1);
            ASSERT_TRUE(IsShown("Amount_" + which));
            Press("Amount_" + which, ui::Key::kHome);
            ASSERT_NEAR(Natural(output * 8 + input), -100, 1e-4) << which;
            Click("Invert_" + which);
            ASSERT_NEAR(Natural(output * 8 + input), 100, 1e-4) << which;
        }
    }
}

TEST_F(ChannelPanelTest, ExtractorShowsTheFrequenciesOfTheChosenRangeAndItsOwn) {
    Open(kCenterChannelExtractComponentID);
    Choose("Popup_Range", 0);
    EXPECT_NEAR(Shown("PresentLow"), 80, 0.01);
    EXPECT_NEAR(Shown("PresentHigh"), 8000, 0.01);
    EXPECT_FALSE(IsShown("Low"));
    Choose("Popup_Range", 4);
    EXPECT_FALSE(IsShown("PresentLow"));
    Press("Low", ui::Key::kHome);
    EXPECT_NEAR(Natural(kCenterExtractLowFrequency), 20, 0.01);
    Press("High", ui::Key::kEnd);
    EXPECT_NEAR(Natural(kCenterExtractHighFrequency), 24000, 0.01);
}

TEST_F(ChannelPanelTest, PhaseCorrectionLetsItsAnalysisBeChangedOnlyWhileSuspended) {
    Open(kAutoPhaseCorrectionComponentID, 6);
    const auto disabled = [this] {
        std::vector<bool> states;
        for (const char* id :
             {"Checkbox_globalTimeShift", "Popup_TimeResolution", "Popup_Responsiveness", "Popup_AnalysisSize"})
            states.push_back(Find<controls::UI_ControlView>(id).IsDisabled());
        return states;
    };
    EXPECT_THAT(disabled(), testing::Each(false));
    fFilter->SetSuspended(false);
    Poll();
    EXPECT_THAT(disabled(), testing::Each(true));
    fFilter->SetSuspended(true);
    Poll();
    EXPECT_THAT(disabled(), testing::Each(false));
    Choose("Popup_Channel", 4);
    EXPECT_NEAR(Natural(kAutoPhaseChannel), 4, 1e-4);
}

class StretchPanelTest : public ChannelPanelTest {
protected:
    void OpenStretch(double seconds) {
        fFake.reset(new test::FakeFilter(21));
        fFake->Prepare(kRate, 64, kromediatypes::AudioChannelLayout::Stereo());
        fFake->SetDuration(seconds * kRate);
        for (int index = 0; index < 21; ++index)
            fFake->Store(index, 0.5F);
        Show(qocui::controls::TarnLioAudioComponentEditorView::Create(fFake, &fSupplier, u"STRETCHUI",
                                                                      qocui::module::GetModuleInstance()));
        fFake->TakeLog();
    }
    double Stretch() const { return 25 + 375 * static_cast<double>(fFake->GetParameterValue(2)); }

    boost::intrusive_ptr<test::FakeFilter> fFake;
};

TEST_F(StretchPanelTest, SpeedStretchAndDurationAreOne) {
    OpenStretch(10);
    EXPECT_NEAR(Shown("Stretch"), 212.5, 1e-4);
    EXPECT_NEAR(Shown("Speed"), 100 / 212.5, 1e-6);
    Press("Speed", ui::Key::kEnd);
    EXPECT_NEAR(Stretch(), 25, 1e-4);
    Click("Button_Reset");
    EXPECT_NEAR(Stretch(), 100, 1e-4);
    EXPECT_NEAR(Shown("Speed"), 1, 1e-6);
    Press("Stretch", ui::Key::kEnd);
    EXPECT_NEAR(Stretch(), 400, 1e-4);
    EXPECT_NEAR(Shown("Speed"), 0.25, 1e-6);
}

// From 200 to 400 % makes three times the length.
TEST_F(StretchPanelTest, AGradualStretchLastsAsItsMean) {
    OpenStretch(10);
    fFake->Store(6, 1);
    fFake->Store(2, 175.0F / 375);
    fFake->Store(3, 1);
    Poll();
    auto& duration = Find<uit::controls::UI_TimecodeEdit>("NewDuration");
    EXPECT_NEAR(duration.GetValue(), 30, 1e-4);
    Press("Speed", ui::Key::kHome); // a quarter of the speed
    EXPECT_NEAR(duration.GetValue(), 40, 1e-4);
}

TEST_F(StretchPanelTest, WritesNothingUnlessAskedAndNeverWhatIsReadOnly) {
    OpenStretch(0);
    EXPECT_THAT(fFake->log, testing::IsEmpty());
    Press("Pitch", ui::Key::kHome);
    Click("Solo");
    EXPECT_THAT(fFake->log, testing::ElementsAre("set 4 0", "set 13 0"));
    fFake->Store(19, 0);
    fFake->Store(20, 1);
    fFake->TakeLog();
    Poll();
    EXPECT_THAT(fFake->log, testing::IsEmpty());
}

} // namespace
