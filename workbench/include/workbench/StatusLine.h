#pragma once

#include "kroui/controls/UI_StaticText.h"

namespace workbench {

// The bottom of the window: a hint or what went wrong, and the state of the picture.
class StatusLine final : public kroui::ui::UI_Node {
public:
    static constexpr float kHeight = 28;

    StatusLine();

    void ShowHint(std::u16string_view text);
    void ShowProblem(std::u16string_view text);
    void SetState(std::u16string_view text) { fState->SetText(text); }

    void UI_Draw(kroui::limner::Limner* limner) override;
    void UI_SizeChanged(const kroui::RectT<float>& rect) override;

private:
    boost::intrusive_ptr<kroui::controls::UI_StaticText> fMessage;
    boost::intrusive_ptr<kroui::controls::UI_StaticText> fState;
};

} // namespace workbench
