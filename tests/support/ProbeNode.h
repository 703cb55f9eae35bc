#pragma once

#include "kroui/ui/UI_SubView.h"

#include <string>
#include <vector>

namespace test {

// A node that writes down what happens to it, "name:what", in a log that several nodes share.
class ProbeNode : public kroui::ui::UI_SubView {
public:
    ProbeNode(std::string name, std::vector<std::string>& log, kroui::Rect frame = {}) : fName(name), fLog(log) {
        UI_SetID(name);
        UI_SetFrame(frame);
    }

    bool handlesMouse = false;
    bool handlesKeys = false;
    kroui::Point lastPosition;
    int lastClickCount = 0;

    bool UI_DoMouseEvent(kroui::ui::UI_Node* node, const kroui::ui::MouseEvent& event) override {
        using Action = kroui::ui::MouseEvent::Action;
        static const std::vector<std::pair<Action, const char*>> kNames = {
            {Action::kPressed, "pressed"}, {Action::kReleased, "released"}, {Action::kDragged, "dragged"},
            {Action::kEntered, "entered"}, {Action::kLeft, "left"},         {Action::kWheel, "wheel"},
            {Action::kCaptureLost, "lost"}};
        for (const auto& [action, name] : kNames)
            if (event.IsAction(action)) Log(std::string(name) + (node ? " from " + std::string(node->UI_GetID()) : ""));
        lastPosition = event.position;
        lastClickCount = event.clickCount;
        return handlesMouse && !event.IsAction(Action::kMoved);
    }
    bool UI_DoKeyEvent(const kroui::ui::KeyEvent&) override {
        Log("key");
        return handlesKeys;
    }
    void UI_NodeChanged(NodeChange change) override {
        UI_SubView::UI_NodeChanged(change);
        Log("change " + std::to_string(change) + (change == kDetaching && UI_GetParent() ? " with parent" : ""));
    }
    void UI_FocusChanged(bool hasFocus) override { Log(hasFocus ? "focus" : "blur"); }
    void UI_Draw(kroui::limner::Limner* limner) override {
        Log("draw");
        limner->FillRect(UI_GetLocalRect(), {1, 1, 1, 1});
    }

private:
    void Log(const std::string& what) { fLog.push_back(fName + ":" + what); }

    std::string fName;
    std::vector<std::string>& fLog;
};

} // namespace test
