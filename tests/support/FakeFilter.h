#pragma once

#include "krocore/NumberFormat.h"
#include "qoc/components/MultiChannelComponentBase.h"

#include <optional>
#include <string>
#include <vector>

namespace test {

// A filter with parameters and no processing, that writes down what is done to it: "begin 2", "set 2 0.5",
// "quiet 2 0.5", "end 2".
class FakeFilter : public qoc::components::MultiChannelComponentBase {
public:
    explicit FakeFilter(std::size_t parameters, krocore::string16 id = u"test.Fake")
        : MultiChannelComponentBase(parameters), fID(std::move(id)) {}

    krocore::string16 GetComponentID() const override {
        ++identifierQueries;
        return fID;
    }
    void SetParameterValue(int index, float value) override {
        log.push_back("set " + std::to_string(index) + " " + Number(value));
        MultiChannelComponentBase::SetParameterValue(index, value);
    }
    void SetParameterValueQuietly(int index, float value) override {
        log.push_back("quiet " + std::to_string(index) + " " + Number(value));
        MultiChannelComponentBase::SetParameterValueQuietly(index, value);
    }
    void BeginParameterEdit(int index) override {
        log.push_back("begin " + std::to_string(index));
        MultiChannelComponentBase::BeginParameterEdit(index);
    }
    void EndParameterEdit(int index) override {
        log.push_back("end " + std::to_string(index));
        MultiChannelComponentBase::EndParameterEdit(index);
    }
    bool GetDisplayParameterValue(int index, float& value) override {
        if (index != displayIndex) return false;
        value = displayValue;
        return true;
    }
    float GetSampleRate() const noexcept override {
        return sampleRate ? *sampleRate : MultiChannelComponentBase::GetSampleRate();
    }
    void OnProcess(const kroaudiofilterhost::AudioFilterBlock&) noexcept override {}

    // As automation does: no trace in the log.
    void Store(int index, float value) { StoreParameter(index, value); }
    std::vector<std::string> TakeLog() { return std::exchange(log, {}); }

    static std::string Number(float value) {
        const krocore::string8 text = krocore::FormatShortest(value);
        return {text.begin(), text.end()};
    }

    std::vector<std::string> log;
    std::optional<float> sampleRate; // in place of the prepared one, as of a filter that knows none yet
    mutable int identifierQueries = 0;
    int displayIndex = -1;
    float displayValue = 0;

private:
    krocore::string16 fID;
};

} // namespace test
