// What a panel costs its user: opening it (beside what pugixml alone needs for the same bytes), painting it, showing
// one changed value, and the poll of an open view.

#include "kroui/limner/CairoSupplier.h"
#include "kroui/ui/HeadlessWindow.h"
#include "kroui/ui/UI_NodeManager.h"
#include "qoc/components/ComponentIDs.h"
#include "qoc/components/EffectCatalogue.h"
#include "qoc/components/ParameterIndices.h"
#include "qocui/module/ComponentUIFactory.h"
#include "qocui/module/Module.h"

#include <benchmark/benchmark.h>
#include <pugixml.hpp>

#include <fstream>
#include <iterator>
#include <string>

namespace {

using Filter = boost::intrusive_ptr<kroaudiofilterhost::AudioFilter>;
using View = boost::intrusive_ptr<qocui::controls::AudioComponentEditorViewBase>;

// The library, initialised for the whole run.
struct Library {
    Library() { qocui::module::Initialize(&supplier); }
    ~Library() { qocui::module::Terminate(); }
    kroui::limner::CairoSupplier supplier;
};

Library& TheLibrary() {
    static Library sLibrary;
    return sLibrary;
}

Filter MakeAmplify() {
    Filter filter = qoc::components::CreateEffect(qoc::components::kAmplifyComponentID);
    filter->Prepare(44100, 512, kromediatypes::AudioChannelLayout::Stereo());
    return filter;
}

View OpenView(const Filter& filter) {
    return qocui::module::ComponentUIFactory::GetInstance().CreateViewForComponent(filter);
}

std::string ArchiveBytes() {
    std::ifstream file(QO_SOURCE_DIR "/resources/archives/AMPLIFY.xml", std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

void AmplifyArchive_PugixmlAlone(benchmark::State& state) {
    const std::string bytes = ArchiveBytes();
    for (auto _ : state) {
        pugi::xml_document document;
        benchmark::DoNotOptimize(document.load_buffer(bytes.data(), bytes.size()));
    }
    state.SetBytesProcessed(static_cast<long>(state.iterations()) * static_cast<long>(bytes.size()));
}
BENCHMARK(AmplifyArchive_PugixmlAlone);

void AmplifyPanel_Open(benchmark::State& state) {
    TheLibrary();
    const Filter filter = MakeAmplify();
    for (auto _ : state)
        benchmark::DoNotOptimize(OpenView(filter));
}
BENCHMARK(AmplifyPanel_Open);

class OpenPanel : public benchmark::Fixture {
public:
    void SetUp(const benchmark::State&) override {
        fFilter = MakeAmplify();
        fView = OpenView(fFilter);
        const kroui::Rect frame = fView->UI_GetFrame();
        fWindow =
            std::make_unique<kroui::ui::HeadlessWindow>(TheLibrary().supplier, kroui::Size{frame.width, frame.height});
        fWindow->Window().SetContent(fView);
        fWindow->Paint();
    }
    void TearDown(const benchmark::State&) override {
        fWindow.reset();
        fView.reset();
        fFilter.reset();
    }

protected:
    Filter fFilter;
    View fView;
    std::unique_ptr<kroui::ui::HeadlessWindow> fWindow;
};

BENCHMARK_F(OpenPanel, FullRepaint)(benchmark::State& state) {
    for (auto _ : state) {
        fWindow->Window().InvalidateAll();
        benchmark::DoNotOptimize(fWindow->Paint());
    }
}

BENCHMARK_F(OpenPanel, OneValueChangedPolledAndRepainted)(benchmark::State& state) {
    bool high = false;
    for (auto _ : state) {
        fFilter->SetParameterValue(qoc::components::kAmplifyFirstGain, (high = !high) ? 0.7F : 0.5F);
        fWindow->Advance(0.01);
        benchmark::DoNotOptimize(fWindow->LastDamage().data());
    }
}

// A view with as many observers as the state says, and nothing else.
class ObservingView : public qocui::controls::AudioComponentEditorViewBase {
public:
    ObservingView(Filter filter, int observers) : AudioComponentEditorViewBase(std::move(filter)) {
        for (int i = 0; i < observers; ++i)
            AddParameterObserver(2 + i % 2, [] {});
    }
    void Poll() { SyncParameters(); }
};

void Poll_ByObserver(benchmark::State& state) {
    const Filter filter = MakeAmplify();
    const boost::intrusive_ptr<ObservingView> view(new ObservingView(filter, static_cast<int>(state.range(0))));
    for (auto _ : state)
        view->Poll();
    state.SetItemsProcessed(static_cast<long>(state.iterations()) * state.range(0));
}
BENCHMARK(Poll_ByObserver)->Arg(1)->Arg(34)->Arg(1000);

} // namespace
