#include "LilvHost.h"
#include "kroui/Geometry.h"
#include "qolv2/CurveEvents.h"
#include "qolv2/PluginCatalogue.h"
#include "qolv2/PluginPorts.h"

#include <gtest/gtest.h>
#include <lv2/atom/util.h>
#include <lv2/ui/ui.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <ctime>
#include <map>
#include <thread>

#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/keysym.h>
#include <dlfcn.h>

namespace qolv2 {
namespace {

// A host with a window of its own, and what panels tell it. Needs an X server: panels.py starts one.
class Lv2Panel : public testing::Test {
protected:
    void SetUp() override {
        if (std::getenv("QO_TEST_SCREEN") == nullptr) GTEST_SKIP() << "run by panels.py, on a screen of its own";
        fDisplay = XOpenDisplay(nullptr);
        ASSERT_NE(fDisplay, nullptr);
        fParent = XCreateSimpleWindow(fDisplay, DefaultRootWindow(fDisplay), 0, 0, 1200, 800, 0, 0, 0);
        XMapWindow(fDisplay, fParent);
        XSync(fDisplay, False);
        fLibrary = dlopen(QO_LV2_BUNDLE "/qoaudio_panels.so", RTLD_NOW | RTLD_LOCAL);
        ASSERT_NE(fLibrary, nullptr) << dlerror();
        const auto entry = reinterpret_cast<LV2UI_DescriptorFunction>(dlsym(fLibrary, "lv2ui_descriptor"));
        fDescriptor = entry(0);
        fIdle = static_cast<const LV2UI_Idle_Interface*>(fDescriptor->extension_data(LV2_UI__idleInterface));
    }
    void TearDown() override {
        if (fDisplay != nullptr) XCloseDisplay(fDisplay);
    }

    struct Panel {
        LV2UI_Handle handle = nullptr;
        ::Window window = 0;
        std::map<std::uint32_t, float> written;        // by port
        std::vector<std::vector<std::uint8_t>> events; // to the control port
        std::string touches;
        int askedWidth = 0;
        int askedHeight = 0;
        LV2UI_Resize resize{this, [](LV2UI_Feature_Handle panel, int width, int height) {
                                static_cast<Panel*>(panel)->askedWidth = width;
                                static_cast<Panel*>(panel)->askedHeight = height;
                                return 0;
                            }};
        LV2UI_Touch touch{this, [](LV2UI_Feature_Handle panel, std::uint32_t port, bool grabbed) {
                              static_cast<Panel*>(panel)->touches += (grabbed ? "+" : "-") + std::to_string(port) + " ";
                          }};
    };
    std::unique_ptr<Panel> Open(const std::string& uri) {
        auto panel = std::make_unique<Panel>();
        const LV2_Feature parent{LV2_UI__parent, reinterpret_cast<void*>(fParent)};
        const LV2_Feature map{LV2_URID__map, fHost.URIDMap()};
        const LV2_Feature touch{LV2_UI__touch, &panel->touch};
        const LV2_Feature resize{LV2_UI__resize, &panel->resize};
        const LV2_Feature* const features[] = {&parent, &map, &touch, &resize, nullptr};
        const auto write = [](LV2UI_Controller controller, std::uint32_t port, std::uint32_t size, std::uint32_t format,
                              const void* data) {
            auto& its = *static_cast<Panel*>(controller);
            const auto* const bytes = static_cast<const std::uint8_t*>(data);
            if (format == 0)
                its.written[port] = *static_cast<const float*>(data);
            else
                its.events.emplace_back(bytes, bytes + size);
        };
        LV2UI_Widget widget = nullptr;
        panel->handle = fDescriptor->instantiate(fDescriptor, uri.c_str(), "", write, panel.get(), &widget, features);
        panel->window = reinterpret_cast<::Window>(widget);
        return panel;
    }
    void Close(Panel& panel) { fDescriptor->cleanup(std::exchange(panel.handle, nullptr)); }
    void Idle(const Panel& panel, int times = 5) {
        for (int i = 0; i < times; ++i) {
            XSync(fDisplay, False);
            fIdle->idle(panel.handle);
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
    }
    void Set(const Panel& panel, std::uint32_t port, float value) {
        fDescriptor->port_event(panel.handle, port, sizeof value, 0, &value);
    }
    void Send(const Panel& panel, int type, int x, int y, unsigned button = Button1, ::Window window = None) {
        XEvent event{};
        event.type = type;
        event.xbutton.window = window != None ? window : panel.window;
        event.xbutton.button = button;
        event.xbutton.x = x;
        event.xbutton.y = y;
        event.xbutton.state = type == MotionNotify ? Button1Mask : 0;
        event.xbutton.same_screen = True;
        XSendEvent(fDisplay, event.xbutton.window, False, 0, &event);
        Idle(panel, 2);
    }
    void Click(const Panel& panel, int x, int y, unsigned button = Button1, ::Window window = None) {
        Send(panel, ButtonPress, x, y, button, window);
        Send(panel, ButtonRelease, x, y, button, window);
    }
    void PressKey(const Panel& panel, KeySym symbol, unsigned state) {
        XEvent event{};
        event.type = KeyPress;
        event.xkey.window = panel.window;
        event.xkey.keycode = XKeysymToKeycode(fDisplay, symbol);
        event.xkey.state = state;
        event.xkey.same_screen = True;
        XSendEvent(fDisplay, panel.window, False, 0, &event);
        Idle(panel, 3);
    }
    // Windows of the screen itself: the host's, and what leaves panels.
    std::vector<::Window> WindowsOfTheScreen() {
        ::Window root = None;
        ::Window parent = None;
        ::Window* windows = nullptr;
        unsigned count = 0;
        XSync(fDisplay, False);
        XQueryTree(fDisplay, DefaultRootWindow(fDisplay), &root, &parent, &windows, &count);
        std::vector<::Window> result(windows, windows + count);
        if (windows != nullptr) XFree(windows);
        return result;
    }
    // The one that was not there before; None if there is none.
    ::Window NewWindow(const std::vector<::Window>& before) {
        for (const ::Window window : WindowsOfTheScreen())
            if (std::ranges::find(before, window) == before.end()) return window;
        return None;
    }
    kroui::RectT<int> FrameOf(::Window window) {
        XWindowAttributes is{};
        XGetWindowAttributes(fDisplay, window, &is);
        return {is.x, is.y, is.width, is.height};
    }
    void Drag(const Panel& panel, int x, int y, int toX, int toY) {
        Send(panel, ButtonPress, x, y);
        Send(panel, MotionNotify, (x + toX) / 2, (y + toY) / 2);
        Send(panel, MotionNotify, toX, toY);
        Send(panel, ButtonRelease, toX, toY);
    }
    // Of a part of the panel as the screen shows it.
    unsigned long Pixel(const Panel& panel, int x, int y) {
        XImage* const image = XGetImage(fDisplay, panel.window, x, y, 1, 1, AllPlanes, ZPixmap);
        const unsigned long pixel = XGetPixel(image, 0, 0);
        XDestroyImage(image);
        return pixel;
    }
    static std::uint32_t PortOf(const std::string& effect, const std::string& id) {
        const auto filter = qoc::components::FindEffectByShortName(effect)->create();
        filter->Prepare(48000, 512, kromediatypes::AudioChannelLayout::Stereo());
        const PluginPorts ports(*filter);
        const auto port =
            std::ranges::find(ports.Parameters(), id, [](const ParameterPort& p) { return p.info->GetID(); });
        return static_cast<std::uint32_t>(ports.FirstParameterPort() +
                                          static_cast<std::size_t>(port - ports.Parameters().begin()));
    }

    test::LilvHost fHost{QO_LV2_BUNDLE};
    Display* fDisplay = nullptr;
    ::Window fParent = 0;
    void* fLibrary = nullptr;
    const LV2UI_Descriptor* fDescriptor = nullptr;
    const LV2UI_Idle_Interface* fIdle = nullptr;
};

// The Amplify panel: the left slider's knob is at 260, 28 for 0 dB; 40 units are 28.8 dB.
TEST_F(Lv2Panel, ADragWritesPortsWithinATouchAndPortsMoveThePanel) {
    const auto panel = Open("urn:qoaudio:amplify");
    Idle(*panel);
    const std::uint32_t gain1 = PortOf("amplify", "gain1");
    const std::uint32_t gain2 = PortOf("amplify", "gain2");
    Set(*panel, gain1, 0);
    Set(*panel, gain2, 0);
    Drag(*panel, 260, 28, 300, 28);
    EXPECT_NEAR(panel->written[gain1], 28.8, 0.3);
    EXPECT_EQ(panel->written[gain2], panel->written[gain1]); // linked
    EXPECT_NE(panel->touches.find("+" + std::to_string(gain1)), std::string::npos) << panel->touches;
    EXPECT_EQ(std::ranges::count(panel->touches, '+'), std::ranges::count(panel->touches, '-'));

    // The host's own changes are not written back.
    panel->written.clear();
    const unsigned long before = Pixel(*panel, 200, 28);
    Set(*panel, gain1, -60);
    Idle(*panel);
    EXPECT_NE(Pixel(*panel, 200, 28), before);
    EXPECT_TRUE(panel->written.empty());
    Close(*panel);
}

TEST_F(Lv2Panel, ACurveGoesToTheSoundAndToAnotherPanelOfIt) {
    const std::string uri = "urn:qoaudio:fftfilter";
    test::LilvPluginInstance instance(fHost, uri, 48000);
    const auto filter = qoc::components::FindEffectByShortName("fftfilter")->create();
    filter->Prepare(48000, 512, kromediatypes::AudioChannelLayout::Stereo());
    const PluginPorts ports(*filter);
    alignas(8) std::array<std::uint8_t, 8192> control{};
    alignas(8) std::array<std::uint8_t, 8192> notify{};
    std::vector<float> sound(64);
    for (std::size_t port = 0; port < 4; ++port)
        instance.ConnectAudio(port, sound.data());
    instance.ConnectAudio(ports.IndexOf(kControlPort), reinterpret_cast<float*>(control.data()));
    instance.ConnectAudio(ports.IndexOf(kNotifyPort), reinterpret_cast<float*>(notify.data()));
    instance.Activate();
    // What a panel writes reaches the plug-in's next block; what that says back reaches the panel.
    const auto exchange = [&](Panel& panel) {
        LV2_Atom_Forge forge;
        lv2_atom_forge_init(&forge, fHost.URIDMap());
        lv2_atom_forge_set_buffer(&forge, control.data(), control.size());
        LV2_Atom_Forge_Frame frame;
        lv2_atom_forge_sequence_head(&forge, &frame, 0);
        for (const auto& event : std::exchange(panel.events, {})) {
            lv2_atom_forge_frame_time(&forge, 0);
            lv2_atom_forge_write(&forge, event.data(), static_cast<std::uint32_t>(event.size()));
        }
        lv2_atom_forge_pop(&forge, &frame);
        auto& told = *reinterpret_cast<LV2_Atom_Sequence*>(notify.data());
        told.atom.size = notify.size() - sizeof(LV2_Atom);
        instance.Run(64);
        instance.DoWork();
        LV2_ATOM_SEQUENCE_FOREACH(&told, event) {
            fDescriptor->port_event(panel.handle, static_cast<std::uint32_t>(ports.IndexOf(kNotifyPort)),
                                    lv2_atom_total_size(&event->body), fHost.Map(LV2_ATOM__eventTransfer),
                                    &event->body);
        }
        Idle(panel);
    };
    const auto first = Open(uri);
    Idle(*first);
    exchange(*first);                 // it asks for the curve
    Drag(*first, 300, 275, 320, 215); // a point where there is none
    ASSERT_FALSE(first->events.empty());
    exchange(*first);
    const auto second = Open(uri);
    XMoveWindow(fDisplay, second->window, 700, 0); // a picture of what is behind another window is none
    Idle(*second);
    Send(*first, MotionNotify, 600, 390); // away from the point
    // A column that the curve crosses on its way down to the point.
    const auto column = [&](const Panel& panel) {
        std::vector<unsigned long> pixels;
        for (int y = 120; y < 220; ++y)
            pixels.push_back(Pixel(panel, 188, y));
        return pixels;
    };
    EXPECT_NE(column(*second), column(*first));
    exchange(*second);
    EXPECT_EQ(column(*second), column(*first));
    Close(*first);
    Idle(*second);
    Close(*second);
}

// A host calls them some 30 times a second.
TEST_F(Lv2Panel, PanelsThatNothingHappensInTakeLessThanAHalfPercentOfACoreEach) {
    double opening = 0;
    for (const PluginDescription& plugin : AllPlugins()) {
        if (plugin.channels != 2) continue;
        const std::clock_t before = std::clock();
        const auto panel = Open(plugin.uri);
        Idle(*panel, 1);
        opening = std::max(opening, static_cast<double>(std::clock() - before) / CLOCKS_PER_SEC);
        Idle(*panel);
        constexpr int kCalls = 90;
        const std::clock_t begin = std::clock();
        for (int i = 0; i < kCalls; ++i)
            fIdle->idle(panel->handle);
        const double seconds = static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC;
        EXPECT_LT(seconds / kCalls, 0.005 / 30) << plugin.uri;
        RecordProperty(plugin.uri.c_str(), std::to_string(1e6 * seconds / kCalls));
        Close(*panel);
    }
    RecordProperty("opening", std::to_string(opening));
}

// What panels look like is the user's, for all of them and for the next ones.
TEST_F(Lv2Panel, AMenuThatLeavesThePanelSetsTheThemeOfAllPanels) {
    const auto panel = Open("urn:qoaudio:amplify");
    const auto other = Open("urn:qoaudio:delay");
    XMoveWindow(fDisplay, other->window, 0, 400);
    Idle(*panel);
    Idle(*other);
    const unsigned long dark = Pixel(*panel, 5, 5);
    const auto before = WindowsOfTheScreen();
    Click(*panel, 10, FrameOf(panel->window).height - 10, Button3);
    const ::Window menu = NewWindow(before);
    ASSERT_NE(menu, None);
    const kroui::RectT<int> frame = FrameOf(menu);
    EXPECT_GT(frame.Bottom(), FrameOf(panel->window).Bottom()) << "under the panel, where there is room";
    Send(*panel, ButtonPress, frame.width / 2, frame.height - 14, Button1, menu);
    EXPECT_EQ(NewWindow(before), None);
    Idle(*other);
    EXPECT_NE(Pixel(*panel, 5, 5), dark);
    EXPECT_EQ(Pixel(*other, 5, 5), Pixel(*panel, 5, 5));
    const auto next = Open("urn:qoaudio:echo");
    XMoveWindow(fDisplay, next->window, 600, 400);
    Idle(*next);
    EXPECT_EQ(Pixel(*next, 5, 5), Pixel(*panel, 5, 5));
    for (const auto* const each : {&panel, &other, &next})
        Close(**each);
}

TEST_F(Lv2Panel, AZoomedPanelAsksForRoomAndScrollsWhereItGetsLess) {
    const auto panel = Open("urn:qoaudio:amplify");
    Idle(*panel);
    const int width = panel->askedWidth;
    EXPECT_EQ(width, FrameOf(panel->window).width);
    PressKey(*panel, XK_plus, ControlMask);
    EXPECT_EQ(panel->askedWidth, width * 5 / 4);
    EXPECT_EQ(FrameOf(panel->window).width, panel->askedWidth);

    // The host has less, and leaves the window as it is or makes it smaller.
    for (const bool isMadeSmaller : {false, true}) {
        XResizeWindow(fDisplay, fParent, 240, 80);
        if (isMadeSmaller) XResizeWindow(fDisplay, panel->window, 240, 80);
        Idle(*panel);
        const unsigned long top = Pixel(*panel, 235, 20);
        for (int i = 0; i < 5; ++i)
            Click(*panel, 20, 72, 5); // the wheel, on nothing that wants it
        EXPECT_NE(Pixel(*panel, 235, 20), top) << "the bar has moved";
        for (int i = 0; i < 5; ++i)
            Click(*panel, 20, 72, 4);
        EXPECT_EQ(Pixel(*panel, 235, 20), top);
    }
    PressKey(*panel, XK_0, ControlMask);
    EXPECT_EQ(panel->askedWidth, width);
    Close(*panel);
}

TEST_F(Lv2Panel, TypedAndCopiedTextGoesFromPanelToPanel) {
    const auto panel = Open("urn:qoaudio:amplify");
    const auto other = Open("urn:qoaudio:amplify");
    const std::uint32_t gain1 = PortOf("amplify", "gain1");
    const auto openTheNumber = [&](Panel& its) {
        Idle(its);
        Set(its, gain1, 0);
        Click(its, 104, 28); // its label
        PressKey(its, XK_Return, 0);
    };
    openTheNumber(*panel);
    PressKey(*panel, XK_a, ControlMask);
    for (const KeySym key : {XK_minus, XK_7, XK_period, XK_5})
        PressKey(*panel, key, 0);
    PressKey(*panel, XK_a, ControlMask);
    PressKey(*panel, XK_c, ControlMask);
    PressKey(*panel, XK_Return, 0);
    EXPECT_FLOAT_EQ(panel->written[gain1], -7.5F);
    openTheNumber(*other);
    PressKey(*other, XK_a, ControlMask);
    PressKey(*other, XK_v, ControlMask);
    PressKey(*other, XK_Return, 0);
    EXPECT_FLOAT_EQ(other->written[gain1], -7.5F);
    Close(*panel);
    Close(*other);
}

// Some hosts take the window away first.
TEST_F(Lv2Panel, APanelOutlivesTheWindowAroundIt) {
    const auto panel = Open("urn:qoaudio:notch");
    Idle(*panel);
    XDestroyWindow(fDisplay, fParent);
    Idle(*panel);
    Set(*panel, PortOf("notch", "frequency1"), 100);
    Idle(*panel);
    Close(*panel);
    XSync(fDisplay, False);
}

TEST_F(Lv2Panel, AllPanelsOpenAtOnceAndCloseInAnyOrder) {
    std::vector<std::unique_ptr<Panel>> panels;
    for (const PluginDescription& plugin : AllPlugins()) {
        panels.push_back(Open(plugin.uri));
        ASSERT_NE(panels.back()->handle, nullptr) << plugin.uri;
        Idle(*panels.back(), 1);
    }
    for (std::size_t step : {3U, 2U, 1U}) {
        for (std::size_t i = 0; i < panels.size(); i += step)
            if (panels[i]->handle != nullptr) Close(*panels[i]);
        for (const auto& panel : panels)
            if (panel->handle != nullptr) Idle(*panel, 1);
    }
    EXPECT_EQ(fDescriptor->instantiate(fDescriptor, "urn:qoaudio:nothing", "", nullptr, nullptr, nullptr, nullptr),
              nullptr);
}

} // namespace
} // namespace qolv2
