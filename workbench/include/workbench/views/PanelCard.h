#pragma once

#include "workbench/session/PanelsLibrary.h"

#include <boost/signals2/connection.hpp>

namespace workbench {

// A panel on its ground, as large as the panel with all that it shows: a panel whose rows have become more may reach
// beyond its own frame. Without a panel a message stands in its place.
class PanelCard final : public kroui::ui::UI_Node {
public:
    // Null for none.
    void SetPanel(PanelPtr panel);
    const PanelPtr& Panel() const { return fPanel; }
    void SetMessage(std::u16string_view message);
    // What keeps the panel from being there, in lines; all of it is shown.
    void SetProblem(std::u16string_view problem);
    // The user has let go of everything: ends the gesture that a press on the ground of a script panel has begun.
    void ReleaseControls();
    // What goes wrong in the panel while it runs; empty if all is well.
    krocore::string16 PanelProblem() const;
    // On a window: corners are round. Off: the ground goes to the edges, as in a picture of the panel alone.
    void SetRounded(bool rounded) { fIsRounded = rounded; }
    // Called when the natural size is another.
    void SetListener(boost::function<void()> listener) { fListener = std::move(listener); }
    // Looks whether the panel has grown or shrunk. To be called often: panels don't always say so.
    void FollowPanel();

    kroui::Size UI_GetNaturalSize() const override;
    void UI_Draw(kroui::limner::Limner* limner) override;
    kroui::ui::AccessibleInfo UI_GetAccessibleInfo() const override;

private:
    kroui::Size MessageSize() const;

    PanelPtr fPanel;
    boost::signals2::scoped_connection fConnection;
    krocore::string16 fMessage;
    bool fIsProblem = false;
    boost::function<void()> fListener;
    kroui::Size fToldSize;
    bool fIsRounded = false;
};

} // namespace workbench
