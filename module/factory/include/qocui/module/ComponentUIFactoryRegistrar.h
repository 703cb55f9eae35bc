#pragma once

#include "qocui/module/ComponentUIFactory.h"

namespace qocui::module {

// Registers one creator when it is constructed; entries are never removed.
class QOCUI_API ComponentUIFactoryRegistrar {
public:
    ComponentUIFactoryRegistrar(const krocore::string16& componentID, ComponentUIFactory::Creator creator);
};

} // namespace qocui::module
