#pragma once

#include "kroui/limner/Image.h"
#include "kroui/ui/UI_Node.h"
#include "orrin/any_regular.h"

#include <boost/function.hpp>
#include <boost/intrusive_ptr.hpp>
#include <boost/signals2/trackable.hpp>

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string_view>

// What joins the widgets of layout scripts to controls. The engine that runs the scripts (krotarnlio) finds a widget's
// class by its name, makes an adapter, hands it the attributes as values and listens to what the user does; an adapter
// knows its control and nothing of sheets. User-interface thread.
namespace uit::lio {

enum class AttributeKind : std::uint8_t {
    kConstant, // evaluated once
    kFollows,  // may name a cell ("@bounds"): set again whenever the cell changes
    kBound,    // names a cell that the widget both shows and writes
};

// One attribute that a widget understands. What a script gives beyond these and those of every widget is an error.
struct AttributeRow {
    std::string_view name;
    AttributeKind kind = AttributeKind::kConstant;
};

// What adapters get from the engine; lives as long as the adapter.
struct WidgetContext {
    const kroui::limner::SupplierInterface* supplier = nullptr; // null when nothing is to be drawn
    // A picture by its resource's name, the best one for so many pixels a unit; null if there is none.
    boost::function<kroui::limner::ImagePtr(std::string_view name, float scale)> image;
    // What the widget takes, or which of its children it shows, is another now. Laid out once, soon.
    boost::function<void()> layoutChanged;
};

// What a widget needs of the layout, in view units.
struct WidgetExtent {
    kroui::Size size;
    std::optional<float> colon;    // from its left to where labels end and fields begin; labels of a column align there
    std::optional<float> baseline; // from its top to its text's baseline; texts of a row align there
};

// Trackable: a control that outlives its adapter calls it no more, if it was bound with boost::bind.
class WidgetAdapter : public boost::signals2::trackable {
public:
    using Writer = boost::function<void(int row, const orrin::any_regular_t& value)>;

    virtual ~WidgetAdapter() = default;

    // An attribute's value: once, in the order of the class's rows, for each attribute that the script gives;
    // afterwards again for those that follow a cell or are bound to one. Throws std::invalid_argument, or orrin's type
    // errors, for a value that it cannot use; nothing has changed then.
    virtual void SetAttribute(int row, const orrin::any_regular_t& value) = 0;
    // The cell behind a bound row, for widgets that have to know which of them share one. Before the row is set.
    virtual void SetCell(int /*row*/, orrin::name_t /*cell*/) {}
    // Every attribute has been set for the first time. May make what depends on several of them.
    virtual void Complete() {}
    // The control; null for what has none. Made by now at the latest; the same from then on.
    virtual boost::intrusive_ptr<kroui::ui::UI_Node> GetNode() = 0;
    // What it takes at least. `width`: what it will be given across, if that is known already (texts wrap).
    virtual WidgetExtent Measure(std::optional<float> width) = 0;
    // Whether it takes the whole width of its column, or the whole height of its row, where the script says nothing.
    virtual bool StretchesAcross() const { return false; }
    // Its place in its parent's coordinates.
    virtual void Place(const kroui::Rect& frame) {
        if (const auto node = GetNode()) node->UI_SetFrame(frame);
    }
    // Whether the cell behind a bound row may be written (an invariant or a plan can forbid it); shown as disabled.
    virtual void SetWritable(int /*row*/, bool /*writable*/) {}
    // What a bound row goes back to when the user resets the control.
    virtual void SetDefault(int /*row*/, const orrin::any_regular_t& /*value*/) {}

    // Who is told of the user's changes to a bound row. Set once, before anything else. The value that is written comes
    // back through SetAttribute if the cell takes another one.
    void SetWriter(Writer writer) { fWriter = std::move(writer); }

protected:
    void Write(int row, const orrin::any_regular_t& value) {
        // What it leads to may do away with the widget.
        const Writer writer = fWriter;
        if (writer) writer(row, value);
    }

private:
    Writer fWriter;
};

// A kind of widget: a row in a factory's table. Lives as long as the process.
struct WidgetClass {
    std::string_view name;
    std::span<const AttributeRow> attributes;
    std::unique_ptr<WidgetAdapter> (*create)(const WidgetContext& context) = nullptr;
};

// The class of a widget's name, or null.
using AdapterFactoryProc = boost::function<const WidgetClass*(std::string_view widget)>;

// The toolkit's own widgets, those whose names begin with "aud_".
AdapterFactoryProc GetAdapterFactoryProc();

} // namespace uit::lio
