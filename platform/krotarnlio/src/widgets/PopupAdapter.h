#pragma once

#include "LabelledField.h"
#include "WidgetItems.h"

#include "kroui/controls/UI_Popup.h"
#include "uit/lio/WidgetAdapter.h"

namespace krotarnlio {

// A choice from a list that opens: "popup".
//   items                        the choices, see ItemsOf; may be a cell
//   bind                         the cell with the chosen item's value
//   name                         a label in front; one that ends with a colon is aligned there
//   include_custom_item          whether a value that no item has is shown as "Custom"; otherwise nothing is shown
//   iconpopup_width, iconpopup_height   the size of the items' pictures, 16 if not given
//   is_searchable                whether the open list has a field that leaves only what is typed
//   popup_maximum_width_chars    the characters that it is wide at most; longer items are shortened
class PopupAdapter final : public uit::lio::WidgetAdapter {
public:
    explicit PopupAdapter(const uit::lio::WidgetContext& context);
    static std::span<const uit::lio::AttributeRow> Rows();

    void SetAttribute(int row, const orrin::any_regular_t& value) override;
    boost::intrusive_ptr<kroui::ui::UI_Node> GetNode() override;
    uit::lio::WidgetExtent Measure(std::optional<float> width) override;
    void SetWritable(int row, bool writable) override;

private:
    void SetName(krocore::string16 name);
    void SetItems(std::vector<WidgetItem> items);
    void ShowItems();
    void SetImages();
    void OnChanged();

    const uit::lio::WidgetContext& fContext;
    const boost::intrusive_ptr<kroui::controls::UI_Popup> fPopup;
    boost::intrusive_ptr<LabelledField> fField; // if there is a label
    std::vector<WidgetItem> fItems;
    orrin::any_regular_t fCell;
    kroui::Size fImageSize{16, 16};
};

} // namespace krotarnlio
