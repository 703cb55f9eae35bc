#pragma once

#include "kroui/ui/AccessibilityObserver.h"
#include "kroui/ui/UI_Node.h"

#include <boost/function.hpp>

#include <unordered_map>
#include <vector>

namespace kroui::ui {

// Finds out what the nodes of a window say that they did not say at the last notices, and tells the window's observer.
// Whoever may have changed is noted; what a node says is compared when the event loop runs the timers, so that nothing
// is told twice and no control has to tell what about it has changed. Owned by its window.
class AccessibilityTracker {
public:
    // What it needs of the window: the node with the focus (null: none), and the trees that can be reached.
    using Focus = boost::function<UI_Node*()>;
    using Roots = boost::function<std::vector<UI_Node*>()>;

    AccessibilityTracker(Focus focus, Roots roots);
    ~AccessibilityTracker();

    // Null: nothing is followed any more.
    void SetObserver(AccessibilityObserver* observer);
    bool IsFollowing() const { return fObserver != nullptr; }

    void Changed(UI_Node& node);
    // The node and all below it can be seen, or no more.
    void Shown(UI_Node& node);
    void Gone(UI_Node& node);
    void FocusMoved() { Schedule(); }

private:
    class Alarm;
    // What a node said when the observer was told last.
    struct Snapshot {
        AccessibleInfo info;
        std::vector<AccessibleInfo> parts;
        std::vector<const UI_Node*> children; // visible; to be compared, never followed
        bool isStale = false;                 // children have come or gone since, however the list looks
    };
    struct Notice {
        UI_Node* node; // null: it has gone
        int part;
        std::uint8_t changes;
    };

    static Snapshot Take(const UI_Node& node);
    void Schedule();
    void NoteTree(UI_Node& node);
    void ForgetTree(const UI_Node& node);
    void ChildrenOf(UI_Node* parent);
    void Flush();
    void Compare(UI_Node& node);
    void CompareNamesAfter(const krocore::string16& oldText);
    void AddNotice(UI_Node& node, int part, std::uint8_t changes);
    void TellFocus();
    void TellNotices();

    Focus fFocus;
    Roots fRoots;
    AccessibilityObserver* fObserver = nullptr;
    boost::intrusive_ptr<Alarm> fAlarm;
    std::unordered_map<const UI_Node*, Snapshot> fKnown;
    std::vector<UI_Node*> fPending; // null: it has gone
    std::vector<Notice> fNotices;   // while telling
    const UI_Node* fToldFocus = nullptr;
    bool fFocusHasGone = false; // the node that was told last
    bool fRootsChanged = false;
    bool fIsScheduled = false;
};

} // namespace kroui::ui
