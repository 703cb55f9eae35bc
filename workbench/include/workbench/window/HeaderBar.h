#pragma once

#include "kroui/controls/UI_StaticText.h"
#include "kroui/controls/UI_TextButton.h"
#include "workbench/views/CompareSwitch.h"
#include "workbench/views/PresetBar.h"

#include <boost/function.hpp>

namespace workbench {

// The top of the window: which sound is open, undo and redo, and what is about the settings as a whole.
class HeaderBar final : public kroui::ui::UI_Node {
public:
    static constexpr float kHeight = 40;

    struct Actions {
        boost::function<void()> undo;
        boost::function<void()> redo;
    };
    // The switch and the presets stand at the end.
    HeaderBar(Actions actions, boost::intrusive_ptr<CompareSwitch> compare, boost::intrusive_ptr<PresetBar> presets);

    void SetSound(std::u16string_view name, std::u16string_view facts);
    // What the next undo and redo would change; `can` off greys the button.
    void SetUndo(bool can, std::u16string_view what);
    void SetRedo(bool can, std::u16string_view what);

    void UI_Draw(kroui::limner::Limner* limner) override;
    void UI_SizeChanged(const kroui::RectT<float>& rect) override;
    void UI_NodeChanged(NodeChange change) override;

private:
    void Arrange();

    Actions fActions;
    boost::intrusive_ptr<kroui::controls::UI_StaticText> fName;
    boost::intrusive_ptr<kroui::controls::UI_StaticText> fFacts;
    boost::intrusive_ptr<kroui::controls::UI_TextButton> fUndo;
    boost::intrusive_ptr<kroui::controls::UI_TextButton> fRedo;
    boost::intrusive_ptr<CompareSwitch> fCompare;
    boost::intrusive_ptr<PresetBar> fPresets;
};

} // namespace workbench
