#pragma once

#include "kroui/ui/UI_Node.h"

#include <boost/function.hpp>

#include <string_view>
#include <vector>

namespace kroui::ui {

// The node classes that archives can name, by their fully qualified class name. Filled by static objects, one a class;
// read-only afterwards.
class AdapterRegistry {
public:
    using Creator = boost::intrusive_ptr<UI_Node> (*)();

    static AdapterRegistry& Get();

    void Register(std::string_view className, Creator creator);
    // A new node of the class; null if no such class is known.
    boost::intrusive_ptr<UI_Node> Create(std::string_view className) const;
    std::vector<std::string_view> ClassNames() const; // ascending

private:
    struct Entry {
        std::string_view className;
        Creator creator;
    };
    std::vector<Entry> fEntries; // ascending by name
};

// Registers a class: static const AdapterRegistrar<UI_Checkbox> sRegistrar("kroui::controls::UI_Checkbox");
template <class Node>
class AdapterRegistrar {
public:
    explicit AdapterRegistrar(std::string_view className) {
        AdapterRegistry::Get().Register(className, [] { return boost::intrusive_ptr<UI_Node>(new Node); });
    }
};

} // namespace kroui::ui
