#pragma once

#include "kroui/limner/CairoSupplier.h"
#include "kroui/ui/HeadlessWindow.h"
#include "qocui/controls/AudioComponentEditorViewBase.h"
#include "qocui/module/ComponentUIFactory.h"
#include "qocui/module/Module.h"

#include <gtest/gtest.h>

namespace test {

// What a host has of a panel: the library while a test runs, a window, and the panel in it, driven by pointer and keys.
// `Base` is the kind of fixture.
template <class Base = testing::Test>
class PanelHost : public Base {
protected:
    using View = qocui::controls::AudioComponentEditorViewBase;

    explicit PanelHost(kroui::Size window) : fWindow(fSupplier, window) { qocui::module::Initialize(&fSupplier); }
    ~PanelHost() override {
        Close();
        qocui::module::Terminate();
    }

    static boost::intrusive_ptr<View> MakeView(boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> filter) {
        return qocui::module::ComponentUIFactory::GetInstance().CreateViewForComponent(std::move(filter));
    }
    // In place of another panel.
    void ShowPanelOf(boost::intrusive_ptr<kroaudiofilterhost::AudioFilter> filter) {
        Show(MakeView(std::move(filter)));
    }
    void Show(boost::intrusive_ptr<View> view) {
        Close();
        fView = std::move(view);
        ASSERT_NE(fView, nullptr);
        fWindow.Window().SetContent(fView);
        Poll();
    }
    void Close() {
        fWindow.Window().SetContent(nullptr);
        fView.reset();
    }
    // The panel sees what has been stored.
    void Poll() { fWindow.Advance(0.011); }
    template <class Node>
    Node& Find(std::string_view id) {
        return dynamic_cast<Node&>(*fView->UI_FindNode(id));
    }

    kroui::limner::CairoSupplier fSupplier;
    kroui::ui::HeadlessWindow fWindow;
    boost::intrusive_ptr<View> fView;
};

} // namespace test
