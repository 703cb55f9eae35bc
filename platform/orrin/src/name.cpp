#include "orrin/name.h"

#include <cstdint>
#include <cstring>
#include <memory>
#include <vector>

namespace orrin {
namespace {

// FNV-1a, 64 bits (Fowler, Noll, Vo), with a last mixing so that the low bits are good as well.
std::uint64_t hash_of(std::string_view text) {
    std::uint64_t hash = 0xcbf29ce484222325u;
    for (const char c : text) {
        hash ^= static_cast<unsigned char>(c);
        hash *= 0x100000001b3u;
    }
    return hash ^ (hash >> 32);
}

} // namespace

struct name_t::entry_t {
    std::uint64_t fHash;
    std::string_view fText; // in the table's memory
};

// All names: open addressing with linear probing, at most half full. Never destroyed, since names may be used in the
// destructors of static objects.
class name_t::table_t {
public:
    static table_t& instance() {
        static auto* const sTable = new table_t;
        return *sTable;
    }

    const entry_t* intern(std::string_view text) {
        const std::uint64_t hash = hash_of(text);
        const entry_t*& slot = slot_for(hash, text);
        if (slot) return slot;
        const entry_t* const entry = add(hash, text);
        slot = entry;
        if (++fCount * 2 > fSlots.size()) grow();
        return entry;
    }

private:
    static constexpr std::size_t kFirstSlots = 1024; // a power of two, as ever after
    static constexpr std::size_t kBlockBytes = 16384;

    table_t() : fSlots(kFirstSlots) {}

    const entry_t*& slot_for(std::uint64_t hash, std::string_view text) {
        std::size_t at = hash & (fSlots.size() - 1);
        while (fSlots[at] && (fSlots[at]->fHash != hash || fSlots[at]->fText != text))
            at = (at + 1) & (fSlots.size() - 1);
        return fSlots[at];
    }

    const entry_t* add(std::uint64_t hash, std::string_view text) {
        char* const copy = static_cast<char*>(allocate(text.size(), 1));
        std::memcpy(copy, text.data(), text.size());
        return new (allocate(sizeof(entry_t), alignof(entry_t))) entry_t{hash, {copy, text.size()}};
    }

    void* allocate(std::size_t bytes, std::size_t alignment) {
        if (bytes > kBlockBytes) return fBlocks.emplace_back(new char[bytes]).get();
        void* place = fFree;
        if (!std::align(alignment, bytes, place, fFreeBytes)) {
            place = fBlocks.emplace_back(new char[kBlockBytes]).get();
            fFreeBytes = kBlockBytes;
        }
        fFree = static_cast<char*>(place) + bytes;
        fFreeBytes -= bytes;
        return place;
    }

    void grow() {
        std::vector<const entry_t*> old(fSlots.size() * 2);
        old.swap(fSlots);
        for (const entry_t* const entry : old) {
            if (entry) slot_for(entry->fHash, entry->fText) = entry;
        }
    }

    std::vector<const entry_t*> fSlots;
    std::size_t fCount = 0;
    std::vector<std::unique_ptr<char[]>> fBlocks;
    char* fFree = nullptr;
    std::size_t fFreeBytes = 0;
};

name_t::name_t(std::string_view text) : fEntry(text.empty() ? nullptr : table_t::instance().intern(text)) {
}

std::string_view name_t::text() const noexcept {
    return fEntry ? fEntry->fText : std::string_view();
}

std::size_t name_t::hash() const noexcept {
    return fEntry ? static_cast<std::size_t>(fEntry->fHash) : 0;
}

} // namespace orrin
