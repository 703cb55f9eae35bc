#pragma once

#include "kroui/ui/UI_Node.h"

namespace kroui::ui {

// Shows the tool tip of the node under the pointer after half a second of rest. Owned by its window.
class TooltipController {
public:
    // What it needs of the window.
    class Place {
    public:
        virtual const limner::SupplierInterface& Supplier() const = 0;
        virtual Rect Room() const = 0; // where tips may stand
        virtual float ScaleFactor() const = 0;
        // Whether something is dragged, or a menu or dialog stands over everything.
        virtual bool IsBusy() const = 0;
        virtual void ShowTip(UI_Node& tip, const Rect& frame) = 0;
        virtual void HideTip(UI_Node& tip) = 0;

    protected:
        ~Place() = default;
    };

    // The place lives longer.
    explicit TooltipController(Place& place);
    ~TooltipController();
    TooltipController(const TooltipController&) = delete;
    TooltipController& operator=(const TooltipController&) = delete;

    // The pointer is over another node now (null: none), or has moved over the same one.
    void HoverChanged(UI_Node* node, Point position);
    // A press, a key, a wheel notch: no tip until the pointer moves to another node.
    void Dismiss();
    // Shows a node's tip under it at once; it goes as any other.
    void ShowUnder(UI_Node& node);
    // The node whose tip is to be seen; null if none is.
    const UI_Node* ShownNode() const { return fIsShown ? fShownNode.get() : nullptr; }
    void Hide();

private:
    class Tip;

    void Show();
    void ShowAt(UI_Node& node, Point below, float above);

    Place& fPlace;
    boost::intrusive_ptr<Tip> fTip;
    boost::intrusive_ptr<UI_Node> fNode; // has the tip of what the pointer is over
    boost::intrusive_ptr<UI_Node> fShownNode;
    Point fPosition;
    bool fIsShown = false;
    bool fIsDismissed = false; // the node's tip is not to come again
};

} // namespace kroui::ui
