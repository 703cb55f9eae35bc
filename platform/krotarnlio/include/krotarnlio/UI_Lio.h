#pragma once

#include "orrin/sheet.h"
#include "orrin/virtual_machine.h"
#include "uit/lio/WidgetAdapter.h"

#include <boost/function.hpp>

#include <cstdint>
#include <iosfwd>
#include <memory>
#include <string>
#include <vector>

namespace krotarnlio {

class UI_KROLioRoot;

// Reads one script: a sheet into a sheet object, or a layout into a tree of widgets bound to a sheet. Used once, then
// thrown away; the sheet and the root live on. User-interface thread.
class UI_Lio {
public:
    // `supplier` measures and draws the widgets; null where nothing is drawn (a sheet). `parent`: a
    // node whose supplier serves when there is no other, or null.
    UI_Lio(const kroui::limner::SupplierInterface* supplier, kroui::ui::UI_Node* parent);
    ~UI_Lio();
    UI_Lio(const UI_Lio&) = delete;
    UI_Lio& operator=(const UI_Lio&) = delete;

    // Reads a sheet script into `sheet`, on which it is meant to be the first, and returns it. An empty script leaves
    // an empty sheet. `description` stands in front of messages. Throws orrin::error_t; the sheet is then as it was.
    std::shared_ptr<orrin::sheet_t> ParseTarnScript(std::istream& script, std::shared_ptr<orrin::sheet_t> sheet,
                                                    const std::string& description);
    // Reads a layout script, makes its widgets, binds them to the sheet's cells and shows their values. An empty script
    // gives a root without widgets. The caller owns the root and frees it with Release. Throws orrin::error_t for a
    // script that can't be read, a widget, attribute or cell that is not known, or a value that a widget can't use;
    // nothing is left behind then.
    UI_KROLioRoot* ParseLioScript(std::istream& script, std::shared_ptr<orrin::sheet_t> sheet,
                                  const std::string& description = "layout description");
    // Null is allowed.
    static void Release(const UI_KROLioRoot* root);

    // The machine that evaluates the layout's expressions: whoever reads a layout installs functions and variables.
    orrin::virtual_machine_t& GetLayoutEngineVM() { return fMachine; }
    // Gives the bytes of a resource (a picture) by its name; empty for none. A picture NAME or NAME.png may have one
    // with two pixels a unit beside it, NAME_2X or NAME_2X.png.
    using ResourceProvider = boost::function<std::vector<std::uint8_t>(orrin::name_t)>;
    void SetResourceProvider(ResourceProvider provider) { fResources = std::move(provider); }
    // Widgets beyond the engine's own.
    void SetClientWidgetAdpaterFactory(uit::lio::AdapterFactoryProc factory) { fClientWidgets = std::move(factory); }

private:
    const kroui::limner::SupplierInterface* fSupplier;
    orrin::virtual_machine_t fMachine;
    ResourceProvider fResources;
    uit::lio::AdapterFactoryProc fClientWidgets;
};

} // namespace krotarnlio
