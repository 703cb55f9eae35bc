#pragma once

#include "kroui/controls/FloatingPanel.h"
#include "kroui/controls/ImageSlot.h"
#include "kroui/controls/TypeAhead.h"
#include "kroui/controls/UI_TextField.h"

#include <boost/function.hpp>

#include <optional>
#include <vector>

namespace kroui::controls {

// A list of items over everything else in a window, until one is chosen or the user turns away. Opened by a pop-up or
// by a program's own menu button. While open it takes all keys: arrows, Page, Home and End go through the items, typed
// letters find one, Enter and Space choose, Escape and Tab close. It stays inside the window and scrolls when long. A
// searchable one has a field on top: what is typed goes there and leaves only the items that hold it.
class UI_Menu : public FloatingPanel {
public:
    struct Item {
        krocore::string16 text;
        bool enabled = true;
        bool separator = false;      // a line; can't be chosen
        krocore::string8 image = {}; // the name of a picture before the text
    };
    // Gets the number of the item chosen, -1 if none was; called once for each time the menu is opened, when it is
    // closed already; may release the menu.
    using ClosedHandler = boost::function<void(int item)>;

    // Before opening.
    void SetItems(std::vector<Item> items) { fItems = std::move(items); }
    // The item with the mark, under the pointer at first; -1: none.
    void SetMarkedItem(int item) { fMarked = item; }
    void SetFontSize(float size) { fFontSize = size; }
    // Who finds the items' pictures, and the size that each gets; none are drawn without.
    void SetImages(ImageSupplier supplier, Size size);
    void SetSearchable(bool searchable) { fIsSearchable = searchable; }
    // What has been typed into the field; null if the menu is not searchable or not open.
    UI_TextField* SearchField() const { return IsOpen() ? fSearchField.get() : nullptr; }
    // The press that opens the menu is still held, at this point of the window: its release chooses if it comes
    // elsewhere, or late.
    void SetHeldFrom(Point windowPoint) { fHeldFrom = windowPoint; }

    // Opens with the marked item over the middle of `anchor` (window coordinates) and its text `textInset` right of the
    // anchor's left edge; below the anchor if no item is marked. No effect without items or while open.
    void OpenOver(ui::UI_Window& window, const Rect& anchor, float textInset, ClosedHandler closed);
    // Opens below `anchor`, above it if there is more room.
    void OpenBelow(ui::UI_Window& window, const Rect& anchor, ClosedHandler closed);
    bool IsOpen() const { return UI_IsAttached(); }
    // Closes without a choice.
    void Close();

    // The item that Enter would choose; -1: none.
    int HighlightedItem() const { return fHighlighted; }
    // The part of an item that can be seen, in window coordinates; empty if it is scrolled away.
    Rect ItemRectInWindow(int item) const;
    void UI_Draw(limner::Limner* context) override;
    bool UI_DoMouseEvent(UI_Node* node, const ui::MouseEvent& event) override;
    bool UI_DoKeyEvent(const ui::KeyEvent& event) override;
    bool UI_DoTextEvent(const ui::TextEvent& event) override;
    bool UI_DoTimerNotify(long timerID) override;
    void UI_NodeChanged(NodeChange change) override;
    ui::AccessibleInfo UI_GetAccessibleInfo() const override;

protected:
    ~UI_Menu() override = default;

private:
    bool Prepare(ui::UI_Window& window, ClosedHandler closed);
    void Show(ui::UI_Window& window, const Rect& panel);
    float WidthOfItems(const limner::SupplierInterface& supplier) const;
    float RowHeight() const;
    float TextLeft() const;
    float HeaderHeight() const;
    float PanelHeight() const;
    void ShowSearchField(ui::UI_Window& window);
    void ReturnFocus();
    bool IsFiltered(int item) const;
    void FilterItems();
    void PlaceItems();
    bool DoSearchKey(const ui::KeyEvent& event);
    float ContentHeight() const { return fTops.back(); }
    float MostScroll() const;
    Rect ListArea() const;
    Rect RowRect(int item) const;
    Rect ArrowStrip(int direction) const; // empty if there is nothing more that way
    bool CanChoose(int item) const;
    int ItemAt(Point point) const;
    int Next(int item, int direction) const;
    int StepBy(int rows) const;
    void Highlight(int item);
    void HighlightByKey(int item);
    void HandleKey(ui::Key key);
    void Search(std::u16string_view typed);
    void Choose(int item);
    void Finish(int item);
    void PointAt(Point point);
    bool IsStillClicking(Point point) const;
    void ReleaseAt(Point point);
    void PressAt(Point point);
    void Wheel(float notches);
    void ScrollTo(float scroll);
    void ScrollToItem(int item);
    void SetAutoScroll(int direction);
    void DrawRow(limner::Limner& context, int item) const;
    void DrawNothingFound(limner::Limner& context) const;
    void DrawArrow(limner::Limner& context, int direction) const;

    std::vector<Item> fItems;
    std::vector<ImageSlot> fImages; // an item each; empty if there are none
    ImageSupplier fImageSupplier;
    Size fImageSize;
    boost::intrusive_ptr<UI_TextField> fSearchField;
    boost::intrusive_ptr<ui::UI_Node> fFocusBefore; // where the focus goes back to
    std::vector<float> fTops;                       // of each item from the top of the list, and the height of all
    ClosedHandler fClosed;
    TypeAhead fTypeAhead;
    Rect fAnchor; // of the owner, in the window
    std::optional<Point> fHeldFrom;
    Point fLastPoint;
    double fOpened = 0; // seconds of the node manager's clock
    float fFontSize = 12;
    float fScroll = 0;
    long fScrollTimer = 0;
    int fMarked = -1;
    int fHighlighted = -1;
    int fAutoScroll = 0; // -1 up, 1 down
    bool fIsSearchable = false;
};

} // namespace kroui::controls
