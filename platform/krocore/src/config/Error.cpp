#include "krocore/config/Error.h"

#include "krocore/Localizer.h"

#include <mutex>
#include <utility>

namespace krocore::config {
namespace {

std::string MessageOf(const std::string& key, const std::array<string16, 4>& replacements) {
    return ToStdString(
        ReplacePlaceholders(Localize(key), {replacements[0], replacements[1], replacements[2], replacements[3]}));
}

void Raise(const Error& error) {
    throw error;
}

struct RaiserSlot {
    std::mutex mutex;
    ErrorRaiser raiser = &Raise;
};

RaiserSlot& Slot() {
    static RaiserSlot sSlot;
    return sSlot;
}

ErrorRaiser CurrentRaiser() {
    const std::lock_guard lock(Slot().mutex);
    return Slot().raiser;
}

} // namespace

Error::Error(int level, std::string key, int group, int code, bool isContract,
             const std::array<string16, 4>& replacements)
    : std::runtime_error(MessageOf(key, replacements)), fLevel(level), fKey(std::move(key)), fGroup(group), fCode(code),
      fIsContract(isContract) {
}

Error::Error(const std::string& text) : std::runtime_error(text) {
}

ErrorRaiser SetErrorRaiser(ErrorRaiser raiser) {
    if (raiser.empty()) raiser = &Raise;
    const std::lock_guard lock(Slot().mutex);
    return std::exchange(Slot().raiser, std::move(raiser));
}

void ThrowError(int level, const char* key, int group, int code, bool isContract, const string16& replacement0,
                const string16& replacement1, const string16& replacement2, const string16& replacement3) {
    const Error error(level, key, group, code, isContract, {replacement0, replacement1, replacement2, replacement3});
    CurrentRaiser()(error);
}

} // namespace krocore::config
