#include "krotarnlio/UI_LioViewHolder.h"

#include <utility>

namespace krotarnlio {

kroui::ui::UI_Node* UI_LioViewHolder::GetControl(std::string_view identifier) const {
    const auto found = fControls.find(identifier);
    return found != fControls.end() ? found->second : nullptr;
}

bool UI_LioViewHolder::AddControl(std::string identifier, kroui::ui::UI_Node& control) {
    return fControls.emplace(std::move(identifier), &control).second;
}

} // namespace krotarnlio
