#pragma once

#include "kroui/controls/FloatingPanel.h"
#include "kroui/controls/UI_TextField.h"
#include "uit/controls/AxisText.h"

namespace uit::controls {

// A small panel over the window in which the two values of a point are typed. Enter accepts both, Tab goes from one to
// the other; Escape or a press elsewhere leave the point as it is. A text that is no number stays in its field, which
// says so.
class PointEditDialog : public kroui::controls::FloatingPanel {
public:
    // One of the two values: what is shown at first, and whether it can be changed.
    struct Value {
        AxisText axis;
        krocore::string16 text;
        bool canChange;
    };
    // Told the values of the axes that were typed; none for one that was left as it stood.
    using Accept = boost::function<void(std::optional<double> horizontal, std::optional<double> vertical)>;

    PointEditDialog();

    // Opens beside `point`, a place in the window. `closed` is called once, whatever closes the dialog, after `accept`.
    void Open(kroui::ui::UI_Window& window, kroui::Point point, const Value& horizontal, const Value& vertical,
              Accept accept, boost::function<void()> closed);
    void Close();

    void UI_Draw(kroui::limner::Limner* limner) override;
    bool UI_DoMouseEvent(UI_Node* node, const kroui::ui::MouseEvent& event) override;
    bool UI_DoKeyEvent(const kroui::ui::KeyEvent& event) override;
    bool UI_DoTextEvent(const kroui::ui::TextEvent& event) override;
    void UI_NodeChanged(NodeChange change) override;
    kroui::ui::AccessibleInfo UI_GetAccessibleInfo() const override;

protected:
    ~PointEditDialog() override = default;

private:
    using TextField = kroui::controls::UI_TextField;
    // A line of the dialog: label, field and unit.
    struct Row {
        boost::intrusive_ptr<TextField> field;
        AxisText axis;
        krocore::string16 before;
    };

    void SetRow(Row& row, const Value& value);
    void Arrange(kroui::ui::UI_Window& window, kroui::Point point);
    TextField* FocusField() const;
    void OnFinish(TextField::Finish finish);
    void MoveFocus();
    void AcceptAll();
    static bool Check(Row& row, std::optional<double>& value);

    Row fHorizontal;
    Row fVertical;
    float fLabelWidth = 0;
    Accept fAccept;
    boost::function<void()> fClosed;
};

} // namespace uit::controls
