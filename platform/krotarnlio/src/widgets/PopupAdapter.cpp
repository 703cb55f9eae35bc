#include "PopupAdapter.h"

#include "uit/lio/AttributeValues.h"

#include "uit/lio/PictureSupplier.h"

#include <boost/bind/bind.hpp>

#include <algorithm>
#include <utility>

namespace krotarnlio {

using uit::lio::AttributeKind;
using uit::lio::AttributeRow;
using uit::lio::EndsWithColon;
using uit::lio::TextOf;
using uit::lio::WholeNumberWithin;

namespace {

enum Row { kImageWidth, kImageHeight, kItems, kBind, kName, kCustomItem, kSearchable, kMaximumWidth };
constexpr AttributeRow kRows[] = {{"iconpopup_width"},
                                  {"iconpopup_height"},
                                  {"items", AttributeKind::kFollows},
                                  {"bind", AttributeKind::kBound},
                                  {"name", AttributeKind::kFollows},
                                  {"include_custom_item"},
                                  {"is_searchable"},
                                  {"popup_maximum_width_chars"}};

constexpr unsigned kLargestImage = 256;
constexpr unsigned kMostCharacters = 100;

} // namespace

PopupAdapter::PopupAdapter(const uit::lio::WidgetContext& context)
    : fContext(context), fPopup(new kroui::controls::UI_Popup) {
    fPopup->NotifyWhenChanged(boost::bind(&PopupAdapter::OnChanged, this));
}

std::span<const AttributeRow> PopupAdapter::Rows() {
    return kRows;
}

void PopupAdapter::SetAttribute(int row, const orrin::any_regular_t& value) {
    switch (row) {
    case kItems: return SetItems(ItemsOf(value));
    case kBind:
        fCell = value;
        fPopup->SetValue(FindItem(fItems, fCell));
        break;
    case kName: return SetName(TextOf(value));
    case kCustomItem: fPopup->SetIncludesCustomItem(value.get<bool>()); break;
    case kImageWidth: fImageSize.width = static_cast<float>(WholeNumberWithin(value, 0, kLargestImage)); break;
    case kImageHeight: fImageSize.height = static_cast<float>(WholeNumberWithin(value, 0, kLargestImage)); break;
    case kSearchable: fPopup->SetSearchable(value.get<bool>()); break;
    default:
        fPopup->SetMaximumWidthCharacters(static_cast<unsigned>(WholeNumberWithin(value, 0, kMostCharacters)));
        break;
    }
}

// The label is there from the beginning or never.
void PopupAdapter::SetName(krocore::string16 name) {
    if (fField && name == fField->Text()) return;
    fPopup->SetName(name);
    if (fField)
        fField->SetText(std::move(name));
    else
        fField.reset(new LabelledField(std::move(name), fPopup));
    fContext.layoutChanged();
}

void PopupAdapter::SetItems(std::vector<WidgetItem> items) {
    fItems = std::move(items);
    ShowItems();
    fPopup->SetValue(FindItem(fItems, fCell));
    fContext.layoutChanged();
}

void PopupAdapter::ShowItems() {
    fPopup->DeleteAllItems();
    for (const WidgetItem& item : fItems) {
        const int index = fPopup->GetItemCount();
        if (item.isSeparator)
            fPopup->AddSeparator();
        else
            fPopup->AddItem(item.name);
        if (!item.isEnabled) fPopup->SetItemEnabled(index, false);
    }
    SetImages();
}

void PopupAdapter::SetImages() {
    const bool hasImages = std::ranges::any_of(fItems, [](const WidgetItem& item) { return !item.image.empty(); });
    if (!hasImages) return;
    fPopup->SetImages(uit::lio::MakePictureSupplier(fContext, *fPopup), fImageSize);
    for (std::size_t i = 0; i < fItems.size(); ++i)
        fPopup->SetItemImage(static_cast<int>(i), fItems[i].image);
}

boost::intrusive_ptr<kroui::ui::UI_Node> PopupAdapter::GetNode() {
    if (fField) return fField;
    return fPopup;
}

uit::lio::WidgetExtent PopupAdapter::Measure(std::optional<float> /*width*/) {
    uit::lio::WidgetExtent extent;
    extent.size = GetNode()->UI_GetNaturalSize();
    extent.baseline = fPopup->UI_GetBaseline();
    if (fField && EndsWithColon(fField->Text())) extent.colon = fField->LabelWidth();
    return extent;
}

void PopupAdapter::SetWritable(int /*row*/, bool writable) {
    if (fField)
        fField->SetEnabled(writable);
    else
        fPopup->SetEnabled(writable);
}

void PopupAdapter::OnChanged() {
    const int item = fPopup->GetValue();
    if (item >= 0) Write(kBind, fItems[static_cast<std::size_t>(item)].value);
}

} // namespace krotarnlio
