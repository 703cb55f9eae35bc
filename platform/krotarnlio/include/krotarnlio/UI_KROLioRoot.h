#pragma once

#include "krotarnlio/UI_LioViewHolder.h"
#include "kroui/ui/Signal.h"
#include "orrin/sheet.h"

#include <boost/intrusive_ptr.hpp>

#include <memory>

namespace krotarnlio {

// The widgets of one layout script, bound to a sheet: the user's changes are written to the cells and the sheet is
// updated; cells that change are shown. Owned by whoever read the script; the sheet outlives it by sharing. Its node
// may stay in a tree after it has gone, but does nothing any more. User-interface thread.
class UI_KROLioRoot {
public:
    virtual ~UI_KROLioRoot() = default;

    // The node that holds all widgets; never null.
    virtual kroui::ui::UI_Node* GetTopNode() const = 0;
    virtual UI_LioViewHolder& GetViewHolder() = 0;

    // Measures and places everything. Raises the size change if the top node's size is another then.
    virtual void Layout() = 0;
    // Shows what the sheet's cells hold now; lays out again if a part has come or gone.
    virtual void Refresh() = 0;
    // What the cells hold now is what the widgets go back to when the user resets them.
    virtual void TakeDefaults() = 0;

    // Raised once a pass when the top node has got another size.
    using SizeChangedSignal = kroui::ui::Signal<>;
    SizeChangedSignal& GetSizeChangedSignal() { return fSizeChanged; }

protected:
    void RaiseSizeChanged() { fSizeChanged(); }

private:
    SizeChangedSignal fSizeChanged;
};

} // namespace krotarnlio
