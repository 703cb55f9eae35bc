#include "krosdl/SdlWindow.h"

#include "ProbeNode.h"

#define SDL_MAIN_HANDLED
#include <SDL.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace krosdl {
namespace {

// Windows on SDL's screen that shows nothing, with the events that a user would cause.
class SdlWindowTest : public testing::Test {
protected:
    struct Probed {
        Probed(const kroui::limner::CairoSupplier& supplier, const std::string& name, std::vector<std::string>& log,
               float scale)
            : window(supplier, {.size = {200, 100}, .smallestSize = {}, .scale = scale}),
              content(new test::ProbeNode(name, log)) {
            content->handlesMouse = true;
            window.Window().SetContent(content);
            window.Show();
        }
        SdlWindow window;
        boost::intrusive_ptr<test::ProbeNode> content;
    };

    static void SetUpTestSuite() { setenv("SDL_VIDEODRIVER", "dummy", 1); }
    SdlWindowTest() {
        fFirst.emplace(fSupplier, "first", fLog, 1.0F);
        fSecond.emplace(fSupplier, "second", fLog, 2.0F);
        for (Uint32 id = 1; fIDs.size() < 2; ++id)
            if (SDL_GetWindowFromID(id) != nullptr) fIDs.push_back(id);
    }

    void Press(std::size_t window, int x, int y) const {
        SDL_Event event{};
        event.type = SDL_MOUSEBUTTONDOWN;
        event.button.windowID = fIDs[window];
        event.button.button = SDL_BUTTON_LEFT;
        event.button.clicks = 1;
        event.button.x = x;
        event.button.y = y;
        SDL_PushEvent(&event);
    }
    void AskToClose(std::size_t window) const {
        SDL_Event event{};
        event.type = SDL_WINDOWEVENT;
        event.window.windowID = fIDs[window];
        event.window.event = SDL_WINDOWEVENT_CLOSE;
        SDL_PushEvent(&event);
    }
    bool IsLogged(const std::string& what) const { return std::ranges::find(fLog, what) != fLog.end(); }

    kroui::limner::CairoSupplier fSupplier;
    std::vector<std::string> fLog;
    std::optional<Probed> fFirst;
    std::optional<Probed> fSecond;
    std::vector<Uint32> fIDs;
};

TEST_F(SdlWindowTest, OneLoopServesEveryWindowAtItsOwnScale) {
    Press(1, 100, 40);
    fFirst->window.Run([this] { fFirst->window.Close(); });
    EXPECT_TRUE(IsLogged("second:pressed"));
    EXPECT_FALSE(IsLogged("first:pressed"));
    EXPECT_EQ(fSecond->content->lastPosition.x, 50);
    EXPECT_EQ(fSecond->content->lastPosition.y, 20);
    EXPECT_TRUE(IsLogged("first:draw") && IsLogged("second:draw"));
    EXPECT_FALSE(fFirst->window.IsOpen());
    EXPECT_TRUE(fSecond->window.IsOpen());
}

TEST_F(SdlWindowTest, ClosingOneLeavesTheOthersAndWhatComesForOneThatIsGoneIsForNobody) {
    AskToClose(1);
    int turns = 0;
    fFirst->window.Run([&] {
        if (fSecond && !fSecond->window.IsOpen()) {
            fSecond.reset();
            Press(1, 10, 10);
            Press(0, 10, 10);
        } else if (++turns > 100 || IsLogged("first:pressed")) {
            fFirst->window.Close();
        }
    });
    EXPECT_FALSE(fSecond);
    EXPECT_TRUE(IsLogged("first:pressed"));
    EXPECT_FALSE(IsLogged("second:pressed"));
}

TEST_F(SdlWindowTest, ALoopInALoopServesBothAndQuittingEndsAll) {
    bool isInner = false;
    fFirst->window.Run([&] {
        isInner = true;
        SDL_Event quit{};
        quit.type = SDL_QUIT;
        SDL_PushEvent(&quit);
        fSecond->window.Run({});
    });
    EXPECT_TRUE(isInner);
    EXPECT_FALSE(fFirst->window.IsOpen() || fSecond->window.IsOpen());
}

// Looks at what the screen shows just before its own picture comes.
class ScreenReader : public kroui::ui::UI_Node {
public:
    explicit ScreenReader(SDL_Surface& screen) : fScreen(screen) {}
    void UI_Draw(kroui::limner::Limner* /*limner*/) override {
        fSeen = *static_cast<const std::uint32_t*>(fScreen.pixels);
    }
    std::uint32_t Seen() const { return fSeen; }

private:
    SDL_Surface& fScreen;
    std::uint32_t fSeen = 0;
};

TEST_F(SdlWindowTest, WhatIsNotPaintedYetIsNotShown) {
    constexpr std::uint32_t kUntouched = 0x00123456;
    SDL_Surface* const screen = SDL_GetWindowSurface(SDL_GetWindowFromID(fIDs[0]));
    SDL_FillRect(screen, nullptr, kUntouched);
    const boost::intrusive_ptr<ScreenReader> reader(new ScreenReader(*screen));
    fFirst->window.Window().SetContent(reader);
    SDL_Event event{};
    event.type = SDL_WINDOWEVENT;
    event.window.windowID = fIDs[0];
    event.window.event = SDL_WINDOWEVENT_EXPOSED;
    SDL_PushEvent(&event);
    fFirst->window.Run([this] { fFirst->window.Close(); });
    EXPECT_EQ(reader->Seen(), kUntouched);
    fFirst->window.Window().SetContent(fFirst->content);
}

} // namespace
} // namespace krosdl
