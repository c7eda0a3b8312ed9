// SPDX-License-Identifier: MIT
#pragma once

#include <Foundation/NSString.h>

#include <string>

namespace zr {

inline constexpr const char* NSCocoaErrorDomain = "NSCocoaErrorDomain";

enum : long {
    NSFileReadUnknownError = 256,
    NSFileReadNoPermissionError = 257,
    NSFileReadCorruptFileError = 259,
    NSFileReadNoSuchFileError = 260,
};

// Why something failed. A value.
struct NSError {
    std::string domain;
    long code = 0;
    std::string localizedDescription; // for the log: not translated

    std::string description() const {
        return stringWithFormat("Error Domain=%@ Code=%ld \"%@\"", domain, code, localizedDescription);
    }
    friend bool operator==(const NSError&, const NSError&) = default;
};

} // namespace zr
