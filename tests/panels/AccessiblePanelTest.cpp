// The panels for those who cannot see them: what every control says, what it lets be done, and what is told of changes.

#include "PanelWalk.h"
#include "krocore/NumberFormat.h"
#include "kroui/controls/UI_HotTextNumber.h"
#include "kroui/ui/AccessibilityObserver.h"

#include <map>
#include <random>
#include <sstream>

using kroaudiofilterhost::AudioFilter;
using kroaudiofilterhost::AudioFilterParameterChange;
using kroaudiofilterhost::AudioFilterParameterInfo;
using kroui::controls::UI_HotTextNumber;
using kroui::controls::UI_InteractiveControlChangedMessage;
using kroui::controls::UI_InteractiveControlView;
using kroui::controls::ValueControl;
using kroui::ui::AccessibleAction;
using kroui::ui::AccessibleInfo;
using kroui::ui::AccessibleRange;
using kroui::ui::AccessibleRequest;
using kroui::ui::Key;
using kroui::ui::Role;
using kroui::ui::UI_Node;

namespace {

// The words with spaces between.
template <class... Parts>
std::string Words(const Parts&... parts) {
    std::ostringstream text;
    text.precision(17);
    ((text << parts << ' '), ...);
    return text.str();
}

std::string RangeText(const std::optional<AccessibleRange>& range) {
    return range ? Words(" ", range->value, "of", range->minimum, "to", range->maximum, "by", range->step) : "";
}

std::string StateText(const AccessibleInfo& info) {
    const auto text = [](std::optional<bool> state) { return state ? static_cast<int>(*state) : -1; };
    return Words(static_cast<int>(info.role), info.enabled, info.focusable, info.selected, text(info.checked),
                 text(info.expanded));
}

// Everything a filter's listeners hear of its parameters, in order.
class FilterRecorder : public kroaudiofilterhost::AudioFilterListener {
public:
    explicit FilterRecorder(AudioFilter& filter) : fFilter(filter) { fFilter.AddListener(*this); }
    ~FilterRecorder() override { fFilter.RemoveListener(*this); }
    void ParameterChanged(AudioFilter& filter, const AudioFilterParameterChange& change) override {
        heard.push_back(Words(change.index, "=", filter.GetParameterValue(change.index)));
    }
    void ParameterEditBegun(AudioFilter&, int index) override { heard.push_back(Words(index, "(")); }
    void ParameterEditEnded(AudioFilter&, int index) override { heard.push_back(Words(index, ")")); }

    std::vector<std::string> heard;

private:
    AudioFilter& fFilter;
};

// What a node, or a part of it, says.
struct Saying {
    std::string name;
    std::string value;
    std::string state;

    static Saying Of(const AccessibleInfo& info) {
        return {krocore::ToStdString(info.name),
                krocore::ToStdString(info.value) + RangeText(info.range) + RangeText(info.position), StateText(info)};
    }
};

using Place = std::pair<const UI_Node*, int>; // and the part, or -1

class Observer : public kroui::ui::AccessibilityObserver {
public:
    void AccessibleChanged(UI_Node& node, int part, std::uint8_t changes) override {
        told[{&node, part}].push_back(changes);
    }
    void AccessibleFocusMoved(UI_Node*) override {}
    void AccessibleRootsChanged() override {}
    void AccessibleGone(UI_Node& node) override {
        std::erase_if(told, [&](const auto& entry) { return entry.first.first == &node; });
    }

    std::map<Place, std::vector<std::uint8_t>> told;
};

class AccessiblePanel : public test::PanelWalk {
public:
    ~AccessiblePanel() override { fWindow.Window().SetAccessibilityObserver(nullptr); }

    bool Do(UI_Node& node, const AccessibleRequest& request) {
        return fWindow.Window().DoAccessibleAction(node, request);
    }

    void ExpectSaysWhatItIs(const UI_Node& control) const {
        const AccessibleInfo info = control.UI_GetAccessibleInfo();
        SCOPED_TRACE(krocore::ToStdString(info.name) + " " + std::string(std::string_view(control.UI_GetID())));
        EXPECT_NE(info.role, Role::kNone);
        EXPECT_FALSE(info.name.empty());
        switch (info.role) {
        case Role::kNumber:
        case Role::kSlider:
            EXPECT_FALSE(info.value.empty());
            ASSERT_TRUE(info.range);
            ExpectIsUsable(*info.range);
            EXPECT_TRUE(info.actions.Has(AccessibleAction::kSetValue));
            break;
        case Role::kCheckBox:
        case Role::kRadioButton: EXPECT_TRUE(info.checked); [[fallthrough]];
        case Role::kButton: EXPECT_TRUE(info.actions.Has(AccessibleAction::kPress)); break;
        case Role::kPopup:
        case Role::kTabGroup: ExpectHasChoices(control); break;
        case Role::kTextField: EXPECT_TRUE(info.caret); break;
        case Role::kGraph: ExpectHasPoints(control); break;
        case Role::kList: break;
        default: ADD_FAILURE() << "role " << static_cast<int>(info.role);
        }
    }
    static void ExpectIsUsable(const AccessibleRange& range) {
        EXPECT_LE(range.minimum, range.value);
        EXPECT_LE(range.value, range.maximum);
        EXPECT_LT(range.minimum, range.maximum);
        EXPECT_GT(range.step, 0);
    }
    static void ExpectHasChoices(const UI_Node& control) {
        const int count = control.UI_GetAccessiblePartCount();
        EXPECT_GT(count, 0);
        for (int part = 0; part < count; ++part) {
            const AccessibleInfo item = control.UI_GetAccessiblePart(part).info;
            EXPECT_TRUE(!item.name.empty() || item.role == Role::kNone);
            EXPECT_TRUE(!item.selected || item.name == control.UI_GetAccessibleInfo().value);
        }
    }
    static void ExpectHasPoints(const UI_Node& control) {
        const int count = control.UI_GetAccessiblePartCount();
        EXPECT_TRUE(count > 0 || control.UI_GetAccessibleInfo().actions.Has(AccessibleAction::kAdd));
        for (int part = 0; part < count; ++part) {
            const AccessibleInfo point = control.UI_GetAccessiblePart(part).info;
            EXPECT_EQ(point.role, Role::kGraphPoint);
            EXPECT_FALSE(point.name.empty());
            EXPECT_FALSE(point.value.empty());
            ASSERT_TRUE(point.range && point.position);
            ExpectIsUsable(*point.range);
            ExpectIsUsable(*point.position);
        }
    }

    // A value that is not the present one, as it would be typed.
    static krocore::string16 OtherValue(const ValueControl& number) {
        const AccessibleRange range = number.GetAccessibleRange();
        const auto write = [&](double part) {
            return krocore::FormatNumber(range.minimum + part * (range.maximum - range.minimum),
                                         number.GetDecimalPlaces(), krocore::kFormatNoLocalization);
        };
        const krocore::string16 present =
            krocore::FormatNumber(range.value, number.GetDecimalPlaces(), krocore::kFormatNoLocalization);
        const krocore::string16 first = write(0.3);
        return first == present ? write(0.6) : first;
    }
    // What comes of setting control number `index` of a panel with its defaults in one of the ways.
    struct Outcome {
        std::string messages;
        std::vector<std::string> heard;
        std::vector<float> values;
        bool isDone;
    };
    using Way = bool (AccessiblePanel::*)(UI_Node& node, const krocore::string16& text);
    Outcome SetBy(Way way, std::size_t index) {
        StoreDefaults();
        Open();
        ValueControl* const number = Controls<ValueControl>()[index];
        auto& control = dynamic_cast<UI_InteractiveControlView&>(*number);
        const auto messages = std::make_shared<std::string>();
        control.NotifyWhenChangedInteractively([messages](UI_InteractiveControlChangedMessage* message) {
            *messages += static_cast<char>('0' + message->GetChangeMessage());
        });
        const FilterRecorder recorder(*fFilter);
        const bool isDone = (this->*way)(control, OtherValue(*number));
        return {*messages, recorder.heard, StoredValues(), isDone};
    }
    bool ByTyping(UI_Node& node, const krocore::string16& text) {
        node.UI_TakeFocus();
        const auto* const number = dynamic_cast<UI_HotTextNumber*>(&node);
        if (number && !number->NumericInput()) return false;
        fWindow.PressKey(Key::kEnter);
        fWindow.PressKey(Key::kCharacter, kroui::ui::kCommand, u'a');
        fWindow.Type(text);
        return fWindow.PressKey(Key::kEnter);
    }
    bool ByValue(UI_Node& node, const krocore::string16& text) {
        return Do(node, {.action = AccessibleAction::kSetValue, .value = krocore::ParseTypedNumber(text, {}).value()});
    }
    bool ByText(UI_Node& node, const krocore::string16& text) {
        return Do(node, {.action = AccessibleAction::kSetText, .text = text});
    }

    // Everything that can be seen, with what it says, and how many children and parts it has.
    std::map<Place, Saying> Seen() const {
        std::map<Place, Saying> seen;
        See(*fView, seen);
        return seen;
    }
    static void See(const UI_Node& node, std::map<Place, Saying>& seen) {
        if (!node.UI_IsVisible()) return;
        seen[{&node, -1}] = Saying::Of(node.UI_GetAccessibleInfo());
        for (int part = 0; part < node.UI_GetAccessiblePartCount(); ++part)
            seen[{&node, part}] = Saying::Of(node.UI_GetAccessiblePart(part).info);
        for (const auto& child : node.Children())
            See(*child, seen);
    }
    static int PartsOf(const UI_Node* node, const std::map<Place, Saying>& seen) {
        return static_cast<int>(
            std::count_if(seen.begin(), seen.end(), [&](const auto& entry) { return entry.first.first == node; }));
    }
    static std::uint8_t Difference(const Saying& a, const Saying& b) {
        using namespace kroui::ui;
        return static_cast<std::uint8_t>((a.name != b.name ? kAccessibleName : 0) |
                                         (a.value != b.value ? kAccessibleValue : 0) |
                                         (a.state != b.state ? kAccessibleState : 0));
    }
    void ExpectTold(Observer& observer, const std::map<Place, Saying>& before, const std::map<Place, Saying>& after) {
        using namespace kroui::ui;
        constexpr std::uint8_t kWords = kAccessibleName | kAccessibleValue | kAccessibleState;
        for (const auto& [place, words] : after) {
            const auto was = before.find(place);
            const bool hasSameParts = PartsOf(place.first, before) == PartsOf(place.first, after);
            if (was == before.end() || (place.second >= 0 && !hasSameParts)) continue;
            const auto& told = observer.told[place];
            std::uint8_t heard = 0;
            for (const std::uint8_t changes : told)
                heard |= changes;
            SCOPED_TRACE(
                Words(words.name, place.second, was->second.value, was->second.state, "->", words.value, words.state));
            const std::uint8_t expected = Difference(was->second, words);
            EXPECT_EQ(expected & heard, expected);
            EXPECT_LE(told.size(), 1U);
            // Actions count as state, too.
            EXPECT_EQ(heard & kWords & ~expected & ~kAccessibleState, 0);
            EXPECT_TRUE(hasSameParts || (heard & kAccessibleChildren) != 0);
        }
    }

    // As a preset does it.
    void ChangeParameters() {
        // How the pitch shifter's panel splits the ratio depends on the semitones that it shows.
        const int first = GetParam().shortName == "pitchshift" ? 1 : 0;
        for (int i = first; i < fFilter->GetParameterCount(); ++i) {
            const AudioFilterParameterInfo* const info = fFilter->GetParameterInfo(i);
            if (!info) continue;
            const bool isChoice = info->GetKind() == AudioFilterParameterInfo::Kind::kChoice;
            fFilter->SetParameterValue(i, isChoice ? info->FromItem(Random(info->GetItemCount()))
                                                   : static_cast<float>(Random(1001)) / 1000.0F);
        }
    }
    int Random(int count) { return static_cast<int>(fRandom() % static_cast<unsigned>(count)); }

    std::mt19937 fRandom{7};
};

TEST_P(AccessiblePanel, EveryControlSaysWhatItIsAndWhatItCanBe) {
    Open();
    const auto controls = Controls();
    EXPECT_FALSE(controls.empty());
    for (const auto* const control : controls)
        ExpectSaysWhatItIs(*control);
}

TEST_P(AccessiblePanel, AValueThatIsSetDoesWhatTypingItDoesInOneGesture) {
    StoreDefaults();
    Open();
    const std::size_t count = Controls<ValueControl>().size();
    for (std::size_t index = 0; index < count; ++index) {
        SCOPED_TRACE(Words("number", index + 1, "of", count));
        const Outcome set = SetBy(&AccessiblePanel::ByValue, index);
        EXPECT_TRUE(set.isDone);
        EXPECT_TRUE(set.messages == "012" || set.heard.empty()) << set.messages;
        const Outcome typed = SetBy(&AccessiblePanel::ByTyping, index);
        if (!typed.isDone) continue;
        // Where ratios are typed a plain number is no value.
        const bool isPlain = SetBy(&AccessiblePanel::ByText, index).isDone;
        for (const Way way : {&AccessiblePanel::ByValue, &AccessiblePanel::ByText}) {
            if (!isPlain && way == &AccessiblePanel::ByValue) continue;
            const Outcome other = SetBy(way, index);
            EXPECT_EQ(other.messages, typed.messages);
            EXPECT_EQ(other.heard, typed.heard);
            EXPECT_EQ(other.values, typed.values);
        }
    }
}

TEST_P(AccessiblePanel, EveryChangeThatAPollBringsIsToldOnce) {
    Observer observer;
    for (int round = 0; round < 4; ++round) {
        Open();
        fWindow.Window().SetAccessibilityObserver(&observer);
        fWindow.Advance(0.02);
        const auto before = Seen();
        observer.told.clear();
        ChangeParameters();
        fWindow.Advance(0.1);
        ExpectTold(observer, before, Seen());
        fWindow.Window().SetAccessibilityObserver(nullptr);
    }
}

INSTANTIATE_TEST_SUITE_P(Effects, AccessiblePanel, testing::ValuesIn(qoc::components::AllEffects()),
                         test::EffectName());

} // namespace
