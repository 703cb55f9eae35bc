#pragma once

#include "kroui/limner/Limner.h"
#include "kroui/ui/UI_Node.h"
#include "kroui/utility/ResourceManager.h"

#include <boost/function.hpp>

#include <map>
#include <span>
#include <string>
#include <vector>

namespace kroui::ui {

// Nodes of an archive by id; plain pointers into the tree, valid while it lives.
using NamedNodes = std::map<krocore::string8, UI_Node*>;
// Makes the node that stands in the place of a custom one, or null to leave the place empty.
using CustomNodeFactory = boost::function<boost::intrusive_ptr<UI_Node>(const krocore::string16& className)>;

// Something wrong in an archive, for its author.
struct Diagnostic {
    std::string file;
    int line = 0;   // from 1
    int column = 0; // from 1, in bytes
    std::string message;

    std::string ToString() const; // "file:line:column: message"
};

// Reads layout archives into node trees. Errors never throw and never crash: what cannot be understood is left out and
// reported, a document that is no archive gives null.
class UI_NodeBuilder {
public:
    // Reads the archive resource of type "XML" named `resourceName` (case ignored). Null if there is none or it is no
    // archive. Faults go to the trace facility, level 1, category "UI_NodeBuilder".
    static boost::intrusive_ptr<UI_Node> LoadViewFromXML(const utility::ResourceManager& resources,
                                                         const limner::SupplierInterface* supplier,
                                                         const krocore::string16& resourceName, NamedNodes& namedNodes,
                                                         const CustomNodeFactory& customNodeFactory);

    // The same from bytes. `name` stands in the diagnostics, which are appended. At most kMostDiagnostics a document.
    static boost::intrusive_ptr<UI_Node> LoadView(std::span<const std::byte> bytes, const std::string& name,
                                                  NamedNodes& namedNodes, const CustomNodeFactory& customNodeFactory,
                                                  std::vector<Diagnostic>& diagnostics);

    // Bounds of what a panel can be; nodes beyond are left out and reported.
    static constexpr int kDeepestNode = 100;
    static constexpr int kMostNodes = 10'000;
    static constexpr std::size_t kMostDiagnostics = 100;
};

} // namespace kroui::ui
