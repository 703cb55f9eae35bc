#include "qocui/module/ComponentUIFactory.h"

#include "qocui/module/ComponentUIFactoryRegistrar.h"

namespace qocui::module {

ComponentUIFactory::ComponentUIFactory() = default;
ComponentUIFactory::~ComponentUIFactory() = default;

ComponentUIFactory& ComponentUIFactory::GetInstance() {
    static ComponentUIFactory sFactory;
    return sFactory;
}

void ComponentUIFactory::RegisterFactoryFunction(const krocore::string16& componentID, Creator creator) {
    if (creator.empty()) return;
    fCreators.emplace(componentID, std::move(creator));
}

boost::intrusive_ptr<controls::AudioComponentEditorViewBase>
ComponentUIFactory::CreateViewForComponent(boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> filter) const {
    if (!filter) return nullptr;
    const auto entry = fCreators.find(filter->GetComponentID());
    return entry != fCreators.end() ? entry->second(filter) : nullptr;
}

ComponentUIFactoryRegistrar::ComponentUIFactoryRegistrar(const krocore::string16& componentID,
                                                         ComponentUIFactory::Creator creator) {
    ComponentUIFactory::GetInstance().RegisterFactoryFunction(componentID, std::move(creator));
}

} // namespace qocui::module
