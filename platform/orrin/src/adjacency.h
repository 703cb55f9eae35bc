#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>
#include <vector>

namespace orrin {

using index_t = std::uint32_t;
inline constexpr index_t kNone = ~index_t{0};

// A part of a vector that holds the lists of many.
struct range_t {
    index_t begin = 0;
    index_t end = 0;

    index_t size() const { return end - begin; }
    template <class T>
    std::span<const T> of(const std::vector<T>& all) const {
        return std::span(all).subspan(begin, end - begin);
    }
};

// For each of a number of things a list of others, all in one vector.
class adjacency_t {
public:
    using pair_t = std::pair<index_t, index_t>; // the one, and what is in its list

    adjacency_t() = default;
    // Lists keep the order of the pairs.
    adjacency_t(std::size_t count, const std::vector<pair_t>& pairs) : fStarts(count + 1, 0), fItems(pairs.size()) {
        for (const pair_t& pair : pairs)
            ++fStarts[pair.first + 1];
        for (std::size_t i = 0; i < count; ++i)
            fStarts[i + 1] += fStarts[i];
        std::vector<index_t> next = fStarts;
        for (const pair_t& pair : pairs)
            fItems[next[pair.first]++] = pair.second;
    }

    std::span<const index_t> operator[](index_t one) const {
        return range_t{fStarts[one], fStarts[one + 1]}.of(fItems);
    }

private:
    std::vector<index_t> fStarts{0};
    std::vector<index_t> fItems;
};

} // namespace orrin
