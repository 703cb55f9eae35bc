#pragma once

#include "krocore/String.h"
#include "kroui/controls/UI_TextButton.h"
#include "uit/lio/WidgetAdapter.h"

#include <string>

namespace krotarnlio {

// "button".
//   name          its text
//   image         the name of a picture's resource; with or without a text
//   button_style  as that of a toggle button; of a button without a picture
//   value         what a click sets the cell to; without one the cell is a bool, which a click turns over, and the
//                 button stays down while it is true
//   bind          the cell
class ButtonAdapter final : public uit::lio::WidgetAdapter {
public:
    explicit ButtonAdapter(const uit::lio::WidgetContext& context) : fContext(context) {}
    static std::span<const uit::lio::AttributeRow> Rows();

    void SetAttribute(int row, const orrin::any_regular_t& value) override;
    void Complete() override;
    boost::intrusive_ptr<kroui::ui::UI_Node> GetNode() override;
    uit::lio::WidgetExtent Measure(std::optional<float> width) override;
    void SetWritable(int row, bool writable) override;

private:
    boost::intrusive_ptr<kroui::controls::UI_Button> MakeTextButton() const;
    template <class PictureButton>
    boost::intrusive_ptr<PictureButton> MakePictureButton() const;
    void SetName(const krocore::string16& name);
    void ShowCell();
    void OnChanged();

    const uit::lio::WidgetContext& fContext;
    boost::intrusive_ptr<kroui::controls::UI_Button> fControl; // from Complete on
    krocore::string16 fName;
    std::string fImage;
    orrin::any_regular_t fValue; // empty if the cell is turned over
    orrin::any_regular_t fCell;
    kroui::controls::UI_TextButton::ButtonStyle fStyle = kroui::controls::UI_TextButton::ButtonStyle::kRaised;
};

} // namespace krotarnlio
