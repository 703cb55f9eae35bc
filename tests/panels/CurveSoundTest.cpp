// What the graphs of the drawn filters show is what the filters do.

#include "MeasureSound.h"
#include "kroui/limner/CairoSupplier.h"
#include "kroui/ui/HeadlessWindow.h"
#include "qoc/components/FFTFilter.h"
#include "qoc/components/GraphicPhaseShifter.h"
#include "qoc/components/ParameterIndices.h"
#include "qoc/dsp/filters/CurveFIR.h"
#include "qocui/ui/FFTFilterGraph.h"
#include "qocui/ui/GraphicPhaseShifterGraph.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <random>

using namespace qoc::components;
using kroaudiofilterhost::AudioFilter;
using kroaudiofilterhost::AudioFilterParameterValue;

namespace {

constexpr double kRate = 48000;
constexpr double kNyquist = kRate / 2;
// The filters' own resolution: nearer to a point than some bins of the largest size they round it off.
constexpr double kBlurred = 12 * kRate / 32768;
constexpr double kLowest = 300; // below, pixels are finer than bins

// Part of the axis, and part of the height.
struct Place {
    double x, y;
};

// Some points stand on, or all but on, the one before.
std::vector<Place> RandomCurve(std::mt19937& random) {
    constexpr double kGaps[] = {0, 1e-7, 1e-5, 4.5e-4, 5.5e-4};
    std::uniform_real_distribution<double> part(0, 1);
    std::vector<double> xs(4 + random() % 5);
    std::ranges::generate(xs, [&] { return 0.35 + 0.6 * part(random); });
    std::ranges::sort(xs);
    std::vector<Place> places = {{0, 0.5}};
    for (const double x : xs) {
        places.push_back({x, 0.35 + 0.6 * part(random)});
        if (random() % 3 != 0) places.push_back({x + kGaps[random() % std::size(kGaps)], 0.35 + 0.6 * part(random)});
    }
    places.push_back({1, 0.5});
    return places;
}

double HertzAt(double place, bool isLinear) {
    return isLinear ? 20 + place * (kNyquist - 20) : 20 * std::pow(kNyquist / 20, place);
}

struct FFTFilterCase {
    class Graph : public qocui::ui::FFTFilterGraph {
    public:
        using FFTFilterGraph::FFTFilterGraph;
        using FFTFilterGraph::GetCurveLine;
    };
    static constexpr double kTolerance = 0.1; // dB

    static std::vector<AudioFilterParameterValue> Settings(bool isLinear, bool isSpline) {
        return {{kFFTFilterSize, (32768 - 32) / 23968.0F},
                {kFFTFilterScale, isLinear ? 1.0F : 0.0F},
                {kFFTFilterSplineCurves, isSpline ? 1.0F : 0.0F}};
    }
    static constexpr int kCount = kFFTFilterPointCount;
    static float Stored(double place, bool isLinear) { return static_cast<float>(HertzAt(place, isLinear) / kNyquist); }
    static AudioFilter* Create() { return new FFTFilter; }
    explicit FFTFilterCase(AudioFilter& filter) : fFilter(filter) {}

    // What is heard, in decibels, and the height at which the graph has that.
    double Heard(double hertz) const {
        std::vector<float> decibels;
        EXPECT_TRUE(fFilter.GetMagnitudeResponse(1, {hertz, hertz, false}, decibels));
        return decibels[0];
    }
    static double Shown(double level) { return 60 * std::log10(level) + 12; }
    static double Height(double heard) { return std::pow(10, (heard - 12) / 60); }

private:
    AudioFilter& fFilter;
};

struct PhaseShifterCase {
    class Graph : public qocui::ui::GraphicPhaseShifterGraph {
    public:
        using GraphicPhaseShifterGraph::GetCurveLine;
        using GraphicPhaseShifterGraph::GraphicPhaseShifterGraph;
    };
    static constexpr double kTolerance = 0.5; // degrees

    static std::vector<AudioFilterParameterValue> Settings(bool isLinear, bool isSpline) {
        return {{kPhaseShifterSize, 1},
                {kPhaseShifterScale, isLinear ? 1.0F : 0.0F},
                {kPhaseShifterSplineCurves, isSpline ? 1.0F : 0.0F}};
    }
    static constexpr int kCount = kPhaseShifterPointCount;
    static float Stored(double place, bool /*isLinear*/) { return static_cast<float>(place); }
    static AudioFilter* Create() { return new GraphicPhaseShifter; }
    explicit PhaseShifterCase(AudioFilter& filter) {
        constexpr std::size_t kSize = 65536;
        const std::size_t begin = filter.Latency() - kSize / 2;
        std::vector<float> response = test::ImpulseResponse(filter, begin + kSize)[0];
        response.erase(response.begin(), response.begin() + static_cast<std::ptrdiff_t>(begin));
        fResponse.Update(response);
    }

    double Heard(double hertz) const { return std::arg(fResponse.At(hertz / kNyquist)) * 180 / std::numbers::pi; }
    static double Shown(double degrees) { return degrees; }
    static double Height(double heard) { return heard; }

private:
    FIRResponse fResponse;
};

template <class Case>
class CurveSoundTest : public testing::Test {
protected:
    CurveSoundTest() { fFilter->Prepare(kRate, 8192, kromediatypes::AudioChannelLayout::Mono()); }
    ~CurveSoundTest() override { fWindow.Window().SetContent(nullptr); }

    void Draw(const std::vector<Place>& places, bool isLinear, bool isSpline) {
        auto values = Case::Settings(isLinear, isSpline);
        values.push_back({Case::kCount, static_cast<float>(places.size()) / 128});
        int index = Case::kCount;
        for (const Place& place : places) {
            values.push_back({++index, Case::Stored(place.x, isLinear)});
            values.push_back({++index, static_cast<float>(place.y)});
        }
        fFilter->SetParameterValues(values);
        fFilter->Prepare(kRate, 8192, kromediatypes::AudioChannelLayout::Mono()); // for the size
    }
    void Open(float width) {
        fGraph.reset(new typename Case::Graph(fFilter));
        fGraph->UI_SetFrame({0, 0, width, 0.5F * width});
        fWindow.Window().SetContent(fGraph);
        fWindow.Paint();
    }
    void ExpectSoundAsShown(const std::vector<Place>& places, bool isLinear) {
        const Case sound(*fFilter);
        const kroui::Rect content = fGraph->GetContentRect();
        int compared = 0;
        for (const kroui::Point& point : fGraph->GetCurveLine()) {
            const auto shown = fGraph->GetCoordinatePairForPixel(point);
            const double hertz = shown.horizontal;
            const bool isBlurred = std::ranges::any_of(
                places, [&](const Place& p) { return std::abs(HertzAt(p.x, isLinear) - hertz) < kBlurred; });
            if (isBlurred || hertz < kLowest || hertz > kNyquist - kBlurred || !content.Contains(point)) continue;
            const double heard = sound.Heard(hertz);
            const float pixel = fGraph->GetPixelForCoordinatePair({hertz, Case::Height(heard)}).y;
            ASSERT_NEAR(heard, Case::Shown(shown.vertical), Case::kTolerance) << hertz;
            ASSERT_NEAR(pixel, point.y, 0.5) << hertz;
            ++compared;
        }
        if (fGraph->UsesSplines()) {
            EXPECT_GT(compared, content.width / 3);
        }
    }

    kroui::limner::CairoSupplier fSupplier;
    kroui::ui::HeadlessWindow fWindow{fSupplier, {900, 450}};
    boost::intrusive_ptr<AudioFilter> fFilter{Case::Create()};
    boost::intrusive_ptr<typename Case::Graph> fGraph;
};

using Cases = testing::Types<FFTFilterCase, PhaseShifterCase>;
TYPED_TEST_SUITE(CurveSoundTest, Cases);

TYPED_TEST(CurveSoundTest, TheSoundIsThePictureBesideStepsTooAtEverySize) {
    std::mt19937 random(11);
    for (int round = 0; round < 16; ++round) {
        const bool isLinear = round % 2 != 0;
        const bool isSpline = round % 8 < 6;
        SCOPED_TRACE(testing::Message() << round << (isLinear ? " linear" : " logarithmic"));
        const std::vector<Place> places = RandomCurve(random);
        this->Draw(places, isLinear, isSpline);
        this->Open(round % 4 < 2 ? 240 : 860);
        this->ExpectSoundAsShown(places, isLinear);
    }
}

// Values beyond the axes count at their ends.
TYPED_TEST(CurveSoundTest, TheSoundIsThePictureWithPointsBeyondTheAxesToo) {
    for (const bool isSpline : {false, true}) {
        this->Draw({{-0.2, 0.5}, {0.3, 0.5}, {0.6, 0.9}, {1.4, 1.3}}, false, isSpline);
        this->Open(860);
        this->ExpectSoundAsShown({{0.3, 0}, {0.6, 0}}, false);
    }
}

TYPED_TEST(CurveSoundTest, TheSoundIsThePictureAfterTheWindowHasChanged) {
    const std::vector<Place> places = {{0, 0.5}, {0.5, 0.9}, {0.7, 0.4}, {1, 0.6}};
    this->Draw(places, false, true);
    this->Open(860);
    static_cast<void>(this->fGraph->GetCurveLine());
    this->fGraph->UI_SetFrame({0, 0, 400, 200});
    this->ExpectSoundAsShown(places, false);
    this->fGraph->SetCurrentRange(1000, 10000, this->fGraph->GetVerticalStart(), this->fGraph->GetVerticalEnd());
    this->ExpectSoundAsShown(places, false);
}

} // namespace
