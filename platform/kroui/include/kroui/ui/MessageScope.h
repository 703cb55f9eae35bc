#pragma once

namespace kroui::ui {

class UI_NodeBase;

// A message is being handled: an event, a timer, a notification, a change of the tree. Whoever handles one may let go
// of any node, the one that sends it and the view that listens included: a node whose last reference goes while a scope
// lives is kept until the outermost one ends. So no handler finds itself, or what it belongs to, gone when it goes on.
// User-interface thread only; scopes nest.
class MessageScope {
public:
    MessageScope() noexcept;
    ~MessageScope();
    MessageScope(const MessageScope&) = delete;
    MessageScope& operator=(const MessageScope&) = delete;

    // Takes over the last reference to a node if a scope lives; false if it is to be released now.
    static bool TakesLastReference(const UI_NodeBase& node) noexcept;
};

} // namespace kroui::ui
