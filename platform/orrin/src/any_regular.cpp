#include "orrin/any_regular.h"

#include "orrin/dictionary.h"
#include "orrin/error.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <stdexcept>
#include <utility>

namespace orrin {
namespace {

bool equal_numbers(double left, double right) {
    return left == right || (std::isnan(left) && std::isnan(right));
}

} // namespace

std::string_view type_name(type_t type) {
    static constexpr std::array<std::string_view, 7> kNames = {"empty", "number", "bool",      "string",
                                                               "name",  "array",  "dictionary"};
    return kNames[static_cast<std::size_t>(type)];
}

void any_regular_t::shared_t::include(const any_regular_t& element) {
    ++fElements;
    if (element.is_shared()) {
        fDepth = std::max(fDepth, element.fPayload.fShared->fDepth);
        fElements += element.fPayload.fShared->fElements; // far from an overflow, both being within the bound
    }
    check();
}

void any_regular_t::shared_t::check() const {
    if (fElements > kMostElements) throw std::length_error("the value is too large");
    if (fDepth > kDeepestValue) throw std::length_error("the value is nested too deeply");
}

struct any_regular_t::string_t : shared_t {
    explicit string_t(std::string text) : fContents(std::move(text)) {
        fElements = fContents.size();
        check();
    }
    std::string fContents;
};

struct any_regular_t::elements_t : shared_t {
    explicit elements_t(array_t elements) : fContents(std::move(elements)) {
        for (const any_regular_t& element : fContents)
            include(element);
        ++fDepth;
        check();
    }
    array_t fContents;
};

struct any_regular_t::entries_t : shared_t {
    explicit entries_t(dictionary_t entries) : fContents(std::move(entries)) {
        for (const auto& [key, value] : fContents)
            include(value);
        ++fDepth;
        check();
    }
    dictionary_t fContents;
};

any_regular_t::any_regular_t(shared_t* shared, type_t type) noexcept : fType(type) {
    fPayload.fShared = shared;
}

any_regular_t::any_regular_t(std::string text) : any_regular_t(new string_t(std::move(text)), type_t::string) {
}

any_regular_t::any_regular_t(array_t elements) : any_regular_t(new elements_t(std::move(elements)), type_t::array) {
}

any_regular_t::any_regular_t(dictionary_t entries)
    : any_regular_t(new entries_t(std::move(entries)), type_t::dictionary) {
}

void any_regular_t::release() noexcept {
    if (--fPayload.fShared->fOwners != 0) return;
    if (fType == type_t::string) delete static_cast<string_t*>(fPayload.fShared);
    if (fType == type_t::array) delete static_cast<elements_t*>(fPayload.fShared);
    if (fType == type_t::dictionary) delete static_cast<entries_t*>(fPayload.fShared);
}

template <>
const double* any_regular_t::get_if<double>() const noexcept {
    return fType == type_t::number ? &fPayload.fNumber : nullptr;
}

template <>
const bool* any_regular_t::get_if<bool>() const noexcept {
    return fType == type_t::boolean ? &fPayload.fBoolean : nullptr;
}

template <>
const std::string* any_regular_t::get_if<std::string>() const noexcept {
    return fType == type_t::string ? &static_cast<const string_t*>(fPayload.fShared)->fContents : nullptr;
}

template <>
const name_t* any_regular_t::get_if<name_t>() const noexcept {
    return fType == type_t::name ? &fPayload.fName : nullptr;
}

template <>
const array_t* any_regular_t::get_if<array_t>() const noexcept {
    return fType == type_t::array ? &static_cast<const elements_t*>(fPayload.fShared)->fContents : nullptr;
}

template <>
const dictionary_t* any_regular_t::get_if<dictionary_t>() const noexcept {
    return fType == type_t::dictionary ? &static_cast<const entries_t*>(fPayload.fShared)->fContents : nullptr;
}

namespace {

template <class T>
const T& held_or_throw(const T* held, type_t needed, type_t found) {
    if (!held) throw type_error_t(needed, found);
    return *held;
}

} // namespace

template <>
const double& any_regular_t::get<double>() const {
    return held_or_throw(get_if<double>(), type_t::number, fType);
}

template <>
const bool& any_regular_t::get<bool>() const {
    return held_or_throw(get_if<bool>(), type_t::boolean, fType);
}

template <>
const std::string& any_regular_t::get<std::string>() const {
    return held_or_throw(get_if<std::string>(), type_t::string, fType);
}

template <>
const name_t& any_regular_t::get<name_t>() const {
    return held_or_throw(get_if<name_t>(), type_t::name, fType);
}

template <>
const array_t& any_regular_t::get<array_t>() const {
    return held_or_throw(get_if<array_t>(), type_t::array, fType);
}

template <>
const dictionary_t& any_regular_t::get<dictionary_t>() const {
    return held_or_throw(get_if<dictionary_t>(), type_t::dictionary, fType);
}

bool operator==(const any_regular_t& left, const any_regular_t& right) noexcept {
    if (left.fType != right.fType) return false;
    switch (left.fType) {
    case type_t::empty: return true;
    case type_t::number: return equal_numbers(left.fPayload.fNumber, right.fPayload.fNumber);
    case type_t::boolean: return left.fPayload.fBoolean == right.fPayload.fBoolean;
    case type_t::name: return left.fPayload.fName == right.fPayload.fName;
    default: return any_regular_t::equal_shared(left, right);
    }
}

bool any_regular_t::equal_shared(const any_regular_t& left, const any_regular_t& right) noexcept {
    if (left.fPayload.fShared == right.fPayload.fShared) return true;
    if (left.fPayload.fShared->fElements != right.fPayload.fShared->fElements) return false;
    if (left.fType == type_t::string) return *left.get_if<std::string>() == *right.get_if<std::string>();
    if (left.fType == type_t::array) return *left.get_if<array_t>() == *right.get_if<array_t>();
    return *left.get_if<dictionary_t>() == *right.get_if<dictionary_t>();
}

} // namespace orrin
