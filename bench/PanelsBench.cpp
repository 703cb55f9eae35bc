// What a panel costs its user: opening it (beside what reading its files alone needs), painting it, showing one changed
// value, the poll of an open view, and a drag of one of 128 points of a curve, the whole way from the pointer to the
// picture.

#include "SourcePaths.h"
#include "krocore/ModuleResources.h"
#include "krocore/String.h"
#include "kroui/controls/UI_TextField.h"
#include "kroui/limner/CairoSupplier.h"
#include "kroui/ui/HeadlessWindow.h"
#include "orrin/sheet.h"
#include "orrin/token_reader.h"
#include "qoc/components/ComponentIDs.h"
#include "qoc/components/EffectCatalogue.h"
#include "qoc/components/ParameterIndices.h"
#include "qocui/controls/TarnLioAudioComponentEditorView.h"
#include "qocui/module/ComponentUIFactory.h"
#include "qocui/module/Module.h"
#include "qocui/ui/DopplerGraph.h"
#include "uit/controls/UI_CurveEditor.h"

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

Filter MakeEffect(std::u16string_view component) {
    Filter filter = qoc::components::CreateEffect(component);
    filter->Prepare(44100, 512, kromediatypes::AudioChannelLayout::Stereo());
    return filter;
}

Filter MakeAmplify() {
    return MakeEffect(qoc::components::kAmplifyComponentID);
}

View OpenView(const Filter& filter) {
    return qocui::module::ComponentUIFactory::GetInstance().CreateViewForComponent(filter);
}

std::string ResourceBytes(const char* path) {
    std::ifstream file(std::string(QO_SOURCE_DIR "/resources/") + path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// The panels that are read from archives.
struct ArchivePanel {
    const char* archive;
    std::u16string_view component;
};
constexpr ArchivePanel kArchivePanels[] = {
    {"AMPLIFY", qoc::components::kAmplifyComponentID},
    {"AUTOPITCHCORRECT", qoc::components::kPitchCorrectComponentID},
    {"DOPPLER", qoc::components::kDopplerComponentID},
    {"FFTFILTER", qoc::components::kFFTFilterComponentID},
    {"GRAPHICPHASESHIFTER", qoc::components::kGraphicPhaseShifterComponentID},
    {"NOTCHFILTER", qoc::components::kNotchComponentID},
    {"PITCHSHIFT", qoc::components::kPitchShiftComponentID},
    {"SCIENTIFICFILTER", qoc::components::kScientificFilterComponentID},
    {"STEREOEXPANDER", qoc::components::kStereoExpanderComponentID},
};

const ArchivePanel& PanelOf(benchmark::State& state) {
    const ArchivePanel& panel = kArchivePanels[state.range(0)];
    state.SetLabel(panel.archive);
    return panel;
}

void ForEveryArchivePanel(benchmark::internal::Benchmark* bench) {
    bench->DenseRange(0, static_cast<int>(std::size(kArchivePanels)) - 1)->Unit(benchmark::kMicrosecond);
}

void Archive_PugixmlAlone(benchmark::State& state) {
    const std::string bytes = ResourceBytes((std::string("archives/") + PanelOf(state).archive + ".xml").c_str());
    for (auto _ : state) {
        pugi::xml_document document;
        benchmark::DoNotOptimize(document.load_buffer(bytes.data(), bytes.size()));
    }
    state.SetBytesProcessed(static_cast<long>(state.iterations()) * static_cast<long>(bytes.size()));
}
BENCHMARK(Archive_PugixmlAlone)->Apply(ForEveryArchivePanel);

// Read, built and connected.
void ArchivePanel_Open(benchmark::State& state) {
    TheLibrary();
    const Filter filter = MakeEffect(PanelOf(state).component);
    for (auto _ : state)
        benchmark::DoNotOptimize(OpenView(filter));
}
BENCHMARK(ArchivePanel_Open)->Apply(ForEveryArchivePanel);

// A panel in a window of its size.
struct OpenPanel {
    explicit OpenPanel(Filter itsFilter, float scale = 1) : filter(std::move(itsFilter)), view(OpenView(filter)) {
        const kroui::Rect frame = view->UI_GetFrame();
        window = std::make_unique<kroui::ui::HeadlessWindow>(library.supplier, kroui::Size{frame.width, frame.height},
                                                             scale);
        window->Window().SetContent(view);
        window->Paint();
    }

    Library& library = TheLibrary();
    Filter filter;
    View view;
    std::unique_ptr<kroui::ui::HeadlessWindow> window;
};

void AmplifyPanel_FullRepaint(benchmark::State& state) {
    const OpenPanel panel(MakeAmplify());
    for (auto _ : state) {
        panel.window->Window().InvalidateAll();
        benchmark::DoNotOptimize(panel.window->Paint());
    }
}
BENCHMARK(AmplifyPanel_FullRepaint);

void AmplifyPanel_OneValueChangedPolledAndRepainted(benchmark::State& state) {
    const OpenPanel panel(MakeAmplify());
    bool high = false;
    for (auto _ : state) {
        panel.filter->SetParameterValue(qoc::components::kAmplifyFirstGain, (high = !high) ? 0.7F : 0.5F);
        panel.window->Advance(0.01);
        benchmark::DoNotOptimize(panel.window->LastDamage().data());
    }
}
BENCHMARK(AmplifyPanel_OneValueChangedPolledAndRepainted);

// Lays `count` points out along a curve: where an effect keeps their number and the first of them.
void StoreCurve(kroaudiofilterhost::AudioFilter& filter, int countIndex, int firstIndex, int count) {
    constexpr float kMostPoints = 128;
    filter.SetParameterValue(countIndex, static_cast<float>(count) / kMostPoints);
    for (int i = 0; i < count; ++i) {
        filter.SetParameterValue(firstIndex + 2 * i, static_cast<float>(i) / static_cast<float>(count - 1));
        filter.SetParameterValue(firstIndex + 2 * i + 1, 0.5F + 0.1F * static_cast<float>(i % 3));
    }
}

// One step of a drag of the graph's point in the middle: pointer, parameter writes, response, poll, picture.
void DragOnePoint(benchmark::State& state, const Filter& filter, const char* graph) {
    const OpenPanel panel(filter, static_cast<float>(state.range(0)));
    auto& editor = dynamic_cast<uit::controls::UI_CurveEditor&>(*panel.view->UI_FindNode(graph));
    panel.window->Advance(0.1);
    const auto& points = editor.GetCurvePoints();
    const kroui::Point start =
        editor.UI_LocalToWindow(editor.GetPixelForCoordinatePair(points[points.size() / 2].coordinates));
    panel.window->Press(start);
    int step = 0;
    for (auto _ : state) {
        ++step;
        panel.window->MoveTo({start.x, start.y + static_cast<float>(step % 40 - 20)});
        panel.window->Advance(0.01);
    }
    panel.window->Release();
}

void FFTFilter_DragOneOf128Points(benchmark::State& state) {
    using namespace qoc::components;
    const Filter filter = MakeEffect(kFFTFilterComponentID);
    StoreCurve(*filter, kFFTFilterPointCount, kFFTFilterFirstPoint, 128);
    DragOnePoint(state, filter, "FFTFilterGraph");
}
BENCHMARK(FFTFilter_DragOneOf128Points)->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond);

void PhaseShifter_DragOneOf128Points(benchmark::State& state) {
    using namespace qoc::components;
    const Filter filter = MakeEffect(kGraphicPhaseShifterComponentID);
    StoreCurve(*filter, kPhaseShifterPointCount, kPhaseShifterFirstPoint, 128);
    DragOnePoint(state, filter, "GraphicPhaseShifterGraph");
}
BENCHMARK(PhaseShifter_DragOneOf128Points)->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond);

void Notch_DragOneOfSixPoints(benchmark::State& state) {
    using namespace qoc::components;
    const Filter filter = MakeEffect(kNotchComponentID);
    for (int section = 0; section < 6; ++section)
        filter->SetParameterValue(kNotchFirstEnable + section, 1);
    DragOnePoint(state, filter, "Graph");
}
BENCHMARK(Notch_DragOneOfSixPoints)->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond);

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

// The sheet of the 30-band equaliser: read, initialised, solved.
void GraphicEQ30_SheetAlone(benchmark::State& state) {
    const std::string script = ResourceBytes("scripts/GRAPHICEQ30BANDSUI.trn");
    for (auto _ : state) {
        orrin::sheet_t sheet;
        sheet.machine().set_variable_lookup([](orrin::name_t name) { return name; });
        sheet.load(script, "sheet");
        benchmark::DoNotOptimize(sheet);
    }
    state.SetBytesProcessed(static_cast<long>(state.iterations()) * static_cast<long>(script.size()));
}
BENCHMARK(GraphicEQ30_SheetAlone)->Unit(benchmark::kMicrosecond);

// The words of its layout, without what they make.
void GraphicEQ30_LayoutWordsAlone(benchmark::State& state) {
    const std::string script = ResourceBytes("scripts/GRAPHICEQ30BANDSUI.lio");
    for (auto _ : state) {
        orrin::token_reader_t reader(script, "layout");
        while (!reader.at_end())
            benchmark::DoNotOptimize(reader.next());
    }
    state.SetBytesProcessed(static_cast<long>(state.iterations()) * static_cast<long>(script.size()));
}
BENCHMARK(GraphicEQ30_LayoutWordsAlone)->Unit(benchmark::kMicrosecond);

void GraphicEQ30_Open(benchmark::State& state) {
    TheLibrary();
    const Filter filter = MakeEffect(qoc::components::kGraphicEQ30BandsComponentID);
    for (auto _ : state)
        benchmark::DoNotOptimize(OpenView(filter));
}
BENCHMARK(GraphicEQ30_Open)->Unit(benchmark::kMicrosecond);

// The 30-band equaliser's panel, with its poll at hand.
class EqualiserView : public qocui::controls::TarnLioAudioComponentEditorView {
public:
    explicit EqualiserView(Filter filter)
        : TarnLioAudioComponentEditorView(
              std::move(filter), &TheLibrary().supplier, u"GraphicEQ30BandsUI",
              krocore::ModuleFromAddress(reinterpret_cast<const void*>(&qocui::module::Initialize))) {
        CreateLayout();
    }
    using TarnLioAudioComponentEditorView::SyncParameters;
};

void GraphicEQ30_PollWithoutChange(benchmark::State& state) {
    TheLibrary();
    const boost::intrusive_ptr<EqualiserView> view(
        new EqualiserView(MakeEffect(qoc::components::kGraphicEQ30BandsComponentID)));
    for (auto _ : state)
        view->SyncParameters();
}
BENCHMARK(GraphicEQ30_PollWithoutChange);

// The effect's own work on a new value is not the panel's.
void GraphicEQ30_PollWithOneChangedParameter(benchmark::State& state) {
    TheLibrary();
    const Filter filter = MakeEffect(qoc::components::kGraphicEQ30BandsComponentID);
    const boost::intrusive_ptr<EqualiserView> view(new EqualiserView(filter));
    constexpr int kBand = 10;
    bool high = false;
    for (auto _ : state) {
        state.PauseTiming();
        filter->SetParameterValue(kBand, (high = !high) ? 0.6F : 0.5F);
        state.ResumeTiming();
        view->SyncParameters();
    }
}
BENCHMARK(GraphicEQ30_PollWithOneChangedParameter)->Unit(benchmark::kMicrosecond);

// Texts of four digits, each another, painted again and again.
void Texts_Repaint(benchmark::State& state) {
    const kroui::limner::SupplierInterface& supplier = TheLibrary().supplier;
    const auto paint = [&](kroui::limner::Limner& limner) {
        for (std::int64_t i = 0; i < state.range(0); ++i)
            limner.DrawText(krocore::FromASCII(std::to_string(i)), {12}, {1, 1, 1, 1}, {0, 0, 100, 20}, {});
    };
    supplier.DrawImage({100, 20}, 1, paint);
    for (auto _ : state)
        benchmark::DoNotOptimize(supplier.DrawImage({100, 20}, 1, paint));
    state.SetItemsProcessed(static_cast<long>(state.iterations()) * state.range(0));
}
BENCHMARK(Texts_Repaint)->Arg(1000)->Arg(4000)->Arg(5000)->Arg(20000)->Unit(benchmark::kMillisecond);

// Letters pasted into an empty field that is then painted.
void TextField_Paste(benchmark::State& state) {
    kroui::ui::HeadlessWindow window(TheLibrary().supplier, {400, 60});
    const boost::intrusive_ptr<kroui::controls::UI_TextField> field(new kroui::controls::UI_TextField);
    window.Window().SetContent(field);
    field->UI_SetFrame({0, 0, 400, 24});
    const std::u16string letters(static_cast<std::size_t>(state.range(0)), u'n');
    for (auto _ : state) {
        field->SetText({});
        field->TypeText(letters);
        window.Paint();
    }
    state.SetComplexityN(state.range(0));
    window.Window().SetContent(nullptr);
}
BENCHMARK(TextField_Paste)->Arg(1250)->Arg(5000)->Arg(20000)->Complexity()->Unit(benchmark::kMillisecond);

// The circular path of an hour of sound, by velocity in metres a second; 1: after a change of the direction.
void Doppler_RepaintAnHour(benchmark::State& state) {
    kroui::ui::HeadlessWindow window(TheLibrary().supplier, {300, 300});
    const Filter filter = MakeEffect(qoc::components::kDopplerComponentID);
    filter->SetDuration(3600 * 44100.0);
    const boost::intrusive_ptr<qocui::ui::DopplerGraph> graph(new qocui::ui::DopplerGraph(filter));
    window.Window().SetContent(graph);
    graph->UI_SetFrame({0, 0, 300, 300});
    graph->SetCircular(true);
    graph->SetStartingDistance(1e5F);
    graph->SetVelocity(static_cast<float>(state.range(0)));
    float direction = 0;
    for (auto _ : state) {
        if (state.range(1) != 0) graph->SetDirection(direction += 1);
        window.Window().InvalidateAll();
        window.Paint();
    }
    window.Window().SetContent(nullptr);
}
BENCHMARK(Doppler_RepaintAnHour)->ArgsProduct({{1, 100}, {0, 1}})->Unit(benchmark::kMillisecond);

} // namespace
