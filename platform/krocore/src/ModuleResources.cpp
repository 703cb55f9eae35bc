#include "krocore/ModuleResources.h"

#include "OwnResource.h"

#include <algorithm>
#include <string>
#include <utility>

namespace krocore {
namespace {

struct Override {
    std::string name;
    std::string type;
    std::vector<std::byte> bytes;
};

// What stands in front of the modules' resources. Empty but in programs for authors.
struct Overrides {
    std::vector<Override> entries;
    std::uint32_t generation = 0;
    ResourceObserver observer;
};

Overrides& AllOverrides() {
    static Overrides sOverrides;
    return sOverrides;
}

auto FindOverride(std::string_view name, std::string_view type) {
    return std::ranges::find_if(AllOverrides().entries, [name, type](const Override& entry) {
        return EqualsIgnoringCase(entry.name, name) && EqualsIgnoringCase(entry.type, type);
    });
}

// Bytes that are there even if they are none.
std::span<const std::byte> BytesOf(const Override& entry) {
    static constexpr std::byte kNoByte{};
    return entry.bytes.empty() ? std::span(&kNoByte, 0) : std::span(entry.bytes);
}

} // namespace

std::span<const std::byte> FindResource(ModuleInstance module, std::string_view name, std::string_view type) noexcept {
    if (module == nullptr) return {};
    if (AllOverrides().observer) AllOverrides().observer(name, type);
    const auto instead = FindOverride(name, type);
    if (instead != AllOverrides().entries.end()) return BytesOf(*instead);
    return OwnResource(module, name, type);
}

void SetResourceOverride(std::string_view name, std::string_view type, std::span<const std::byte> bytes) {
    std::vector<std::byte> copy(bytes.begin(), bytes.end());
    const auto present = FindOverride(name, type);
    if (present != AllOverrides().entries.end())
        present->bytes = std::move(copy);
    else
        AllOverrides().entries.push_back({std::string(name), std::string(type), std::move(copy)});
    ++AllOverrides().generation;
}

void RemoveResourceOverride(std::string_view name, std::string_view type) {
    const auto present = FindOverride(name, type);
    if (present == AllOverrides().entries.end()) return;
    AllOverrides().entries.erase(present);
    ++AllOverrides().generation;
}

std::uint32_t ResourceGeneration() noexcept {
    return AllOverrides().generation;
}

void SetResourceObserver(ResourceObserver observer) {
    AllOverrides().observer = std::move(observer);
}

namespace utility {

bool GetBinaryFromModule(ModuleInstance module, std::u16string_view name, std::u16string_view type,
                         std::vector<std::uint8_t>& bytes) {
    const std::span<const std::byte> found = FindResource(module, ToUTF8(name), ToUTF8(type));
    if (found.data() == nullptr) return false;
    const auto* const begin = reinterpret_cast<const std::uint8_t*>(found.data());
    bytes.assign(begin, begin + found.size());
    return true;
}

} // namespace utility
} // namespace krocore
