#pragma once

#include <compare>
#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

namespace orrin {

// An interned name: two names with the same text are one object, so that equality is a comparison of addresses. Small
// and trivially copyable; the text lives until the process ends (names are never given back). Ordered by text, byte by
// byte. User-interface thread.
class name_t {
public:
    constexpr name_t() noexcept = default; // the name without text
    explicit name_t(std::string_view text);

    std::string_view text() const noexcept;
    bool empty() const noexcept { return fEntry == nullptr; }

    // Spread over all bits; the same for the life of the process.
    std::size_t hash() const noexcept;

    friend bool operator==(name_t, name_t) noexcept = default;
    friend std::strong_ordering operator<=>(name_t left, name_t right) noexcept {
        if (left == right) return std::strong_ordering::equal;
        return left.text() <=> right.text();
    }

private:
    struct entry_t;
    class table_t;

    const entry_t* fEntry = nullptr;
};

} // namespace orrin

template <>
struct std::hash<orrin::name_t> {
    std::size_t operator()(orrin::name_t name) const noexcept { return name.hash(); }
};
