#pragma once

#include "krocore/String.h"
#include "krocore/utility/RefCountedObject.h"
#include "kroui/ui/MessageScope.h"

#include <cstdint>
#include <string_view>

namespace kroui::ui {

// What tells one node from another: its id, the archive class it stands for, and its state flags.
class UI_NodeBase : public krocore::utility::RefCountedObject {
public:
    // The id under which archives, scripts and tests find the node; empty for an anonymous one.
    void UI_SetID(std::string_view id) { fID = id; }
    const krocore::string8& UI_GetID() const { return fID; }

    // The class name that an archive gave a custom node; empty for all others.
    void UI_SetArchiveClassName(std::string_view name) { fArchiveClassName = name; }
    const krocore::string8& UI_GetArchiveClassName() const { return fArchiveClassName; }

    // State flags; setting combines, clearing takes away. A node that is to be told of presses on its background gets
    // those on the containers, texts and pictures in it that nobody takes as if they had been aimed at itself.
    static constexpr std::uint32_t kStateWantsKeyboardFocus = 1;
    static constexpr std::uint32_t kStateTellBackgroundPresses = 16;
    void UI_SetStateFlags(std::uint32_t flags) { fStateFlags |= flags; }
    std::uint32_t UI_GetStateFlags() const { return fStateFlags; }

private:
    krocore::string8 fID;
    krocore::string8 fArchiveClassName;
    std::uint32_t fStateFlags = 0;
};

// For boost::intrusive_ptr, in place of the base's: a node lives on while a message is being handled.
inline void intrusive_ptr_release(const UI_NodeBase* node) noexcept {
    const bool isLast = node->ReferenceCount() == 1;
    if (!isLast || !MessageScope::TakesLastReference(*node)) node->ReleaseReference();
}

} // namespace kroui::ui
