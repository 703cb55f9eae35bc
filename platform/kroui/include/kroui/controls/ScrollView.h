#pragma once

#include "kroui/controls/ScrollBar.h"

namespace kroui::controls {

// A place that shows a part of a document larger than itself. The document is one node with a size of its own; a
// smaller one stands at the left top, or in the middle. The wheel, where no control uses it, scrolls.
class ScrollView final : public ui::UI_Node {
public:
    ScrollView();

    // Null for none.
    void SetDocument(boost::intrusive_ptr<ui::UI_Node> document);
    // Puts a document that is smaller than the place in its middle.
    void SetCentred(bool centred) { fIsCentred = centred; }
    // The document has another size.
    void DocumentResized() { Arrange(); }

    Point Offset() const { return fOffset; }
    void ScrollTo(Point offset);
    // Scrolls as little as shows the rectangle of the document.
    void Reveal(const Rect& rect);

    void UI_Reveal(const Rect& rect) override;
    bool UI_ClipsChildren() const override { return true; }
    void UI_SizeChanged(const RectT<float>& rect) override;
    bool UI_DoMouseEvent(ui::UI_Node* node, const ui::MouseEvent& event) override;

private:
    Size DocumentSize() const;
    void Arrange();
    bool ScrollByWheel(const ui::MouseEvent& event);

    boost::intrusive_ptr<ui::UI_Node> fDocument;
    boost::intrusive_ptr<ScrollBar> fVertical;
    boost::intrusive_ptr<ScrollBar> fHorizontal;
    Point fOffset;
    bool fIsCentred = false;
};

} // namespace kroui::controls
