#pragma once

#include "kroui/controls/UI_StaticText.h"
#include "workbench/views/MenuButton.h"

namespace workbench {

// The bottom of the window: a hint, what was done or what went wrong, and the state of the picture, which opens a menu.
class StatusLine final : public kroui::ui::UI_Node {
public:
    static constexpr float kHeight = 28;
    static constexpr float kNewsSeconds = 8;

    // The button at the end shows and changes the state.
    explicit StatusLine(boost::intrusive_ptr<MenuButton> state);

    // What is shown while there is nothing else.
    void ShowHint(std::u16string_view text);
    // For a while.
    void ShowNews(std::u16string_view text);
    // Until there is something else, with a button that opens a menu of what helps, if anything does.
    void ShowProblem(std::u16string_view text, MenuButton::Commands remedies = {});

    void UI_Draw(kroui::limner::Limner* limner) override;
    void UI_SizeChanged(const kroui::RectT<float>& rect) override;
    bool UI_DoTimerNotify(long timerID) override;

private:
    void Show(std::u16string_view text, int colorRole, MenuButton::Commands remedies = {});
    void Arrange();

    krocore::string16 fHint;
    boost::intrusive_ptr<kroui::controls::UI_StaticText> fMessage;
    boost::intrusive_ptr<MenuButton> fState;
    MenuButton::Commands fRemedyCommands;
    boost::intrusive_ptr<MenuButton> fRemedies;
    long fTimer;
};

} // namespace workbench
