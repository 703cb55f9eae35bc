#pragma once

#include "qocui/module/Export.h"

namespace kroui::limner {
class SupplierInterface;
}

namespace qocui::module {

// Keeps the library initialised for as long as one of these lives: for owners that don't know of each other, such as
// several plug-in panels in one program, opened and closed in any order. Each owner holds a session from before its
// first view until after its last one.
//
// The first session calls Initialize with a supplier that all sessions share, the last one calls Terminate and destroys
// that supplier. In a program that has called Initialize itself, sessions use what they find and end nothing; the
// program calls Terminate after the last of them. User-interface thread only.
class QOCUI_API Session {
public:
    Session();
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    // What the views draw through, and the owner's windows; valid until the last session ends.
    const kroui::limner::SupplierInterface& Supplier() const;
};

} // namespace qocui::module
