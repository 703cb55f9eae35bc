#include "FakeFilter.h"
#include "PanelHost.h"
#include "kroui/controls/UI_Checkbox.h"
#include "kroui/controls/UI_HotTextNumber.h"
#include "kroui/controls/UI_Menu.h"
#include "kroui/controls/UI_Popup.h"
#include "kroui/controls/UI_RadioButton.h"
#include "kroui/controls/UI_StaticText.h"
#include "kroui/limner/RecordingLimner.h"
#include "qoc/components/ComponentIDs.h"
#include "qoc/components/GenericParameterInfo.h"
#include "uit/controls/UI_OptionalView.h"

#include <gmock/gmock.h>

#include <array>

using namespace kroui;
using kroui::ui::UI_Node;
using qoc::components::GenericParameterInfo;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

enum Index { kQuality, kRadius, kVelocity, kAngle, kFront, kRight, kCircular, kDistance, kDirection, kCount };

struct Range {
    float lo;
    float hi;
};

// The natural ranges of the parameters, by index; those of the switches are what is stored.
constexpr std::array<Range, kCount> kRanges = {Range{0, 1},     {0.01F, 100000}, {0.1F, 355}, {0, 360}, {-10000, 10000},
                                               {-10000, 10000}, {0, 1},          {0, 1},      {0, 1}};

float Normalised(Index index, double natural) {
    const Range range = kRanges[index];
    return static_cast<float>((natural - range.lo) / (static_cast<double>(range.hi) - range.lo));
}

class DopplerFake : public test::FakeFilter {
public:
    DopplerFake() : FakeFilter(kCount, qoc::components::kDopplerComponentID) {
        for (std::size_t i = 0; i < kCount; ++i) {
            qoc::components::ParameterRow row;
            row.lo = kRanges[i].lo;
            row.hi = kRanges[i].hi;
            fInfos[i] = std::make_unique<GenericParameterInfo>(row);
        }
    }
    const kroaudiofilterhost::AudioFilterParameterInfo* GetParameterInfo(int index) const override {
        return fInfos.at(static_cast<std::size_t>(index)).get();
    }
    void StoreNatural(Index index, double natural) { Store(index, Normalised(index, natural)); }

private:
    std::array<std::unique_ptr<GenericParameterInfo>, kCount> fInfos;
};

std::string SetEntry(Index index, float value) {
    return "set " + std::to_string(index) + " " + test::FakeFilter::Number(value);
}

class DopplerEditorTest : public test::PanelHost<> {
protected:
    DopplerEditorTest() : PanelHost({800, 500}) {
        fFilter.reset(new DopplerFake);
        fFilter->Prepare(48000, 64, kromediatypes::AudioChannelLayout::Stereo());
        fFilter->SetDuration(5 * 48000.0);
        fFilter->StoreNatural(kRadius, 100);
        fFilter->StoreNatural(kVelocity, 20);
        fFilter->StoreNatural(kAngle, 90);
        fFilter->StoreNatural(kFront, 10);
        fFilter->StoreNatural(kRight, -20);
    }

    void Open() {
        ShowPanelOf(fFilter);
        fFilter->TakeLog();
    }
    controls::UI_HotTextNumber& Field(std::string_view id) { return Find<controls::UI_HotTextNumber>(id); }
    controls::UI_Popup& Quality() { return Find<controls::UI_Popup>("Quality"); }
    bool IsChecked(std::string_view id) { return Find<controls::UI_Button>(id).IsChecked(); }
    std::string Description() { return krocore::ToStdString(Find<controls::UI_StaticText>("Description").Text()); }
    void Click(std::string_view id) { fWindow.Click(ui::HeadlessWindow::CentreOf(*fView->UI_FindNode(id))); }
    std::vector<std::string> PictureOperations() {
        limner::RecordingLimner limner;
        fView->UI_FindNode("Graph")->UI_Draw(&limner);
        return limner.Operations();
    }

    boost::intrusive_ptr<DopplerFake> fFilter;
};

TEST_F(DopplerEditorTest, EveryControlShowsItsParameterWhenThePanelOpens) {
    fFilter->Store(kQuality, 2.0F / 6);
    fFilter->Store(kDistance, 0.5F);
    fFilter->Store(kDirection, 0.49F);
    Open();
    const std::pair<const char*, double> fields[] = {
        {"Radius", 100}, {"Velocity", 20}, {"StartingAngle", 90}, {"CenterFront", 10}, {"CenterRight", -20}};
    for (const auto& [id, value] : fields)
        EXPECT_NEAR(Field(id).GetValue(), value, 1e-2) << id;
    EXPECT_TRUE(IsChecked("StraightLine"));
    EXPECT_FALSE(IsChecked("Circular"));
    EXPECT_TRUE(IsChecked("Distance"));
    EXPECT_FALSE(IsChecked("Direction"));
    EXPECT_EQ(Quality().GetItemCount(), 6);
    EXPECT_EQ(Quality().GetItemText(Quality().GetValue()), u"Very Good");
    EXPECT_EQ(Description(), "");
    EXPECT_EQ(Find<uit::controls::UI_OptionalView>("OptionalLabels").ActiveIndex(), 0);
    EXPECT_EQ(Field("CenterFront").UI_GetAccessibleInfo().name, u"Passes in Front by");
}

TEST_F(DopplerEditorTest, TheNumbersEndAtOneLineWhateverTheirUnits) {
    Open();
    const auto numberEnd = [&](const char* id) {
        const auto& field = Field(id);
        return field.UI_LocalToWindow({field.UI_GetFrame().width, 0}).x -
               std::ceil(fSupplier.MeasureText(field.GetTextLabel(), {field.FontSize()}).width);
    };
    for (const char* const id : {"Velocity", "StartingAngle", "CenterFront", "CenterRight"})
        EXPECT_EQ(numberEnd(id), numberEnd("Radius")) << id;
    EXPECT_EQ(Field("StartingAngle").GetTextLabel(), u"\u00B0");
}

TEST_F(DopplerEditorTest, APathTypeClickWritesTheSwitchAndTheNextPollSwitchesThePanel) {
    Open();
    Click("Circular");
    EXPECT_THAT(fFilter->TakeLog(), ElementsAre("set 6 1"));
    Poll();
    EXPECT_EQ(Find<uit::controls::UI_OptionalView>("OptionalLabels").ActiveIndex(), 1);
    EXPECT_EQ(Field("Radius").UI_GetAccessibleInfo().name, u"Radius");
    EXPECT_EQ(Description(), "Sound will go full circle every 31.4 seconds");
    Click("StraightLine");
    Poll();
    EXPECT_EQ(fFilter->GetParameterValue(kCircular), 0);
    EXPECT_EQ(Field("Radius").UI_GetAccessibleInfo().name, u"Starting Distance Away");
    EXPECT_EQ(Description(), "");
}

TEST_F(DopplerEditorTest, ACirclesSpeedIsDescribedInSecondsOrTimesASecond) {
    Open();
    fFilter->Store(kCircular, 0.5F);
    const struct {
        double radius, velocity;
        const char* text;
    } cases[] = {
        {0.01, 355, "Sound will go full circle 5650.0 times/second"},
        {100, 1, "Sound will go full circle every 628.3 seconds"},
        {1, 6.28318, "Sound will go full circle every 1.0 seconds"},
        {1, 7, "Sound will go full circle 1.1 times/second"},          // period 0.8976 s, 1.114 times
        {20000, 355, "Sound will go full circle every 354.0 seconds"}, // beyond the field's range
    };
    for (const auto& c : cases) {
        fFilter->StoreNatural(kRadius, c.radius);
        fFilter->StoreNatural(kVelocity, c.velocity);
        Poll();
        EXPECT_EQ(Description(), c.text);
    }
    EXPECT_EQ(Field("Radius").GetValue(), 10000);
}

TEST_F(DopplerEditorTest, ADragOnANumberIsOneGestureAndMovesTheFilter) {
    Open();
    const Point middle = ui::HeadlessWindow::CentreOf(Field("StartingAngle"));
    fWindow.Press(middle);
    fWindow.MoveTo({middle.x + 20, middle.y});
    Poll();
    const double shown = Field("StartingAngle").GetValue();
    EXPECT_GT(shown, 91);
    fWindow.Release();
    auto log = fFilter->TakeLog();
    std::erase_if(log, [](const std::string& entry) { return entry.starts_with("quiet"); });
    const float value = Normalised(kAngle, shown);
    ASSERT_GE(log.size(), 4U);
    EXPECT_EQ(log[0], "begin 3");
    EXPECT_EQ(log[1], "set 3 0.25") << "the value from before the drag";
    EXPECT_THAT(log[log.size() - 2], HasSubstr("set 3 "));
    EXPECT_EQ(log.back(), "end 3");
    EXPECT_NEAR(fFilter->GetParameterValue(kAngle), value, 1e-6);
    EXPECT_FALSE(Field("StartingAngle").IsInGesture());
}

TEST_F(DopplerEditorTest, EscapeInADragRestoresTheNumberAndClosesTheGesture) {
    Open();
    const Point middle = ui::HeadlessWindow::CentreOf(Field("Velocity"));
    fWindow.Press(middle);
    fWindow.MoveTo({middle.x + 30, middle.y});
    EXPECT_GT(fFilter->GetParameterValue(kVelocity), Normalised(kVelocity, 21));
    fWindow.PressKey(ui::Key::kEscape);
    EXPECT_NEAR(fFilter->GetParameterValue(kVelocity), Normalised(kVelocity, 20), 1e-6);
    EXPECT_EQ(fFilter->TakeLog().back(), "end 2");
    fWindow.Release();
    EXPECT_THAT(fFilter->TakeLog(), IsEmpty());
}

TEST_F(DopplerEditorTest, ATypedNumberReachesTheFilterThroughItsScale) {
    Open();
    fWindow.DoubleClick(ui::HeadlessWindow::CentreOf(Field("CenterRight")));
    fWindow.Type(u"5000 m");
    fWindow.PressKey(ui::Key::kEnter);
    EXPECT_EQ(fFilter->GetParameterValue(kRight), 0.75F);
}

TEST_F(DopplerEditorTest, TheCheckBoxesWriteTheirSwitches) {
    Open();
    Click("Distance");
    Click("Direction");
    Click("Distance");
    EXPECT_THAT(fFilter->TakeLog(), ElementsAre("set 7 1", "set 8 1", "set 7 0"));
}

TEST_F(DopplerEditorTest, AMonoInputNeverLetsTheDirectionBeChosen) {
    fFilter->Prepare(48000, 64, kromediatypes::AudioChannelLayout::Mono());
    Open();
    fFilter->Store(kDirection, 1);
    Poll();
    EXPECT_TRUE(IsChecked("Direction")) << "it still shows the parameter";
    EXPECT_FALSE(Find<controls::UI_Checkbox>("Direction").IsEnabled());
    fFilter->TakeLog();
    Click("Direction");
    EXPECT_THAT(fFilter->TakeLog(), IsEmpty());
}

TEST_F(DopplerEditorTest, TheQualityIsStoredInSixths) {
    Open();
    const struct {
        float stored;
        int item;
    } cases[] = {{0, 0}, {1.0F / 6, 1}, {0.24F, 1}, {0.26F, 2}, {5.0F / 6, 5}, {1, -1}};
    for (const auto& c : cases) {
        fFilter->Store(kQuality, c.stored);
        Poll();
        EXPECT_EQ(Quality().GetValue(), c.item) << c.stored;
    }
    fFilter->Store(kQuality, 4.0F / 6);
    Poll();
    fFilter->TakeLog();
    Quality().UI_TakeFocus();
    fWindow.PressKey(ui::Key::kDown);
    EXPECT_THAT(fFilter->TakeLog(), ElementsAre(SetEntry(kQuality, 5.0F / 6)));
}

TEST_F(DopplerEditorTest, TheQualityFollowsTheFiltersPermission) {
    fFilter->SetCanChangeNonAutomatableParameters(false);
    Open();
    EXPECT_FALSE(Quality().IsEnabled());
    fFilter->SetCanChangeNonAutomatableParameters(true);
    Poll();
    EXPECT_TRUE(Quality().IsEnabled());
    fFilter->SetCanChangeNonAutomatableParameters(false);
    Poll();
    EXPECT_FALSE(Quality().IsEnabled());
}

TEST_F(DopplerEditorTest, ThePictureFollowsEveryPathParameterWithoutEcho) {
    Open();
    auto before = PictureOperations();
    const std::pair<Index, double> changes[] = {{kRadius, 50}, {kVelocity, 30}, {kAngle, 45},
                                                {kFront, 20},  {kRight, 30},    {kCircular, 1}};
    for (const auto& [index, natural] : changes) {
        fFilter->StoreNatural(index, natural);
        Poll();
        auto after = PictureOperations();
        EXPECT_NE(after, before) << "parameter " << index;
        before = std::move(after);
    }
    fFilter->SetDuration(2 * 48000.0);
    Poll();
    EXPECT_THAT(fWindow.LastDamage(), testing::Not(IsEmpty())) << "the path is as long as the sound";
    Poll();
    EXPECT_THAT(fWindow.LastDamage(), IsEmpty());
    EXPECT_THAT(fFilter->TakeLog(), Each(testing::StartsWith("quiet ")));
}

TEST_F(DopplerEditorTest, ThePathPicturesAreDrawn) {
    Open();
    for (const char* const id : {"StraightLineImage", "CircularImage"}) {
        for (const bool enabled : {true, false}) {
            auto& image = Find<controls::UI_ControlView>(id);
            image.SetEnabled(enabled);
            limner::RecordingLimner single;
            limner::RecordingLimner twofold({-1e6F, -1e6F, 2e6F, 2e6F}, 2);
            image.UI_Draw(&single);
            image.UI_Draw(&twofold);
            EXPECT_THAT(single.Operations(), ElementsAre("Image 32x32 0 0 32 32 1")) << id;
            EXPECT_THAT(twofold.Operations(), ElementsAre("Image 64x64 0 0 32 32 1")) << id;
        }
    }
}

} // namespace
