#pragma once

#include "krocore/String.h"

#include <boost/function.hpp>

#include <array>
#include <stdexcept>
#include <string>

namespace krocore::config {

// The core library's error: a localisation key with its default text, two numbers that tell errors apart, and up to
// four replacements for the text's placeholders. what() is the localised text in UTF-8.
class Error : public std::runtime_error {
public:
    Error(int level, std::string key, int group, int code, bool isContract,
          const std::array<string16, 4>& replacements);

    // A plain error with a finished text (no key), for conditions a user can cause.
    explicit Error(const std::string& text);

    int Level() const noexcept { return fLevel; }
    const std::string& Key() const noexcept { return fKey; }
    int Group() const noexcept { return fGroup; }
    int Code() const noexcept { return fCode; }
    bool IsContract() const noexcept { return fIsContract; }

private:
    int fLevel = 0;
    std::string fKey;
    int fGroup = 0;
    int fCode = 0;
    bool fIsContract = false;
};

// What ThrowError does with the error it has made. The default throws it; a raiser may also return, in which case the
// caller of ThrowError goes on. SetErrorRaiser returns the raiser before it, which can be called; an empty function
// restores the default. Any thread.
using ErrorRaiser = boost::function<void(const Error&)>;
ErrorRaiser SetErrorRaiser(ErrorRaiser raiser);

// Makes the error and hands it to the raiser.
void ThrowError(int level, const char* key, int group, int code, bool isContract, const string16& replacement0,
                const string16& replacement1, const string16& replacement2, const string16& replacement3);

} // namespace krocore::config
