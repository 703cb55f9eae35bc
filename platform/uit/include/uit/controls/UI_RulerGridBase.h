#pragma once

#include "kroui/controls/UI_InteractiveControlView.h"
#include "kroui/utility/RulerBase.h"
#include "uit/CacheSurface.h"

#include <boost/intrusive_ptr.hpp>

#include <optional>

namespace uit::controls {

// A picture over two axes: a horizontal ruler below, a vertical one at the left, and between them a content rectangle
// with a grid at the rulers' marks. Ground, grid and rulers are drawn from a cache. What is shown is a part of the
// whole range; with zooming rulers the user zooms by wheel and pans by drag on a ruler, and a double-click on a ruler
// shows all of that axis. Subclasses draw over the grid with DrawContent. User-interface thread.
class UI_RulerGridBase : public kroui::controls::UI_InteractiveControlView {
public:
    using RulerPtr = boost::intrusive_ptr<kroui::utility::RulerBase>;
    // A place on the two axes, in the axes' own units.
    struct CoordinatePair {
        double horizontal = 0;
        double vertical = 0;
        friend bool operator==(const CoordinatePair&, const CoordinatePair&) = default;
    };

    // Both rulers; neither may be null. They are shared with nobody else who changes them.
    UI_RulerGridBase(RulerPtr horizontal, RulerPtr vertical);

    // Takes other rulers in place of these; the part shown stays as it is.
    void SetRulers(RulerPtr horizontal, RulerPtr vertical);
    // The whole range, and the bounds of zooming: left, right, top, bottom. What showed everything shows everything
    // again, a part that was shown is held within the new bounds. Values that are not finite, or an axis of no length,
    // leave that axis as it is. Calls no virtual operation and so tells no subclass.
    void SetRanges(double horizontalStart, double horizontalEnd, double verticalStart, double verticalEnd);
    // The part to be shown: left, right, top, bottom; every zoom and pan by the user comes through here. Held within
    // the bounds; values that are not finite leave that axis as it is.
    virtual void SetCurrentRange(double horizontalStart, double horizontalEnd, double verticalStart,
                                 double verticalEnd);
    // The part shown: left and right, top and bottom.
    double GetHorizontalStart() const { return fCurrent[0]; }
    double GetHorizontalEnd() const { return fCurrent[1]; }
    double GetVerticalStart() const { return fCurrent[2]; }
    double GetVerticalEnd() const { return fCurrent[3]; }
    // The whole: left, right, top, bottom.
    double GetBound(int which) const { return fBounds[which]; }

    void SetRulersSupportZooming(bool supports) { fRulersSupportZooming = supports; }

    void SetBackgroundColor(const kroui::limner::Color& color);
    // Without one the theme's ruler background (kColorRulerBackground), which follows a change of theme.
    void SetRulerBackgroundColor(const kroui::limner::Color& color);
    void SetGridColor(const kroui::limner::Color& color);
    // Units at the axes: at the right end below, at the top at the left.
    void SetHorizontalLabel1(std::u16string_view text);
    void SetVerticalLabel1(std::u16string_view text);
    const krocore::string16& GetHorizontalLabel1() const { return fHorizontalLabel; }
    const krocore::string16& GetVerticalLabel1() const { return fVerticalLabel; }
    // Grid lines at the minor marks too, fainter.
    void SetDrawHorizontalMinorTicks(bool draw);
    void SetDrawVerticalMinorTicks(bool draw);

    // Where the content lies, in the node's coordinates; whole pixels, empty when there is no room.
    kroui::Rect GetContentRect() const { return fContent; }
    // The size at which the content has this one.
    kroui::Size SizeForContent(kroui::Size content) const;
    kroui::Point GetPixelForCoordinatePair(const CoordinatePair& pair) const;
    CoordinatePair GetCoordinatePairForPixel(kroui::Point pixel) const;
    // The graph stays black in both themes, so what is drawn on it takes its colours from the dark one.
    static kroui::limner::Color ContentColor(int role) { return kroui::ui::Theme::Dark().GetColor(role); }

    void UI_Draw(kroui::limner::Limner* limner) override;
    // Wheel and drag on the rulers, Ctrl and wheel over the content.
    bool UI_DoMouseEvent(UI_Node* node, const kroui::ui::MouseEvent& event) override;
    kroui::ui::Cursor UI_GetCursor(kroui::Point point) const override;
    void UI_SizeChanged(const kroui::RectT<float>& rect) override;
    void UI_NodeChanged(NodeChange change) override;

protected:
    ~UI_RulerGridBase() override;

    // Draws over the grid, clipped to the content rectangle (points and labels that reach out of it included by
    // `DrawOverContent`, which is clipped to the node).
    virtual void DrawContent(kroui::limner::Limner& limner);
    virtual void DrawOverContent(kroui::limner::Limner& limner);

    kroui::utility::RulerBase& HorizontalRuler() const { return *fHorizontal; }
    kroui::utility::RulerBase& VerticalRuler() const { return *fVertical; }
    // The grid, the rulers or the place of the content have changed.
    void InvalidateGrid();
    // Another number whenever values have come to lie at other pixels.
    unsigned GetAxesVersion() const { return fAxesVersion; }
    // Ends the drag of a ruler where it began; whether there was one.
    bool CancelPan();

private:
    enum Axis : int { kNoAxis = -1, kHorizontalAxis = 0, kVerticalAxis = 1 };
    // First and last value of an axis.
    struct Range {
        double first;
        double last;
        double Length() const { return last - first; }
    };
    // A drag of a ruler: what was shown when it began, and where.
    struct Pan {
        Axis axis = kNoAxis;
        kroui::Point press;
        Range shown{};
    };

    kroui::utility::RulerBase& Ruler(Axis axis) const { return axis == kHorizontalAxis ? *fHorizontal : *fVertical; }
    Range Shown(Axis axis) const { return {fCurrent[2 * axis], fCurrent[2 * axis + 1]}; }
    Range Bounds(Axis axis) const { return {fBounds[2 * axis], fBounds[2 * axis + 1]}; }
    bool SetShown(Axis axis, Range range);
    void SetBounds(Axis axis, Range range);
    void Show(Axis axis, Range range); // as the user's doing
    Range HeldOnRuler(Axis axis, Range fractions) const;
    Axis RulerAt(kroui::Point point) const;
    double FractionAt(Axis axis, kroui::Point point) const;

    void AxesChanged();
    kroui::Rect ContentIn(kroui::Size size) const;
    void UpdateContent();
    bool Wheel(const kroui::ui::MouseEvent& event);
    Range Zoomed(Axis axis, double factor, kroui::Point about) const;
    bool PressRuler(const kroui::ui::MouseEvent& event);
    void DragRuler(kroui::Point point);

    kroui::Rect LabelRect(Axis axis) const;
    void DrawGrid(kroui::limner::Limner& limner) const;
    void DrawGridLines(kroui::limner::Limner& limner, Axis axis) const;
    void DrawRulers(kroui::limner::Limner& limner) const;

    RulerPtr fHorizontal;
    RulerPtr fVertical;
    double fBounds[4] = {0, 1, 1, 0};
    double fCurrent[4] = {0, 1, 1, 0};
    kroui::Rect fContent;
    unsigned fAxesVersion = 0;
    Pan fPan;
    CacheSurface fCache;
    kroui::limner::Color fBackground{0, 0, 0, 1};
    std::optional<kroui::limner::Color> fRulerBackground;
    kroui::limner::Color fGridColor{0.25F, 0.25F, 0.25F, 1};
    krocore::string16 fHorizontalLabel;
    krocore::string16 fVerticalLabel;
    bool fRulersSupportZooming = false;
    bool fDrawHorizontalMinorTicks = false;
    bool fDrawVerticalMinorTicks = false;
};

} // namespace uit::controls
