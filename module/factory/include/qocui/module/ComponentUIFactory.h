#pragma once

#include "qocui/controls/AudioComponentEditorViewBase.h"
#include "qocui/module/Export.h"

#include <boost/function.hpp>

#include <map>

namespace qocui::module {

// Makes the editor view for an effect: the only way in which a host gets one. The table from component identifier to
// creator is filled while the library is loaded and only read afterwards. Look-ups on the user-interface thread.
class QOCUI_API ComponentUIFactory {
public:
    using Creator = boost::function<boost::intrusive_ptr<controls::AudioComponentEditorViewBase>(
        boost::intrusive_ptr<kroaudiofilterhost::AudioFilter>)>;

    static ComponentUIFactory& GetInstance();

    ComponentUIFactory(const ComponentUIFactory&) = delete;
    ComponentUIFactory& operator=(const ComponentUIFactory&) = delete;

    // The first creator of an identifier stays; an empty one is not kept.
    void RegisterFactoryFunction(const krocore::string16& componentID, Creator creator);

    // A finished view around the filter; null for a null filter and for a component without an editor here. What a
    // creator throws passes on.
    boost::intrusive_ptr<controls::AudioComponentEditorViewBase>
    CreateViewForComponent(boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> filter) const;

private:
    ComponentUIFactory();
    ~ComponentUIFactory();

    std::map<krocore::string16, Creator> fCreators;
};

} // namespace qocui::module
