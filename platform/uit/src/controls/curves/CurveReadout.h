#pragma once

#include "uit/controls/UI_RulerGridBase.h"

namespace uit::controls {

// A text over a graph that tells a position: beside the point it belongs to, or, for the pointer's own place, in a
// corner where the pointer is not. Repaints what of the graph it covers and uncovers. Owned by the graph.
class CurveReadout {
public:
    explicit CurveReadout(UI_RulerGridBase& graph) : fGraph(graph) {}

    // Within the content; nothing while the graph has no drawing supplier.
    void ShowBeside(kroui::Point point, const krocore::string16& text);
    void ShowForPointer(kroui::Point pointer, const krocore::string16& text);
    void Hide() { Show({}, {}); }

    void Draw(kroui::limner::Limner& limner) const;

private:
    float WidthOf(const krocore::string16& text) const;
    void Show(const krocore::string16& text, const kroui::Rect& rect);

    UI_RulerGridBase& fGraph;
    krocore::string16 fText;
    kroui::Rect fRect;
};

} // namespace uit::controls
