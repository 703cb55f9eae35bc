#pragma once

#include "workbench/views/ScrollBar.h"

namespace workbench {

// A place that shows a part of a document larger than itself. The document is one node with a size of its own; a
// smaller one stands at the left top, or in the middle. The wheel, where no control uses it, scrolls.
class ScrollView final : public kroui::ui::UI_Node {
public:
    ScrollView();

    // Null for none.
    void SetDocument(boost::intrusive_ptr<kroui::ui::UI_Node> document);
    // Puts a document that is smaller than the place in its middle.
    void SetCentred(bool centred) { fIsCentred = centred; }
    // The document has another size.
    void DocumentResized() { Arrange(); }

    kroui::Point Offset() const { return fOffset; }
    void ScrollTo(kroui::Point offset);
    // Scrolls as little as shows the rectangle of the document.
    void Reveal(const kroui::Rect& rect);

    bool UI_ClipsChildren() const override { return true; }
    void UI_SizeChanged(const kroui::RectT<float>& rect) override;
    bool UI_DoMouseEvent(kroui::ui::UI_Node* node, const kroui::ui::MouseEvent& event) override;

private:
    kroui::Size DocumentSize() const;
    void Arrange();
    bool ScrollByWheel(const kroui::ui::MouseEvent& event);

    boost::intrusive_ptr<kroui::ui::UI_Node> fDocument;
    boost::intrusive_ptr<ScrollBar> fVertical;
    boost::intrusive_ptr<ScrollBar> fHorizontal;
    kroui::Point fOffset;
    bool fIsCentred = false;
};

} // namespace workbench
