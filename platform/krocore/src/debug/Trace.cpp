#include "krocore/debug/Trace.h"

#include <atomic>
#include <cstdio>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <shared_mutex>
#include <utility>

namespace krocore::debug {
namespace {

constexpr std::string_view kAllOthers = "*";

void WriteToStderr(std::string_view text) {
    std::fwrite(text.data(), 1, text.size(), stderr);
}

// What the categories and the sink are at the moment.
class Settings {
public:
    bool Enabled(std::string_view category, int level, bool registerCategory) {
        {
            const std::shared_lock lock(fMutex);
            const auto found = fLevels.find(category);
            if (found != fLevels.end() || !registerCategory) return level <= LevelOf(found);
        }
        const std::unique_lock lock(fMutex);
        return level <= LevelOf(fLevels.try_emplace(std::string(category)).first);
    }

    void SetLevel(std::string_view category, int level) {
        const std::unique_lock lock(fMutex);
        if (category == kAllOthers) {
            fLevelOfOthers = level;
        } else {
            fLevels.insert_or_assign(std::string(category), level);
        }
    }

    std::vector<std::string> Categories() {
        const std::shared_lock lock(fMutex);
        std::vector<std::string> names;
        names.reserve(fLevels.size());
        for (const auto& [name, level] : fLevels)
            names.push_back(name);
        return names;
    }

    std::shared_ptr<const TraceSink> Sink() {
        const std::shared_lock lock(fMutex);
        return fSink;
    }

    TraceSink SetSink(TraceSink sink) {
        auto newSink = std::make_shared<const TraceSink>(std::move(sink));
        const std::unique_lock lock(fMutex);
        return *std::exchange(fSink, std::move(newSink));
    }

private:
    // No level: the category is known and follows "*".
    using Levels = std::map<std::string, std::optional<int>, std::less<>>;

    int LevelOf(Levels::const_iterator category) const {
        return category == fLevels.end() ? fLevelOfOthers : category->second.value_or(fLevelOfOthers);
    }

    std::shared_mutex fMutex;
    Levels fLevels;
    int fLevelOfOthers = 0;
    std::shared_ptr<const TraceSink> fSink = std::make_shared<const TraceSink>(&WriteToStderr);
};

Settings& CurrentSettings() {
    static Settings sSettings;
    return sSettings;
}

// From 1, so that a caller that has never asked and remembers 0 asks.
constinit std::atomic<unsigned long> sChangeCount{1};

} // namespace

bool TraceEnabled(std::string_view category, int level, bool registerCategory) {
    return CurrentSettings().Enabled(category, level, registerCategory);
}

std::vector<std::string> TraceCategories() {
    return CurrentSettings().Categories();
}

unsigned long TraceChangeCount() noexcept {
    return sChangeCount.load(std::memory_order_acquire);
}

void Trace(std::string_view text) {
    (*CurrentSettings().Sink())(text);
}

void SetTraceLevel(std::string_view category, int level) {
    CurrentSettings().SetLevel(category, level);
    sChangeCount.fetch_add(1, std::memory_order_release);
}

TraceSink SetTraceSink(TraceSink sink) {
    if (sink.empty()) sink = &WriteToStderr;
    TraceSink previous = CurrentSettings().SetSink(std::move(sink));
    sChangeCount.fetch_add(1, std::memory_order_release);
    return previous;
}

} // namespace krocore::debug
