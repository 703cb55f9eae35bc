#include "AccessibilityTracker.h"

#include <algorithm>
#include <utility>

namespace kroui::ui {

namespace {

constexpr long kTimerID = 1;
constexpr float kSoon = 0.001F; // the shortest period there is

std::uint8_t Difference(const AccessibleInfo& a, const AccessibleInfo& b) {
    std::uint8_t changes = 0;
    const auto compare = [&](bool isSame, AccessibleChange change) {
        if (!isSame) changes |= change;
    };
    compare(a.name == b.name, kAccessibleName);
    compare(a.value == b.value && a.range == b.range && a.position == b.position, kAccessibleValue);
    compare(a.role == b.role && a.enabled == b.enabled && a.focusable == b.focusable && a.selected == b.selected &&
                a.checked == b.checked && a.expanded == b.expanded && a.actions == b.actions,
            kAccessibleState);
    compare(a.caret == b.caret && (!b.caret || a.value == b.value), kAccessibleText);
    return changes;
}

bool IsLabel(const AccessibleInfo& info) {
    return info.role == Role::kText;
}

const krocore::string16& TextOfLabel(const AccessibleInfo& info) {
    return info.value.empty() ? info.name : info.value;
}

} // namespace

// Calls the tracker once, soon, from the loop.
class AccessibilityTracker::Alarm : public UI_Node {
public:
    explicit Alarm(AccessibilityTracker& tracker) : fTracker(tracker) {}

    bool UI_DoTimerNotify(long timerID) override {
        UI_RemoveTimer(timerID, false);
        fTracker.Flush();
        return true;
    }

private:
    AccessibilityTracker& fTracker;
};

AccessibilityTracker::AccessibilityTracker(Focus focus, Roots roots)
    : fFocus(std::move(focus)), fRoots(std::move(roots)), fAlarm(new Alarm(*this)) {
}

AccessibilityTracker::~AccessibilityTracker() {
    fAlarm->UI_RemoveTimer(kTimerID, false);
}

void AccessibilityTracker::SetObserver(AccessibilityObserver* observer) {
    if (observer == fObserver) return;
    fAlarm->UI_RemoveTimer(kTimerID, false);
    fIsScheduled = fRootsChanged = fFocusHasGone = false;
    fKnown.clear();
    fPending.clear();
    fNotices.clear();
    fObserver = observer;
    if (!observer) return;
    // What is there now is what the observer has to ask for; only changes are told.
    fToldFocus = fFocus();
    for (UI_Node* const root : fRoots())
        NoteTree(*root);
    for (UI_Node* const node : std::exchange(fPending, {}))
        if (node->UI_IsVisibleInWindow()) fKnown[node] = Take(*node);
}

void AccessibilityTracker::Schedule() {
    if (!fObserver || std::exchange(fIsScheduled, true)) return;
    fAlarm->UI_InstallTimer(kSoon, kTimerID);
}

// A node is noted once: most are the last one that was.
void AccessibilityTracker::Changed(UI_Node& node) {
    if (!fObserver || std::find(fPending.rbegin(), fPending.rend(), &node) != fPending.rend()) return;
    fPending.push_back(&node);
    Schedule();
}

void AccessibilityTracker::NoteTree(UI_Node& node) {
    Changed(node);
    for (const auto& child : node.Children())
        NoteTree(*child);
}

void AccessibilityTracker::ForgetTree(const UI_Node& node) {
    fKnown.erase(&node);
    for (const auto& child : node.Children())
        ForgetTree(*child);
}

void AccessibilityTracker::ChildrenOf(UI_Node* parent) {
    if (parent) {
        Changed(*parent);
    } else {
        fRootsChanged = true;
        Schedule();
    }
}

void AccessibilityTracker::Shown(UI_Node& node) {
    if (!fObserver) return;
    NoteTree(node);
    ChildrenOf(node.UI_GetParent());
}

void AccessibilityTracker::Gone(UI_Node& node) {
    if (!fObserver) return;
    std::replace(fPending.begin(), fPending.end(), &node, static_cast<UI_Node*>(nullptr));
    for (Notice& notice : fNotices)
        if (notice.node == &node) notice.node = nullptr;
    fKnown.erase(&node);
    if (const auto parent = fKnown.find(node.UI_GetParent()); parent != fKnown.end()) parent->second.isStale = true;
    ChildrenOf(node.UI_GetParent());
    if (fToldFocus == &node) {
        fFocusHasGone = true;
        fToldFocus = nullptr;
    }
    fObserver->AccessibleGone(node);
}

AccessibilityTracker::Snapshot AccessibilityTracker::Take(const UI_Node& node) {
    Snapshot snapshot;
    snapshot.info = node.UI_GetAccessibleInfo();
    const int count = node.UI_GetAccessiblePartCount();
    for (int part = 0; part < count; ++part)
        snapshot.parts.push_back(node.UI_GetAccessiblePart(part).info);
    for (const auto& child : node.Children())
        if (child->UI_IsVisible()) snapshot.children.push_back(child.get());
    return snapshot;
}

void AccessibilityTracker::Flush() {
    fIsScheduled = false;
    // Labels add those that they name.
    for (std::size_t i = 0; i < fPending.size(); ++i)
        if (fPending[i]) Compare(*fPending[i]);
    fPending.clear();
    if (fObserver && std::exchange(fRootsChanged, false)) fObserver->AccessibleRootsChanged();
    TellNotices();
    TellFocus();
}

void AccessibilityTracker::Compare(UI_Node& node) {
    if (!node.UI_IsVisibleInWindow()) {
        ForgetTree(node);
        return;
    }
    Snapshot now = Take(node);
    const auto known = fKnown.find(&node);
    if (known == fKnown.end()) {
        fKnown.emplace(&node, std::move(now));
        return;
    }
    const Snapshot before = std::exchange(known->second, std::move(now));
    const Snapshot& after = known->second;
    const bool hasOtherParts = before.parts.size() != after.parts.size();
    const bool hasOtherChildren = before.isStale || hasOtherParts || before.children != after.children;
    const std::uint8_t changes = Difference(before.info, after.info);
    AddNotice(node, AccessibleRequest::kWhole,
              static_cast<std::uint8_t>(changes | (hasOtherChildren ? kAccessibleChildren : 0)));
    for (std::size_t part = 0; !hasOtherParts && part < after.parts.size(); ++part)
        AddNotice(node, static_cast<int>(part), Difference(before.parts[part], after.parts[part]));
    const bool isOtherLabel = TextOfLabel(before.info) != TextOfLabel(after.info);
    if (IsLabel(after.info) && isOtherLabel) CompareNamesAfter(TextOfLabel(before.info));
}

// Those that were called what a label said are called otherwise now; where it said nothing, it may be anybody.
void AccessibilityTracker::CompareNamesAfter(const krocore::string16& oldText) {
    for (const auto& [node, snapshot] : fKnown)
        if (oldText.empty() || snapshot.info.name == oldText) Changed(const_cast<UI_Node&>(*node));
}

void AccessibilityTracker::AddNotice(UI_Node& node, int part, std::uint8_t changes) {
    if (changes != 0) fNotices.push_back({&node, part, changes});
}

// The observer may let nodes go, and stop observing.
void AccessibilityTracker::TellNotices() {
    for (std::size_t i = 0; i < fNotices.size(); ++i) {
        const Notice notice = fNotices[i];
        if (notice.node && fObserver) fObserver->AccessibleChanged(*notice.node, notice.part, notice.changes);
    }
    fNotices.clear();
}

void AccessibilityTracker::TellFocus() {
    UI_Node* const focus = fFocus();
    const bool isMoved = focus != fToldFocus || fFocusHasGone;
    fFocusHasGone = false;
    fToldFocus = focus;
    if (isMoved && fObserver) fObserver->AccessibleFocusMoved(focus);
}

} // namespace kroui::ui
