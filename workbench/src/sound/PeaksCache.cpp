#include "workbench/sound/PeaksCache.h"

#include "host/ByteStream.h"
#include "krocore/ReplacementFile.h"
#include "krocore/UserFolders.h"
#include "krocore/debug/Trace.h"
#include "workbench/commands/ProblemText.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <exception>
#include <string_view>
#include <system_error>
#include <utility>

namespace workbench {

namespace fs = std::filesystem;

namespace {

using Range = WaveformPeaks::Range;

// A file is the mark, the identity with its length before it, the ranges, and a hash of all that. Numbers are as the
// machine has them, so that another one's mark is foreign.
constexpr std::uint64_t kMark = 0x514F'5045'414B'5331; // "QOPEAKS1"
constexpr std::size_t kLargestFile = 1024 * 1024;      // bytes

// FNV-1a, 64 bits (Fowler, Noll, Vo).
std::uint64_t HashOf(std::string_view bytes) {
    std::uint64_t hash = 0xCBF2'9CE4'8422'2325;
    for (const char byte : bytes)
        hash = (hash ^ static_cast<unsigned char>(byte)) * 0x100'0000'01B3;
    return hash;
}

void Append(std::string& bytes, std::uint64_t number) {
    bytes.append(reinterpret_cast<const char*>(&number), sizeof number);
}

std::string HeaderFor(const std::string& identity) {
    std::string header;
    Append(header, kMark);
    Append(header, identity.size());
    return header += identity;
}

void TraceProblem(const std::exception& problem) {
    if (krocore::debug::TraceEnabled("workbench.cache", 1, true))
        krocore::debug::Trace(fmt::format("{}\n", ProblemText(problem)));
}

bool IsRange(const Range& range) {
    return std::isfinite(range.low) && std::isfinite(range.high) && range.low <= range.high;
}

std::optional<std::vector<Range>> RangesIn(std::string_view bytes, const std::string& header) {
    constexpr std::size_t kHash = sizeof(std::uint64_t);
    if (bytes.size() < header.size() + kHash || !bytes.starts_with(header)) return std::nullopt;
    const std::string_view checked = bytes.substr(0, bytes.size() - kHash);
    const std::string_view data = checked.substr(header.size());
    std::string hash;
    Append(hash, HashOf(checked));
    if (bytes.substr(checked.size()) != hash || data.size() % sizeof(Range) != 0) return std::nullopt;
    std::vector<Range> ranges(data.size() / sizeof(Range));
    std::memcpy(ranges.data(), data.data(), data.size());
    return std::ranges::all_of(ranges, IsRange) ? std::optional(std::move(ranges)) : std::nullopt;
}

} // namespace

std::filesystem::path PeaksCache::UsualFolder() {
    return krocore::UserFolder(krocore::UserFiles::kCache) / "qoaudio" / "peaks";
}

PeaksCache::PeaksCache(fs::path folder, std::uint64_t bytes) : fFolder(std::move(folder)), fBytes(bytes) {
}

fs::path PeaksCache::FileOf(const std::string& identity) const {
    return fFolder / fmt::format("{:016x}.peaks", HashOf(identity));
}

std::optional<std::vector<Range>> PeaksCache::Find(const std::string& identity) const {
    const fs::path file = FileOf(identity);
    std::error_code error;
    if (identity.empty() || !fs::is_regular_file(file, error)) return std::nullopt;
    try {
        auto ranges = RangesIn(qohost::ReadBytes(file, kLargestFile), HeaderFor(identity));
        if (ranges) fs::last_write_time(file, fs::file_time_type::clock::now(), error); // used now
        return ranges;
    } catch (const std::exception& problem) {
        TraceProblem(problem);
        return std::nullopt;
    }
}

void PeaksCache::Keep(const std::string& identity, std::span<const Range> peaks) const {
    if (identity.empty()) return;
    std::string bytes = HeaderFor(identity);
    bytes.append(reinterpret_cast<const char*>(peaks.data()), peaks.size_bytes());
    Append(bytes, HashOf(bytes));
    try {
        fs::create_directories(fFolder);
        krocore::ReplaceFile(FileOf(identity), bytes);
        RemoveOldest();
    } catch (const std::exception& problem) {
        TraceProblem(problem);
    }
}

void PeaksCache::RemoveOldest() const {
    std::vector<std::pair<fs::file_time_type, fs::directory_entry>> files;
    for (const auto& entry : fs::directory_iterator(fFolder))
        if (entry.is_regular_file()) files.emplace_back(entry.last_write_time(), entry);
    std::ranges::sort(files, [](const auto& a, const auto& b) { return a.first > b.first; });
    std::uint64_t sum = 0;
    for (const auto& [time, entry] : files) {
        std::error_code error; // another process may have removed it
        const auto size = entry.file_size(error);
        if (!error) sum += size;
        if (sum > fBytes) fs::remove(entry.path(), error);
    }
}

} // namespace workbench
