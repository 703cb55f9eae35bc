#pragma once

#include "kroui/limner/CairoSupplier.h"
#include "kroui/ui/HeadlessWindow.h"
#include "kroui/utility/LinearRuler.h"
#include "uit/controls/UI_CurveEditor.h"

#include <gmock/gmock.h>

#include <string>

namespace uit::controls {

// A curve editor in a window whose axes have a unit a pixel: 0...400 to the right, 0...200 upwards.
class CurveEditorTest : public testing::Test {
protected:
    using Message = kroui::controls::UI_InteractiveControlChangedMessage;
    using Points = UI_CurveEditor::CurvePoints;
    using Pair = UI_CurveEditor::CoordinatePair;

    CurveEditorTest() {
        root->UI_SetFrame({0, 0, 600, 400});
        window.Window().SetContent(root);
        editor->UI_SetFrame({20, 30, 453, 226});
        editor->SetRanges(0, 400, 200, 0);
        root->ChildPushBack(editor);
        editor->NotifyWhenChangedInteractively([this](Message* message) {
            heard += static_cast<char>('0' + message->GetChangeMessage());
            if (onMessage) onMessage(message->GetChangeMessage());
        });
        editor->NotifyWhenChanged([this](kroui::controls::UI_ControlChangedMessage*) { heard += 'c'; });
        window.Paint();
    }

    // Where a pair of values lies in the window.
    kroui::Point At(double x, double y) const {
        const kroui::Rect content = editor->GetContentRect();
        return editor->UI_LocalToWindow(
            {content.left + static_cast<float>(x), content.Bottom() - static_cast<float>(y)});
    }
    static Points PointsAt(const std::vector<Pair>& places) {
        Points points;
        for (const Pair& place : places)
            points.push_back({static_cast<std::uint32_t>(points.size()), place});
        return points;
    }
    void Set(const std::vector<Pair>& places) { editor->SetCurvePoints(PointsAt(places)); }
    std::vector<Pair> Places() const {
        std::vector<Pair> places;
        for (const CurvePoint& point : editor->GetCurvePoints())
            places.push_back(point.coordinates);
        return places;
    }
    std::string Heard() { return std::exchange(heard, {}); }

    // Before the window, whose end may send the last messages.
    std::string heard;
    boost::function<void(int)> onMessage;
    kroui::limner::CairoSupplier supplier;
    kroui::ui::HeadlessWindow window{supplier, {600, 400}};
    boost::intrusive_ptr<kroui::ui::UI_SubView> root{new kroui::ui::UI_SubView};
    boost::intrusive_ptr<UI_CurveEditor> editor{
        new UI_CurveEditor(new kroui::utility::LinearRuler, new kroui::utility::LinearRuler)};
};

inline void PrintTo(const UI_CurveEditor::CoordinatePair& pair, std::ostream* stream) {
    *stream << '(' << pair.horizontal << ", " << pair.vertical << ')';
}

// A pair of values, to a tenth of a pixel of the fixture.
MATCHER_P2(IsPlace, x, y, "") {
    return std::abs(arg.horizontal - x) < 0.1 && std::abs(arg.vertical - y) < 0.1;
}

} // namespace uit::controls
