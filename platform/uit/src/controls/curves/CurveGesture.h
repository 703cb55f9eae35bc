#pragma once

#include "kroui/controls/Messages.h"
#include "uit/controls/CurvePointSet.h"

#include <boost/function.hpp>

namespace uit::controls {

// A change of a curve's points by the user, from its beginning to its end: which messages it sends, and how it is taken
// back. Nothing is sent before something changes. Listeners may end it from inside a message.
class CurveGesture {
public:
    // A drag, a run of keys, or a change that is done at once.
    enum class Kind : unsigned char { kNone, kDrag, kRun, kOnce };
    using ChangeMessage = kroui::controls::UI_InteractiveControlChangedMessage::ChangeMessage;
    // Sends a message, and after the one that ends it the committed change.
    using Sender = boost::function<void(ChangeMessage)>;

    // `pointsChanged` is called before message 1 of each change.
    CurveGesture(CurvePointSet& points, boost::function<void()> pointsChanged, Sender send)
        : fPoints(points), fPointsChanged(std::move(pointsChanged)), fSend(std::move(send)) {}

    bool IsActive() const { return fKind != Kind::kNone; }
    bool Is(Kind kind) const { return fKind == kind; }

    void Begin(Kind kind);
    // Tells of the beginning if that has not been done; false if it has led to the end.
    bool Start();
    // Gives the points other values, if they are other ones.
    void Change(const boost::function<CurvePointSet::Points()>& changed);
    // What has been changed without Change.
    void TellOfChange() { fSend(ChangeMessage::kChanged); }
    void End();
    // Brings the points back with one more change.
    void Abandon();
    // A whole gesture with one change; false, and nothing sent, if it would change nothing.
    bool Publish(const boost::function<bool(CurvePointSet&)>& change);
    // A whole gesture for points that stand already, or in one that is active one more change.
    void Announce();

private:
    CurvePointSet& fPoints;
    boost::function<void()> fPointsChanged;
    Sender fSend;
    CurvePointSet fBefore; // when it began
    Kind fKind = Kind::kNone;
    bool fHasStarted = false;
};

} // namespace uit::controls
