#pragma once

#include "kroui/ui/UI_Node.h"

#include <map>
#include <string>
#include <string_view>

namespace krotarnlio {

// Finds the controls of a layout by the identifiers that the script gives them. Owned by the layout root.
class UI_LioViewHolder {
public:
    // The control of the widget with the identifier; null if there is none. It lives as long as the root.
    kroui::ui::UI_Node* GetControl(std::string_view identifier) const;

    // For the one who makes the widgets; of two with the same identifier the first is kept and false returned.
    bool AddControl(std::string identifier, kroui::ui::UI_Node& control);

private:
    std::map<std::string, kroui::ui::UI_Node*, std::less<>> fControls;
};

} // namespace krotarnlio
