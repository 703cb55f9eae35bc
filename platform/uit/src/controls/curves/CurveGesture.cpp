#include "controls/curves/CurveGesture.h"

#include <utility>

namespace uit::controls {

void CurveGesture::Begin(Kind kind) {
    fKind = kind;
    fHasStarted = false;
    fBefore = fPoints;
}

bool CurveGesture::Start() {
    if (!std::exchange(fHasStarted, true)) fSend(ChangeMessage::kStarted);
    return IsActive();
}

// The points are worked out again after the beginning has been told: a listener may have set others.
void CurveGesture::Change(const boost::function<CurvePointSet::Points()>& changed) {
    if (!IsActive() || changed() == fPoints.All() || !Start()) return;
    fPoints.SetPoints(changed());
    fPointsChanged();
    TellOfChange();
}

void CurveGesture::End() {
    if (std::exchange(fKind, Kind::kNone) == Kind::kNone) return;
    if (std::exchange(fHasStarted, false)) fSend(ChangeMessage::kEnded);
}

void CurveGesture::Abandon() {
    if (std::exchange(fKind, Kind::kNone) == Kind::kNone) return;
    if (!std::exchange(fHasStarted, false)) return;
    if (fPoints.All() != fBefore.All()) {
        // Flags that the owner has set meanwhile stand, as far as they belong to the same points.
        if (fPoints.Count() == fBefore.Count()) {
            fPoints.SetPoints(fBefore.All());
        } else {
            fPoints = fBefore;
        }
        fPointsChanged();
        TellOfChange();
    }
    fSend(ChangeMessage::kAbandoned);
}

bool CurveGesture::Publish(const boost::function<bool(CurvePointSet&)>& change) {
    CurvePointSet trial = fPoints;
    if (!change(trial)) return false;
    Begin(Kind::kOnce);
    if (Start() && change(fPoints)) {
        fPointsChanged();
        TellOfChange();
    }
    End();
    return true;
}

void CurveGesture::Announce() {
    if (IsActive()) return TellOfChange();
    fSend(ChangeMessage::kStarted);
    TellOfChange();
    fSend(ChangeMessage::kEnded);
}

} // namespace uit::controls
