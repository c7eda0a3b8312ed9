// SPDX-License-Identifier: MIT
#pragma once

#include <Base/Compiler.h>

#include <chrono>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <variant>
#include <vector>

namespace zr {

using NSData = std::vector<std::uint8_t>;
using NSDate = std::chrono::sys_time<std::chrono::microseconds>;

// A value of a property list. A number keeps whether it is whole, real or a truth.
class ZR_EXPORT PropertyList {
public:
    using Array = std::vector<PropertyList>;
    using Dictionary = std::map<std::string, PropertyList, std::less<>>;
    using Value = std::variant<bool, std::int64_t, double, std::string, NSDate, NSData, Array, Dictionary>;

    // No deeper than this, itself included.
    static constexpr int kDeepest = 512;
    // Dates are kept as a distance from this one, which has to be less than the farthest.
    static constexpr NSDate kReferenceDate = std::chrono::sys_days(std::chrono::year(2001) / 1 / 1);
    static constexpr std::chrono::microseconds kFarthestDate = std::chrono::seconds(9'000'000'000'000);

    PropertyList(std::same_as<bool> auto truth) : value_(truth) {}
    // Any whole number that fits.
    template <std::integral Whole>
    requires(!std::same_as<Whole, bool> && (std::signed_integral<Whole> || sizeof(Whole) < 8))
        PropertyList(Whole number)
        : value_(static_cast<std::int64_t>(number)) {}
    PropertyList(double number) : value_(number) {}
    PropertyList(const char* text) : value_(std::string(text)) {}
    PropertyList(std::nullptr_t) = delete;
    PropertyList(std::string text) : value_(std::move(text)) {}
    PropertyList(NSDate date) : value_(date) {}
    PropertyList(NSData data) : value_(std::move(data)) {}
    PropertyList(Array array) : value_(std::move(array)) {}
    PropertyList(Dictionary dictionary) : value_(std::move(dictionary)) {}

    const Value& value() const { return value_; }
    // Null when it is of another type.
    template <class T>
    const T* get() const {
        return std::get_if<T>(&value_);
    }

    // For the log: text as it is, a dictionary or array on a line for each element.
    std::string description() const;

    // What keeps it from being stored; null when nothing does. Text must be UTF-8 without the character zero.
    const char* fault() const { return faultAtDepth(1); }

    friend bool operator==(const PropertyList& a, const PropertyList& b) { return a.value_ == b.value_; }

private:
    const char* faultAtDepth(int depth) const;
    std::string descriptionAtDepth(std::size_t depth) const;

    Value value_;
};

// A dictionary whose values are shared instead of copied, and never change.
using SharedValues = std::map<std::string, std::shared_ptr<const PropertyList>, std::less<>>;

} // namespace zr
