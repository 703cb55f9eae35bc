#include "FakeFilter.h"
#include "qocui/module/ComponentUIFactoryRegistrar.h"

#include <gmock/gmock.h>

using namespace qocui::module;
using qocui::controls::AudioComponentEditorViewBase;

namespace {

using Filter = boost::intrusive_ptr<kroaudiofilterhost::AudioFilter>;
using View = boost::intrusive_ptr<AudioComponentEditorViewBase>;

View MakePlainView(const Filter& filter) {
    return new AudioComponentEditorViewBase(filter);
}

TEST(ComponentUIFactory, TheFirstCreatorOfAnIdentifierStays) {
    int first = 0;
    int second = 0;
    const ComponentUIFactoryRegistrar a(u"test.Twice", [&](const Filter& f) { return ++first, MakePlainView(f); });
    const ComponentUIFactoryRegistrar b(u"test.Twice", [&](const Filter& f) { return ++second, MakePlainView(f); });
    const Filter filter(new test::FakeFilter(1, u"test.Twice"));
    EXPECT_NE(ComponentUIFactory::GetInstance().CreateViewForComponent(filter), nullptr);
    EXPECT_EQ(first, 1);
    EXPECT_EQ(second, 0);
}

TEST(ComponentUIFactory, UnknownNullAndEmptyGiveNoView) {
    ComponentUIFactory& factory = ComponentUIFactory::GetInstance();
    factory.RegisterFactoryFunction(u"test.Empty", {});
    factory.RegisterFactoryFunction(u"test.Known", &MakePlainView);
    for (const char16_t* id : {u"test.Empty", u"test.known", u"test.Know", u"test.Known ", u""}) {
        const boost::intrusive_ptr<test::FakeFilter> filter(new test::FakeFilter(1, id));
        EXPECT_EQ(factory.CreateViewForComponent(filter), nullptr) << krocore::ToStdString(id);
        EXPECT_EQ(filter->identifierQueries, 1);
    }
    EXPECT_EQ(factory.CreateViewForComponent(nullptr), nullptr);
}

TEST(ComponentUIFactory, AnExceptionOfACreatorPassesAndReleasesTheFilter) {
    ComponentUIFactory& factory = ComponentUIFactory::GetInstance();
    factory.RegisterFactoryFunction(u"test.Throws", [](const Filter&) -> View { throw std::runtime_error("no"); });
    const Filter filter(new test::FakeFilter(1, u"test.Throws"));
    EXPECT_THROW(factory.CreateViewForComponent(filter), std::runtime_error);
    EXPECT_EQ(filter->ReferenceCount(), 1);
}

} // namespace
