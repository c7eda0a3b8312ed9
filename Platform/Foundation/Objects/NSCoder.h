// SPDX-License-Identifier: MIT
#pragma once

#include <Base/Colour.h>
#include <Base/Font.h>
#include <Base/Geometry.h>

#include <optional>
#include <string>
#include <string_view>

namespace zr {

// What an archived object is made from: values by key. A key that is not there, or is of another kind, gives
// nothing. Archives answer what they hold; of the other kinds they hold nothing.
class NSCoder {
public:
    virtual ~NSCoder() = default;
    virtual std::optional<NSRect> decodeRectForKey(std::string_view key) const = 0;
    virtual std::optional<double> decodeDoubleForKey(std::string_view key) const = 0;
    virtual std::optional<bool> decodeBoolForKey(std::string_view key) const = 0;
    virtual std::optional<NSSize> decodeSizeForKey(std::string_view) const { return std::nullopt; }
    virtual std::optional<std::string> decodeStringForKey(std::string_view) const { return std::nullopt; }
    virtual std::optional<Colour> decodeColourForKey(std::string_view) const { return std::nullopt; }
    virtual std::optional<FontDescription> decodeFontForKey(std::string_view) const { return std::nullopt; }
};

} // namespace zr
