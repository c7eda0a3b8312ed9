// SPDX-License-Identifier: MIT
#pragma once

#include <Foundation/PropertyList.h>

#include <span>
#include <string>

// Dictionaries as binary property lists, the form in which the system keeps them in files. Private to
// Foundation.
namespace zr {

inline constexpr std::size_t kLargestPropertyList = std::size_t{64} << 20; // in bytes

struct ReadPropertyList {
    SharedValues values;
    std::string fault; // why the bytes are not used; then there are no values
};

// Safe with any bytes. What the format has and a PropertyList has not (numbers beyond 64 bits, sets, ...) is a
// fault.
ReadPropertyList readBinaryPropertyList(std::span<const std::uint8_t> bytes);

// Without faults in the values. Throws std::length_error where reading would find the result too large.
NSData writeBinaryPropertyList(const SharedValues& values);

} // namespace zr
