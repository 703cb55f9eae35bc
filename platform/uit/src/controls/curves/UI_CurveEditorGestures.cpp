// How changes of UI_CurveEditor's points by the user begin, go on and end.

#include "uit/controls/UI_CurveEditor.h"

#include "controls/curves/CurveMove.h"
#include "controls/curves/PointDrag.h"
#include "controls/curves/PointEditDialog.h"
#include "controls/curves/ResponseCurve.h"

namespace uit::controls {

using Message = kroui::controls::UI_InteractiveControlChangedMessage;

void UI_CurveEditor::Send(ChangeMessage change) {
    SendInteractive(change);
}

void UI_CurveEditor::BeginGesture(Gesture gesture) {
    FlushRun();
    fGesture = gesture;
    fHasSent = false;
    fBefore = fPoints;
}

// A listener may end the gesture from inside the message, by disabling the control; then false.
bool UI_CurveEditor::StartChanges() {
    if (!std::exchange(fHasSent, true)) Send(Message::kStarted);
    return fGesture != Gesture::kNone;
}

void UI_CurveEditor::ChangePoints(const boost::function<CurvePoints()>& changed) {
    if (fGesture == Gesture::kNone || changed() == fPoints.All() || !StartChanges()) return;
    fPoints.SetPoints(changed());
    PointsChanged();
    Send(Message::kChanged);
}

void UI_CurveEditor::EndGesture() {
    if (std::exchange(fGesture, Gesture::kNone) == Gesture::kNone) return;
    if (!std::exchange(fHasSent, false)) return;
    const boost::intrusive_ptr<UI_CurveEditor> keepAlive(this);
    Send(Message::kEnded);
    SendChanged();
}

void UI_CurveEditor::AbandonGesture() {
    if (std::exchange(fGesture, Gesture::kNone) == Gesture::kNone) return;
    if (!std::exchange(fHasSent, false)) return;
    const boost::intrusive_ptr<UI_CurveEditor> keepAlive(this);
    if (fPoints.All() != fBefore.All()) {
        // Flags that the owner has set meanwhile stand, as far as they belong to the same points.
        if (fPoints.Count() == fBefore.Count()) {
            fPoints.SetPoints(fBefore.All());
        } else {
            fPoints = fBefore;
        }
        PointsChanged();
        Send(Message::kChanged);
    }
    Send(Message::kAbandoned);
}

// A whole gesture with one change; false, and nothing sent, if it would change nothing.
bool UI_CurveEditor::Publish(const boost::function<bool(CurvePointSet&)>& change) {
    CurvePointSet trial = fPoints;
    if (!change(trial)) return false;
    BeginGesture(Gesture::kOnce);
    if (StartChanges() && change(fPoints)) {
        PointsChanged();
        Send(Message::kChanged);
    }
    EndGesture();
    return true;
}

void UI_CurveEditor::NotifyChanged() {
    FlushRun();
    if (fGesture != Gesture::kNone) {
        Send(Message::kChanged);
        return;
    }
    const boost::intrusive_ptr<UI_CurveEditor> keepAlive(this);
    Send(Message::kStarted);
    Send(Message::kChanged);
    Send(Message::kEnded);
    SendChanged();
}

// The drag counts from here on.
void UI_CurveEditor::RememberBases() {
    if (!fDrag) return;
    fBases.clear();
    for (const int index : fPoints.Selection())
        fBases.push_back(fPoints.At(index).coordinates);
    fDragAxes = GetAxesVersion();
    fDrag->Restart();
}

} // namespace uit::controls
