#include "PictureToggleAdapter.h"

#include "AttributeTable.h"
#include "uit/lio/AttributeValues.h"
#include "uit/lio/PictureSupplier.h"

#include <boost/bind/bind.hpp>

namespace uit::lio {

using controls::UI_PictureToggleButton;
using orrin::any_regular_t;

struct PictureToggleAdapter::Table {
    using A = PictureToggleAdapter;
    using V = any_regular_t;

    static constexpr Attribute<A> kAttributes[] = {
        {{"on_image", AttributeKind::kFollows}, [](A& a, const V& v) { a.fOnImage = v.get<std::string>(); }},
        {{"off_image", AttributeKind::kFollows}, [](A& a, const V& v) { a.fOffImage = v.get<std::string>(); }},
        {{"width"}, [](A& a, const V& v) { a.fSize.width = LengthOf(v); }},
        {{"height"}, [](A& a, const V& v) { a.fSize.height = LengthOf(v); }},
        {{"name", AttributeKind::kFollows}, [](A& a, const V& v) { a.fButton->SetName(TextOf(v)); }},
        {{"bind", AttributeKind::kBound}, [](A& a, const V& v) { a.fButton->SetValue(BoolOf(v) ? 1 : 0); }},
    };
    static constexpr auto kRows = RowsOf(kAttributes);
    static constexpr int kBind = RowOf(kAttributes, "bind");
};

constinit const WidgetClass PictureToggleAdapter::kClass{"aud_picture_toggle_button", Table::kRows,
                                                         &CreateAdapter<PictureToggleAdapter>};

PictureToggleAdapter::PictureToggleAdapter(const WidgetContext& context)
    : PictureToggleAdapter(context, boost::intrusive_ptr<UI_PictureToggleButton>(new UI_PictureToggleButton)) {
}

PictureToggleAdapter::PictureToggleAdapter(const WidgetContext& context,
                                           const boost::intrusive_ptr<UI_PictureToggleButton>& button)
    : ControlAdapter(context, button, Table::kBind), fButton(button) {
    fButton->SetImageSupplier(MakePictureSupplier(context, *button));
    fButton->NotifyWhenChanged(boost::bind(&PictureToggleAdapter::OnChange, this, boost::placeholders::_1));
}

void PictureToggleAdapter::SetAttribute(int row, const any_regular_t& value) {
    Table::kAttributes[row].set(*this, value);
    if (row != Table::kBind) UpdatePicture();
}

void PictureToggleAdapter::UpdatePicture() {
    fButton->SetImageNames(fOnImage, fOffImage);
    fButton->SetPictureSize(fSize);
    LayoutChanged();
}

void PictureToggleAdapter::OnChange(kroui::controls::UI_ControlChangedMessage* /*message*/) {
    Write(Table::kBind, fButton->IsChecked());
}

} // namespace uit::lio
