#include "list_parser.h"

#include "orrin/expression_parser.h"

#include <algorithm>
#include <span>
#include <unordered_set>

namespace orrin {
namespace {

// Index of the first key that has been there before, or the number of keys.
std::size_t find_repeated(const vector<key_t>& keys) {
    constexpr std::size_t kLongestCompared = 32;
    if (keys.size() <= kLongestCompared) {
        const auto repeated = [&keys](const key_t& key) {
            const auto before = std::span(keys.data(), static_cast<std::size_t>(&key - keys.data()));
            return std::ranges::find(before, key.name, &key_t::name) != before.end();
        };
        return static_cast<std::size_t>(std::ranges::find_if(keys, repeated) - keys.begin());
    }
    std::unordered_set<name_t> seen;
    const auto found = std::ranges::find_if(keys, [&seen](const key_t& key) { return !seen.insert(key.name).second; });
    return static_cast<std::size_t>(found - keys.begin());
}

} // namespace

key_t parse_key(token_reader_t& reader) {
    const std::uint32_t offset = reader.peek().offset;
    if (!reader.at(token_kind_t::identifier) && !reader.at(token_kind_t::string)) reader.fail_expected("a key");
    const name_t name(reader.at(token_kind_t::string) ? parse_string(reader) : std::string(reader.next().text));
    reader.expect(token_kind_t::colon, "behind the key");
    return {name, offset};
}

void check_unique(const token_reader_t& reader, const vector<key_t>& keys) {
    const std::size_t repeated = find_repeated(keys);
    if (repeated == keys.size()) return;
    reader.fail(keys[repeated].offset, "the key '" + std::string(keys[repeated].name.text()) + "' occurs twice");
}

} // namespace orrin
