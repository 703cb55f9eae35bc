#include "PlainPanels.h"

#include "krocore/String.h"
#include "kroui/controls/SliderLook.h"
#include "kroui/controls/UI_Checkbox.h"
#include "kroui/controls/UI_Popup.h"
#include "kroui/controls/UI_RadioButton.h"
#include "kroui/controls/UI_StaticText.h"
#include "kroui/controls/UI_TextField.h"
#include "kroui/controls/ValueControl.h"
#include "kroui/ui/AdapterRegistry.h"
#include "kroui/ui/UI_NodeBuilder.h"
#include "kroui/ui/UI_NodeWriter.h"
#include "kroui/ui/UI_SubView.h"
#include "uit/controls/UI_OutlineBoxWithLabel.h"

#include <fmt/format.h>

#include <cmath>
#include <stdexcept>
#include <vector>

namespace bench {

using kroui::Rect;
using kroui::ui::MakeProperty;
using kroui::ui::PropertyTable;
using kroui::ui::PropertyType;

namespace {

using NodePtr = boost::intrusive_ptr<kroui::ui::UI_Node>;

constexpr float kFontSize = 11;
constexpr std::string_view kSwitchedOn = "on";
constexpr std::string_view kMenu = "menu";

// A slider alone: the toolkit's own controls hold its label and its number, too.
class Slider : public kroui::controls::UI_InteractiveControlView, public kroui::controls::ValueControl {
public:
    void SetVertical(bool vertical) { fVertical = vertical; }
    bool IsVertical() const { return fVertical; }

    void UI_Draw(kroui::limner::Limner* limner) override {
        constexpr float kReach = kroui::controls::SliderLook::kKnobReach;
        const Rect all = UI_GetLocalRect();
        kroui::controls::SliderLook look;
        look.track = fVertical ? all.Inset(0, kReach) : all.Inset(kReach, 0);
        look.position = GesturePosition(GetValue());
        look.origin = GestureMinimum() < 0 && GestureMaximum() > 0 ? GesturePosition(0) : 0;
        look.vertical = fVertical;
        look.Draw(*limner, *this);
    }

    const PropertyTable& UI_GetPropertyTable() const override {
        using kroui::controls::MakeValueProperty;
        static constexpr kroui::ui::PropertyRow kRows[] = {
            MakeValueProperty<Slider, PropertyType::kDouble, &Slider::GetMaxValue, &Slider::SetMaxValue>("maxValue"),
            MakeValueProperty<Slider, PropertyType::kDouble, &Slider::GetMinValue, &Slider::SetMinValue>("minValue"),
            MakeValueProperty<Slider, PropertyType::kDouble, &Slider::GetValue, &Slider::SetValue>("value"),
            MakeProperty<PropertyType::kBool, &Slider::IsVertical, &Slider::SetVertical>("vertical"),
        };
        static const PropertyTable table{"bench::Slider", kRows, &PropertiesOfInteractiveControlView()};
        return table;
    }

private:
    kroui::ui::UI_Node& ValueNode() override { return *this; }
    void ValueChanged(double /*oldValue*/) override { UI_Invalidate(); }
    void ValueLookChanged() override { UI_Invalidate(); }
    void SendGesture(int /*changeMessage*/) override {}
    std::optional<double> ReadTyped(std::u16string_view /*typed*/) const override { return std::nullopt; }

    bool fVertical = false;
};

// A field that an archive can hold; with arrows it looks as if it counted.
class Field : public kroui::controls::UI_TextField {
public:
    void SetArrows(bool arrows) { fArrows = arrows; }
    bool HasArrows() const { return fArrows; }
    krocore::string8 Text8() const { return krocore::ToUTF8(GetText()); }
    void SetText8(std::string_view text) { SetText(krocore::ToUTF16(text)); }

    void UI_Draw(kroui::limner::Limner* limner) override {
        UI_TextField::UI_Draw(limner);
        if (!fArrows) return;
        DrawArrow(*limner, -1);
        DrawArrow(*limner, 1);
    }

    const PropertyTable& UI_GetPropertyTable() const override {
        static constexpr kroui::ui::PropertyRow kRows[] = {
            MakeProperty<PropertyType::kBool, &Field::HasArrows, &Field::SetArrows>("arrows"),
            MakeProperty<PropertyType::kFloat, &Field::FontSize, &Field::SetFontSize>("fontSize"),
            MakeProperty<PropertyType::kUnicode, &Field::Text8, &Field::SetText8>("text"),
        };
        static const PropertyTable table{"bench::Field", kRows, &PropertiesOfInteractiveControlView()};
        return table;
    }

private:
    // Upwards by -1, downwards by 1.
    void DrawArrow(kroui::limner::Limner& limner, float direction) const {
        const Rect all = UI_GetLocalRect();
        const float x = all.width - 9;
        const float y = all.height / 2 + direction * 5;
        limner.NewPath();
        limner.MoveTo(x - 4, y - direction * 2);
        limner.LineTo(x + 4, y - direction * 2);
        limner.LineTo(x, y + direction * 2.5F);
        limner.ClosePath();
        limner.Fill({GetColor(kroui::ui::kColorText)});
    }

    bool fArrows = false;
};

const kroui::ui::AdapterRegistrar<Slider> sSlider("bench::Slider");
const kroui::ui::AdapterRegistrar<Field> sField("bench::Field");

struct Range {
    double low = 0;
    double high = 100;
};

// Adds nodes to a panel, each with its place.
class PanelMaker {
public:
    explicit PanelMaker(kroui::Size size) { fRoot->UI_SetFrame({0, 0, size.width, size.height}); }

    void AddGroup(const Rect& place, std::u16string_view text) {
        Add(place, new uit::controls::UI_OutlineBoxWithLabel)->SetLabel(krocore::string16(text));
    }
    void AddLabel(const Rect& place, std::u16string_view text) {
        auto* const label = Add(place, new kroui::controls::UI_StaticText);
        label->SetText(krocore::string16(text));
        label->SetFontSize(kFontSize);
        label->SetTextTruncation(kroui::limner::TextTruncation::kNone);
    }
    void AddSlider(const Rect& place, double value, Range range, bool isVertical) {
        auto* const slider = Add(place, new Slider);
        slider->SetVertical(isVertical);
        slider->SetMinValue(range.low);
        slider->SetMaxValue(range.high);
        slider->SetValue(value);
    }
    void AddField(const Rect& place, double value, int places, bool hasArrows = false) {
        auto* const field = Add(place, new Field);
        field->SetText8(fmt::format("{:.{}f}", value, places));
        field->SetFontSize(kFontSize);
        field->SetArrows(hasArrows);
    }
    template <class Button>
    void AddButton(const Rect& place, std::u16string_view text, bool isOn) {
        auto* const button = Add(place, new Button);
        button->SetText(krocore::string16(text));
        button->SetFontSize(kFontSize);
        if (isOn) button->UI_SetID(fmt::format("{}{}", kSwitchedOn, fNames++));
    }
    void AddMenu(const Rect& place, std::initializer_list<const char16_t*> items) {
        auto* const menu = Add(place, new kroui::controls::UI_Popup);
        for (const char16_t* const item : items)
            menu->AddItem(item);
        menu->SetFontSize(kFontSize);
        menu->UI_SetID(fmt::format("{}{}", kMenu, fNames++));
    }

    const kroui::ui::UI_Node& Panel() const { return *fRoot; }

private:
    template <class Node>
    Node* Add(const Rect& place, Node* node) {
        node->UI_SetFrame(place);
        fRoot->ChildPushBack(node);
        return node;
    }

    boost::intrusive_ptr<kroui::ui::UI_SubView> fRoot{new kroui::ui::UI_SubView};
    int fNames = 0;
};

void AddNumber(PanelMaker& panel, float top, std::u16string_view label, double value, Range range) {
    panel.AddLabel({22, top + 3, 90, 18}, label);
    panel.AddSlider({116, top, 280, 24}, value, range, false);
    panel.AddField({404, top, 92, 24}, value, 2, true);
}

void AddEntry(PanelMaker& panel, float top, std::u16string_view label, double value) {
    panel.AddLabel({277, top + 3, 124, 18}, label);
    panel.AddField({404, top, 92, 24}, value, 1);
}

std::string ArchiveOfForm() {
    using namespace kroui::controls;
    PanelMaker panel(SizeOf(PlainPanel::kForm));
    panel.AddGroup({10, 8, 500, 122}, u"Transposition");
    AddNumber(panel, 32, u"Whole tones:", 3, {-12, 12});
    AddNumber(panel, 64, u"Hundredths:", -25, {-100, 100});
    AddNumber(panel, 96, u"Ratio:", 118.92, {50, 200});
    panel.AddGroup({10, 138, 245, 130}, u"Precision");
    panel.AddButton<UI_RadioButton>({22, 160, 200, 22}, u"Low precision", false);
    panel.AddButton<UI_RadioButton>({22, 185, 200, 22}, u"Medium precision", true);
    panel.AddButton<UI_RadioButton>({22, 210, 200, 22}, u"High precision", false);
    panel.AddButton<UI_Checkbox>({22, 236, 200, 22}, u"Use appropriate defaults", true);
    panel.AddGroup({265, 138, 245, 130}, u"Timing");
    AddEntry(panel, 160, u"Splice frequency:", 86);
    AddEntry(panel, 194, u"Overlap:", 30);
    AddEntry(panel, 228, u"Output gain:", -3.5);
    panel.AddLabel({22, 284, 90, 18}, u"Base key:");
    panel.AddMenu({116, 281, 200, 26}, {u"C", u"C#", u"D", u"D#", u"E", u"F", u"F#", u"G"});
    panel.AddLabel({22, 318, 90, 18}, u"Preset:");
    panel.AddMenu({116, 315, 200, 26}, {u"(Default)", u"Up one octave", u"Down a fifth", u"Detune", u"Stretch"});
    return kroui::ui::WriteArchive(panel.Panel());
}

std::string ArchiveOfFaders() {
    constexpr int kFaders = 30;
    PanelMaker panel(SizeOf(PlainPanel::kFaders));
    for (int i = 0; i < kFaders; ++i) {
        const float left = 10 + 32 * static_cast<float>(i);
        const double hertz = 20 * std::pow(1000, i / (kFaders - 1.0));
        const double level = std::round(90 * std::sin(i * 0.7)) / 10;
        const std::string name = hertz < 1000 ? fmt::format("{:.0f}", hertz) : fmt::format("{:.1f}k", hertz / 1000);
        panel.AddLabel({left, 8, 30, 18}, krocore::ToUTF16(name));
        panel.AddSlider({left, 30, 30, 240}, level, {-24, 24}, true);
        panel.AddField({left, 276, 30, 24}, level, 1);
    }
    panel.AddField({10, 320, 92, 24}, 30, 1);
    panel.AddField({120, 320, 92, 24}, 0, 1);
    panel.AddField({230, 320, 92, 24}, 2000, 1);
    return kroui::ui::WriteArchive(panel.Panel());
}

} // namespace

kroui::Size SizeOf(PlainPanel panel) {
    return {panel == PlainPanel::kForm ? 520.0F : 1000.0F, 360};
}

std::string ArchiveOf(PlainPanel panel) {
    return panel == PlainPanel::kForm ? ArchiveOfForm() : ArchiveOfFaders();
}

boost::intrusive_ptr<kroui::ui::UI_Node> OpenPlainPanel(const std::string& archive) {
    kroui::ui::NamedNodes named;
    std::vector<kroui::ui::Diagnostic> faults;
    NodePtr panel = kroui::ui::UI_NodeBuilder::LoadView(std::as_bytes(std::span(archive)), "panel", named, {}, faults);
    if (!panel || !faults.empty()) throw std::runtime_error(panel ? faults.front().ToString() : "no panel");
    for (const auto& [id, node] : named)
        static_cast<kroui::controls::UI_Button&>(*node).SetValue(id.starts_with(kSwitchedOn) ? 1 : 0);
    return panel;
}

} // namespace bench
