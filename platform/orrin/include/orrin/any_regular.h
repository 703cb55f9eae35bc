#pragma once

#include "orrin/name.h"

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

namespace orrin {

class any_regular_t;
class dictionary_t;

template <class T>
using vector = std::vector<T>;
using array_t = vector<any_regular_t>;

// The types of a value, and their names in messages ("number", "bool", "string", ...).
enum class type_t : std::uint8_t { empty, number, boolean, string, name, array, dictionary };
std::string_view type_name(type_t type);

template <class T>
concept number_like = std::is_arithmetic_v<T> && !std::same_as<T, bool>;

// A value of the sheet and layout languages: nothing, a number, a bool, a string (bytes, UTF-8 by convention), a name,
// an array or a dictionary. Two words long. Copies are cheap and cannot fail: strings, arrays and dictionaries are
// shared between copies and never change once they are in a value (to change one, copy it out and make a new value).
// A moved-from value is empty. Copies of one value stay on one thread, the user-interface thread.
//
// A value is at most kDeepestValue arrays and dictionaries deep and holds at most kMostElements values and bytes of
// strings in all, shared ones counted each time; making a bigger one throws std::length_error. So comparing, writing
// and freeing a value always end, on a stack of ordinary size.
class any_regular_t {
public:
    static constexpr std::uint32_t kDeepestValue = 500; // half of what the parser reads
    static constexpr std::uint64_t kMostElements = 100'000'000;

    any_regular_t() noexcept = default;
    template <number_like T>
    any_regular_t(T number) noexcept : fType(type_t::number) {
        fPayload.fNumber = static_cast<double>(number);
    }
    template <std::same_as<bool> T>
    any_regular_t(T boolean) noexcept : fType(type_t::boolean) {
        fPayload.fBoolean = boolean;
    }
    any_regular_t(name_t name) noexcept : fType(type_t::name) { fPayload.fName = name; }
    any_regular_t(std::string text);
    any_regular_t(std::string_view text) : any_regular_t(std::string(text)) {}
    any_regular_t(const char* text) : any_regular_t(std::string(text)) {}
    any_regular_t(array_t elements);
    any_regular_t(dictionary_t entries);

    any_regular_t(const any_regular_t& other) noexcept : fPayload(other.fPayload), fType(other.fType) {
        if (is_shared()) ++fPayload.fShared->fOwners;
    }
    any_regular_t(any_regular_t&& other) noexcept
        : fPayload(other.fPayload), fType(std::exchange(other.fType, type_t::empty)) {}
    any_regular_t& operator=(const any_regular_t& other) noexcept { return *this = any_regular_t(other); }
    any_regular_t& operator=(any_regular_t&& other) noexcept {
        any_regular_t taken(std::move(other));
        std::swap(fPayload, taken.fPayload);
        std::swap(fType, taken.fType);
        return *this;
    }
    ~any_regular_t() {
        if (is_shared()) release();
    }

    type_t type() const noexcept { return fType; }
    bool empty() const noexcept { return fType == type_t::empty; }

    // T is double, bool, std::string, name_t, array_t or dictionary_t. The result lives as long as this value is
    // neither assigned nor destroyed. get_if is null for a value of another type, get throws type_error_t
    // (error.h).
    template <class T>
    const T* get_if() const noexcept;
    template <class T>
    const T& get() const;
    template <class T>
    T get_or(T otherwise) const {
        const T* const held = get_if<T>();
        return held ? *held : otherwise;
    }

    // Equal in type and contents. NaN equals NaN (a value always equals its copy), 0 equals -0.
    friend bool operator==(const any_regular_t& left, const any_regular_t& right) noexcept;

private:
    // What copies share: how many they are, and how large the contents are with everything below.
    struct shared_t {
        std::uint32_t fOwners = 1;
        std::uint32_t fDepth = 0;
        std::uint64_t fElements = 0;

        void include(const any_regular_t& element);
        void check() const;
    };
    struct string_t;
    struct elements_t;
    struct entries_t;
    union payload_t {
        payload_t() noexcept : fNumber(0) {}
        double fNumber;
        bool fBoolean;
        name_t fName;
        shared_t* fShared;
    };

    any_regular_t(shared_t* shared, type_t type) noexcept;
    static bool equal_shared(const any_regular_t& left, const any_regular_t& right) noexcept;

    bool is_shared() const noexcept {
        return fType == type_t::string || fType == type_t::array || fType == type_t::dictionary;
    }
    void release() noexcept;

    payload_t fPayload;
    type_t fType = type_t::empty;
};

template <>
const double* any_regular_t::get_if<double>() const noexcept;
template <>
const bool* any_regular_t::get_if<bool>() const noexcept;
template <>
const std::string* any_regular_t::get_if<std::string>() const noexcept;
template <>
const name_t* any_regular_t::get_if<name_t>() const noexcept;
template <>
const array_t* any_regular_t::get_if<array_t>() const noexcept;
template <>
const dictionary_t* any_regular_t::get_if<dictionary_t>() const noexcept;

template <>
const double& any_regular_t::get<double>() const;
template <>
const bool& any_regular_t::get<bool>() const;
template <>
const std::string& any_regular_t::get<std::string>() const;
template <>
const name_t& any_regular_t::get<name_t>() const;
template <>
const array_t& any_regular_t::get<array_t>() const;
template <>
const dictionary_t& any_regular_t::get<dictionary_t>() const;

} // namespace orrin
