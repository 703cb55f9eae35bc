#include "workbench/commands/NearestName.h"

#include "krocore/String.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <vector>

namespace workbench {

namespace {

std::string Lower(std::string_view text) {
    std::string lower(text);
    std::ranges::transform(lower, lower.begin(), [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return lower;
}

std::size_t Distance(const std::string& a, const std::string& b) {
    std::vector<std::vector<std::size_t>> costs(a.size() + 1, std::vector<std::size_t>(b.size() + 1));
    for (std::size_t i = 0; i <= a.size(); ++i) {
        for (std::size_t j = 0; j <= b.size(); ++j) {
            std::size_t& cost = costs[i][j];
            if (i == 0 || j == 0) {
                cost = i + j;
                continue;
            }
            const std::size_t change = a[i - 1] == b[j - 1] ? 0 : 1;
            cost = std::min({costs[i - 1][j] + 1, costs[i][j - 1] + 1, costs[i - 1][j - 1] + change});
            const bool isSwapped = i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1];
            if (isSwapped) cost = std::min(cost, costs[i - 2][j - 2] + 1);
        }
    }
    return costs[a.size()][b.size()];
}

} // namespace

std::string NearestName(std::string_view word, std::span<const std::string> names) {
    constexpr std::size_t kLongest = 64; // longer words are no names
    if (word.empty() || word.size() > kLongest) return {};
    const std::string wanted = Lower(word);
    std::string nearest;
    std::size_t least = std::max<std::size_t>(1, wanted.size() / 3) + 1;
    for (const std::string& name : names) {
        const std::string candidate = Lower(name);
        const bool isBeginning = wanted.size() > 1 && candidate.starts_with(wanted);
        const std::size_t distance = isBeginning ? 1 : Distance(wanted, candidate);
        if (distance >= least) continue;
        least = distance;
        nearest = name;
    }
    return nearest;
}

std::string DidYouMean(std::string_view word, std::span<const std::string> names) {
    const std::string nearest = NearestName(word, names);
    return nearest.empty() ? std::string() : fmt::format(R"(; did you mean "{}"?)", nearest);
}

} // namespace workbench
