#include "kroui/ui/MessageScope.h"

#include "kroui/ui/UI_NodeManager.h"

namespace kroui::ui {

MessageScope::MessageScope() noexcept {
    UI_NodeManager::Get().BeginMessage();
}

MessageScope::~MessageScope() {
    UI_NodeManager::Get().EndMessage();
}

bool MessageScope::TakesLastReference(const UI_NodeBase& node) noexcept {
    return UI_NodeManager::Get().TakesLastReference(node);
}

} // namespace kroui::ui
