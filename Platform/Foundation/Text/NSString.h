// SPDX-License-Identifier: MIT
#pragma once

#include <Base/Compiler.h>
#include <Foundation/NSObject.h>

#include <concepts>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <variant>

namespace zr {

// One argument of a format. Nil (nullptr, an empty optional or pointer) prints as "(null)".
class FormatArgument {
public:
    using Value = std::variant<std::nullptr_t, std::int64_t, std::uint64_t, double, std::string>;

    FormatArgument(std::nullptr_t) {}
    FormatArgument(const char* text) {
        if (text) value_ = std::string(text);
    }
    FormatArgument(std::string text) : value_(std::move(text)) {}
    FormatArgument(std::string_view text) : value_(std::string(text)) {}
    FormatArgument(const std::optional<std::string>& text) {
        if (text) value_ = *text;
    }
    FormatArgument(std::signed_integral auto number)
        : value_(static_cast<std::int64_t>(number)), isLong_(sizeof number > sizeof(int)) {}
    // Truth, too; but no conversion to it, which would make a 1 of any pointer.
    FormatArgument(std::unsigned_integral auto number) : value_(static_cast<std::uint64_t>(number)) {}
    FormatArgument(std::floating_point auto number) : value_(static_cast<double>(number)) {}
    template <class Enumeration>
    requires std::is_enum_v<Enumeration> FormatArgument(Enumeration value)
        : FormatArgument(static_cast<std::underlying_type_t<Enumeration>>(value)) {}
    // An object prints its class.
    FormatArgument(const NSObject* object) {
        if (object) value_ = std::string(object->class_().name);
    }
    template <class T>
    requires std::derived_from<T, NSObject> FormatArgument(const std::shared_ptr<T>& object)
        : FormatArgument(static_cast<const NSObject*>(object.get())) {}

    const Value& value() const { return value_; }
    // Whether a whole number has 64 bits: then its unsigned forms have as many.
    bool isLong() const { return isLong_; }

private:
    Value value_ = nullptr;
    bool isLong_ = true;
};

// The number a text begins with, after white space; what follows is ignored. A point is the decimal sign in
// every language. 0 where there is no number; infinity, or the nearest whole number, where it is too large.
ZR_EXPORT double doubleValue(std::string_view text);
ZR_EXPORT float floatValue(std::string_view text);
ZR_EXPORT std::int32_t intValue(std::string_view text);
ZR_EXPORT std::int64_t integerValue(std::string_view text);

// A path without its last part. Slashes count once, and not at the end; of "/" and of nothing the same is left,
// of a name alone nothing. Every other character is a part of a name.
ZR_EXPORT std::string stringByDeletingLastPathComponent(std::string_view path);

// Understands %@ and C's conversions d i u x X o c s f F e E g G with flags, width and precision, and %%.
// Length letters (l, ll, q, z, h) are skipped: arguments know their size. A conversion without an argument
// stays as it is written. Numbers are never localised.
ZR_EXPORT std::string formatArguments(std::string_view format, std::span<const FormatArgument> arguments);

template <class... Arguments>
std::string stringWithFormat(std::string_view format, const Arguments&... arguments) {
    if constexpr (sizeof...(Arguments) == 0) {
        return formatArguments(format, {});
    } else {
        const FormatArgument list[] = {FormatArgument(arguments)...};
        return formatArguments(format, list);
    }
}

} // namespace zr
