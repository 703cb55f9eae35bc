#pragma once

#include <cstddef>
#include <functional>
#include <list>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

namespace orrin {

// What scripts parse to, kept for the next time that the same text comes under the same name: a panel's scripts are
// loaded whenever it is opened. The scripts that were not asked for longest give way. User-interface thread,
// as names are.
template <class Parsed>
class parse_cache_t {
public:
    using parsed_ptr_t = std::shared_ptr<const Parsed>;
    using parse_t = std::function<Parsed(std::string_view text, std::string scriptName)>;

    // The largest script that is kept, and all together; bytes.
    static constexpr std::size_t kLargestText = 1U << 18U;
    static constexpr std::size_t kMostText = 1U << 20U;

    explicit parse_cache_t(parse_t parse) : fParse(std::move(parse)) {}

    // What the parser throws passes on, and nothing is kept.
    parsed_ptr_t find(std::string_view text, const std::string& scriptName) {
        if (const parsed_ptr_t known = find_known(text, scriptName)) return known;
        auto parsed = std::make_shared<const Parsed>(fParse(text, scriptName));
        if (text.size() > kLargestText) return parsed;
        fEntries.push_front({std::string(text), scriptName, parsed});
        fSize += text.size();
        for (; fSize > kMostText; fEntries.pop_back())
            fSize -= fEntries.back().text.size();
        return parsed;
    }

private:
    struct entry_t {
        std::string text;
        std::string scriptName;
        parsed_ptr_t parsed;
    };

    parsed_ptr_t find_known(std::string_view text, const std::string& scriptName) {
        for (auto entry = fEntries.begin(); entry != fEntries.end(); ++entry) {
            if (entry->text != text || entry->scriptName != scriptName) continue;
            fEntries.splice(fEntries.begin(), fEntries, entry);
            return entry->parsed;
        }
        return {};
    }

    parse_t fParse;
    std::list<entry_t> fEntries; // latest use first
    std::size_t fSize = 0;       // of their texts
};

} // namespace orrin
