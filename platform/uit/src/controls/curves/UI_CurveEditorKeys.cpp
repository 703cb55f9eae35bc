// How UI_CurveEditor answers the keyboard, and its dialog.

#include "uit/controls/UI_CurveEditor.h"

#include "controls/curves/CurveGesture.h"
#include "controls/curves/CurveMove.h"
#include "controls/curves/CurvePress.h"
#include "controls/curves/CurveReadout.h"
#include "controls/curves/PointEditDialog.h"
#include "controls/curves/ResponseCurve.h"

#include "kroui/ui/UI_NodeManager.h"
#include "kroui/ui/UI_Window.h"

#include <algorithm>

namespace uit::controls {

using kroui::Point;
using kroui::Rect;
using kroui::ui::Key;
using kroui::ui::KeyEvent;

namespace {

constexpr float kRunSeconds = 0.5F;
constexpr double kCoarseNudge = 10; // pixels, with Shift
constexpr double kFineNudge = 0.1;  // with Ctrl

long RunTimerID() {
    static const long sTimerID = kroui::ui::UI_NodeManager::Get().GetUniqueTimerID();
    return sTimerID;
}

} // namespace

bool UI_CurveEditor::UI_DoKeyEvent(const KeyEvent& event) {
    if (!IsEnabled() || event.Has(kroui::ui::kAlt)) return false;
    if (event.key == Key::kEscape) return CancelDrag() || CancelPan();
    if (fPress) return true;
    return NudgeKey(event) || EditKey(event) || WalkKey(event);
}

bool UI_CurveEditor::UI_DoTimerNotify(long timerID) {
    if (timerID != RunTimerID()) return UI_RulerGridBase::UI_DoTimerNotify(timerID);
    FlushRun();
    return true;
}

bool UI_CurveEditor::WalkKey(const KeyEvent& event) {
    const bool isPlain = !event.Has(kroui::ui::kCommand);
    int next = -1;
    if (event.key == Key::kTab && isPlain) {
        next = fPoints.NextVisible(GetSelectedNode(), !event.Has(kroui::ui::kShift));
    } else if (event.key == Key::kHome && isPlain) {
        next = fPoints.NextVisible(-1, true);
    } else if (event.key == Key::kEnd && isPlain) {
        next = fPoints.NextVisible(-1, false);
    } else if (event.key == Key::kCharacter && event.character == u'a' && !isPlain) {
        SelectByUser([this] { fPoints.SelectAllVisible(); });
        return true;
    }
    if (next < 0) return false;
    FlushRun();
    SelectByUser([&] { fPoints.Select(next); });
    return true;
}

bool UI_CurveEditor::NudgeKey(const KeyEvent& event) {
    const double pace = event.Has(kroui::ui::kCommand) ? kFineNudge : event.Has(kroui::ui::kShift) ? kCoarseNudge : 1;
    double dx = 0;
    double dy = 0;
    switch (event.key) {
    case Key::kLeft: dx = -pace; break;
    case Key::kRight: dx = pace; break;
    case Key::kUp: dy = -pace; break;
    case Key::kDown: dy = pace; break;
    default: return false;
    }
    if (fPoints.Selection().empty()) return false;
    if (!fGesture->Is(CurveGesture::Kind::kRun)) fGesture->Begin(CurveGesture::Kind::kRun);
    std::vector<CoordinatePair> places;
    for (const int index : fPoints.Selection())
        places.push_back(fPoints.At(index).coordinates);
    fGesture->Change([&] { return Mover(true).Moved(fPoints, places, dx, dy); });
    if (fGesture->Is(CurveGesture::Kind::kRun)) UI_InstallTimer(kRunSeconds, RunTimerID());
    UpdateReadout();
    return true;
}

void UI_CurveEditor::FlushRun() {
    if (!fGesture->Is(CurveGesture::Kind::kRun)) return;
    const kroui::ui::MessageScope scope;
    UI_RemoveTimer(RunTimerID(), false);
    fGesture->End();
    UpdateReadout();
}

bool UI_CurveEditor::EditKey(const KeyEvent& event) {
    switch (event.key) {
    case Key::kDelete:
    case Key::kBackspace:
        FlushRun();
        if (!fDeleteEnabled || !fGesture->Publish([](CurvePointSet& points) { return points.EraseSelected(); }))
            return false;
        fSelectionChanged();
        return true;
    case Key::kEnter:
    case Key::kF2: return event.modifiers == kroui::ui::kNoModifier && OpenDialog(GetSelectedNode());
    default: return false;
    }
}

bool UI_CurveEditor::OpenDialog(int index) {
    kroui::ui::UI_Window* const window = UI_GetWindow();
    if (!window || !fPoints.May(CurvePointSet::kVisible, index)) return false;
    const bool movesAcross = fPoints.May(CurvePointSet::kHorizontal, index);
    const bool movesUp = fPoints.May(CurvePointSet::kVertical, index);
    if (!movesAcross && !movesUp) return false;
    FlushRun();
    if (!fDialog) fDialog.reset(new PointEditDialog);
    const CoordinatePair place = fPoints.At(index).coordinates;
    const CoordinatePair pixel = PixelLength(place);
    const AxisText horizontal = HorizontalText();
    const AxisText vertical = VerticalText();
    const Rect content = GetContentRect();
    const Point at = PixelOf(index);
    const Point anchor{std::clamp(at.x, content.left, content.Right()),
                       std::clamp(at.y, content.top, content.Bottom())};
    fDialog->SetTheme(&GetTheme());
    fDialog->Open(
        *window, UI_LocalToWindow(anchor),
        {horizontal, horizontal.WriteForEntry(place.horizontal, pixel.horizontal), movesAcross},
        {vertical, vertical.WriteForEntry(place.vertical, pixel.vertical), movesUp},
        [this, index](std::optional<double> x, std::optional<double> y) { PlacePoint(index, x, y); },
        [this] { UI_TakeFocus(); });
    return true;
}

// Where the user wants it, as near as the bounds and the neighbours let it.
void UI_CurveEditor::PlacePoint(int index, std::optional<double> horizontal, std::optional<double> vertical) {
    FlushRun();
    if (!fPoints.Has(index)) return;
    CoordinatePair place = fPoints.At(index).coordinates;
    place = {horizontal.value_or(place.horizontal), vertical.value_or(place.vertical)};
    SelectByUser([&] { fPoints.Select(index); });
    fGesture->Publish([&](CurvePointSet& points) {
        CurvePoints placed = points.Has(index) ? Mover(false).Placed(points, index, place) : points.All();
        if (placed == points.All()) return false;
        points.SetPoints(std::move(placed));
        return true;
    });
}

} // namespace uit::controls
