#include "ButtonAdapter.h"

#include "ToggleButtonAdapter.h"
#include "uit/lio/AttributeValues.h"

#include "kroui/controls/UI_PictureButton.h"
#include "kroui/controls/UI_PictureTextButton.h"
#include "uit/lio/PictureSupplier.h"

#include <boost/bind/bind.hpp>

#include <utility>

namespace krotarnlio {

using kroui::controls::UI_Button;
using kroui::controls::UI_PictureButton;
using kroui::controls::UI_PictureTextButton;
using kroui::controls::UI_TextButton;
using uit::lio::AttributeKind;
using uit::lio::AttributeRow;
using uit::lio::TextOf;

namespace {

enum Row { kName, kImage, kButtonStyle, kValue, kBind };
constexpr AttributeRow kRows[] = {{"name", AttributeKind::kFollows},
                                  {"image"},
                                  {"button_style"},
                                  {"value", AttributeKind::kFollows},
                                  {"bind", AttributeKind::kBound}};

} // namespace

std::span<const AttributeRow> ButtonAdapter::Rows() {
    return kRows;
}

void ButtonAdapter::SetAttribute(int row, const orrin::any_regular_t& value) {
    switch (row) {
    case kName: return SetName(TextOf(value));
    case kImage: fImage = value.get<std::string>(); break;
    case kButtonStyle: fStyle = ButtonStyleOf(value); break;
    case kValue: fValue = value; break;
    default:
        if (fValue.empty()) value.get<bool>();
        fCell = value;
        ShowCell();
        break;
    }
}

void ButtonAdapter::SetName(const krocore::string16& name) {
    if (fName == name) return;
    fName = name;
    if (auto* const text = dynamic_cast<UI_TextButton*>(fControl.get())) text->SetText(fName);
    if (auto* const both = dynamic_cast<UI_PictureTextButton*>(fControl.get())) both->SetText(fName);
    fContext.layoutChanged();
}

void ButtonAdapter::Complete() {
    if (fImage.empty())
        fControl = MakeTextButton();
    else if (fName.empty())
        fControl = MakePictureButton<UI_PictureButton>();
    else
        fControl = MakePictureButton<UI_PictureTextButton>();
    fControl->SetSpringLoaded(!fValue.empty() || fCell.empty());
    SetName(std::exchange(fName, {}));
    ShowCell();
    fControl->NotifyWhenChanged(boost::bind(&ButtonAdapter::OnChanged, this));
}

boost::intrusive_ptr<UI_Button> ButtonAdapter::MakeTextButton() const {
    boost::intrusive_ptr<UI_TextButton> button(new UI_TextButton);
    button->SetButtonStyle(fStyle);
    return button;
}

template <class PictureButton>
boost::intrusive_ptr<PictureButton> ButtonAdapter::MakePictureButton() const {
    boost::intrusive_ptr<PictureButton> button(new PictureButton);
    button->SetImageSupplier(uit::lio::MakePictureSupplier(fContext, *button));
    button->SetImageName(fImage);
    return button;
}

void ButtonAdapter::ShowCell() {
    if (!fControl || !fValue.empty()) return;
    if (const bool* const isOn = fCell.get_if<bool>()) fControl->SetValue(*isOn ? 1 : 0);
}

boost::intrusive_ptr<kroui::ui::UI_Node> ButtonAdapter::GetNode() {
    return fControl;
}

uit::lio::WidgetExtent ButtonAdapter::Measure(std::optional<float> /*width*/) {
    uit::lio::WidgetExtent extent;
    extent.size = fControl->UI_GetNaturalSize();
    if (const float baseline = fControl->UI_GetBaseline(); baseline >= 0) extent.baseline = baseline;
    return extent;
}

void ButtonAdapter::SetWritable(int /*row*/, bool writable) {
    fControl->SetEnabled(writable);
}

void ButtonAdapter::OnChanged() {
    Write(kBind, fValue.empty() ? orrin::any_regular_t(fControl->IsChecked()) : fValue);
}

} // namespace krotarnlio
