#pragma once

#include <Base/Geometry.h>

#include <optional>
#include <string_view>

namespace zr {

// What an archived object is made from: values by key. A key that is not there, or is of another kind, gives
// nothing.
class NSCoder {
public:
    virtual ~NSCoder() = default;
    virtual std::optional<NSRect> decodeRectForKey(std::string_view key) const = 0;
    virtual std::optional<double> decodeDoubleForKey(std::string_view key) const = 0;
    virtual std::optional<bool> decodeBoolForKey(std::string_view key) const = 0;
};

} // namespace zr
