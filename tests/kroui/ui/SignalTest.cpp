#include "kroui/ui/Signal.h"

#include <boost/bind/bind.hpp>
#include <gmock/gmock.h>

using kroui::ui::Signal;
using testing::ElementsAre;

namespace {

struct Listener : boost::signals2::trackable {
    explicit Listener(std::vector<int>& heard) : log(heard) {}
    void Hear(int value) { log.push_back(value); }
    std::vector<int>& log;
};

TEST(Signal, AListenerThatHasDiedIsNotCalledAnyMore) {
    Signal<int> signal;
    std::vector<int> heard;
    {
        Listener listener(heard);
        signal.connect(boost::bind(&Listener::Hear, &listener, boost::placeholders::_1));
        signal(1);
    }
    signal(2);
    EXPECT_THAT(heard, ElementsAre(1));
    signal.connect([&](int value) { heard.push_back(10 * value); });
    signal(3);
    EXPECT_THAT(heard, ElementsAre(1, 30));
}

TEST(Signal, AListenerMayAddListenersAndDieInACall) {
    Signal<int> signal;
    std::vector<int> heard;
    auto mortal = std::make_unique<Listener>(heard);
    signal.connect([&](int) {
        mortal.reset();
        signal.connect([&](int value) { heard.push_back(100 + value); });
    });
    signal.connect(boost::bind(&Listener::Hear, mortal.get(), boost::placeholders::_1));
    signal(1);
    EXPECT_TRUE(heard.empty());
    signal(2);
    EXPECT_THAT(heard, ElementsAre(102));
}

} // namespace
