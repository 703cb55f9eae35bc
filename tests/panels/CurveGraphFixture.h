#pragma once

#include "FakeFilter.h"
#include "kroui/limner/CairoSupplier.h"
#include "kroui/ui/HeadlessWindow.h"
#include "uit/controls/UI_CurveEditor.h"

#include <gmock/gmock.h>

namespace test {

// A filter that writes down what is done to it, and what responses it is asked for.
class ResponseFake : public FakeFilter {
public:
    struct Request {
        std::size_t count;
        kroaudiofilterhost::FrequencyAxis axis;
    };

    using FakeFilter::FakeFilter;
    bool GetMagnitudeResponse(std::size_t count, const kroaudiofilterhost::FrequencyAxis& axis,
                              std::vector<float>& decibels) const override {
        requests.push_back({count, axis});
        if (answers) decibels.assign(count, 0);
        return answers;
    }
    std::vector<Request> TakeRequests() { return std::exchange(requests, {}); }

    bool answers = true;
    mutable std::vector<Request> requests;
};

// A graph alone in a window, 600 x 300, driven by the pointer. The filter runs at 44.1 kHz, so Nyquist is 22050 Hz.
template <class Graph>
class CurveGraphTest : public testing::Test {
protected:
    CurveGraphTest(std::size_t parameters, int countIndex) : fCountIndex(countIndex) {
        fFilter.reset(new ResponseFake(parameters));
        fFilter->Prepare(44100, 64, kromediatypes::AudioChannelLayout::Stereo());
    }
    ~CurveGraphTest() override { fWindow.Window().SetContent(nullptr); }

    // Pairs of stored values, behind the index of the count.
    void StorePoints(const std::vector<std::pair<float, float>>& points) {
        fFilter->Store(fCountIndex, static_cast<float>(points.size()) / 128);
        int index = fCountIndex;
        for (const auto& [position, level] : points) {
            fFilter->Store(++index, position);
            fFilter->Store(++index, level);
        }
    }
    void Open() {
        fGraph.reset(new Graph(fFilter));
        fGraph->UI_SetFrame({0, 0, 600, 300});
        fGraph->UI_Show(true);
        fWindow.Window().SetContent(fGraph);
        fWindow.Paint();
        fFilter->TakeLog();
        fFilter->TakeRequests();
    }
    const auto& Points() const { return fGraph->GetCurvePoints(); }
    const auto& At(std::size_t point) const { return Points()[point].coordinates; }
    kroui::Point PixelOf(std::size_t point) const {
        return fGraph->UI_LocalToWindow(fGraph->GetPixelForCoordinatePair(At(point)));
    }
    static kroui::Point Moved(kroui::Point p, float dx, float dy) { return {p.x + dx, p.y + dy}; }
    float Value(int index) const { return fFilter->GetParameterValue(index); }
    static std::string Entry(const char* how, int index, float value) {
        return std::string(how) + " " + std::to_string(index) + " " + FakeFilter::Number(value);
    }

    int fCountIndex;
    kroui::limner::CairoSupplier fSupplier;
    kroui::ui::HeadlessWindow fWindow{fSupplier, {600, 300}};
    boost::intrusive_ptr<ResponseFake> fFilter;
    boost::intrusive_ptr<Graph> fGraph;
};

} // namespace test
