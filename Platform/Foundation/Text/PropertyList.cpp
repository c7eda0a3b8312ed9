// SPDX-License-Identifier: MIT
#include "Unicode.h"

#include <Foundation/NSString.h>
#include <Foundation/PropertyList.h>

#include <algorithm>

namespace zr {

namespace {

const char* faultOfText(const std::string& text) {
    if (text.find('\0') != std::string::npos) return "text with the character zero";
    std::u16string units;
    return appendUtf16(text, units) ? nullptr : "text that is not UTF-8";
}

bool isLetterOrDigit(char c) {
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

// A text inside of something else, where a word stands by itself.
std::string element(const std::string& text) {
    if (!text.empty() && std::ranges::all_of(text, isLetterOrDigit)) return text;
    std::string quoted = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\') quoted += '\\';
        quoted += c;
    }
    return quoted + '"';
}

std::string describe(bool truth) { return truth ? "1" : "0"; }
std::string describe(std::int64_t number) { return std::to_string(number); }
std::string describe(double number) { return stringWithFormat("%.17g", number); }
std::string describe(const std::string& text) { return text; }

std::string describe(const NSDate& date) {
    using namespace std::chrono;
    const auto day = floor<days>(date);
    const year_month_day calendar(day);
    const hh_mm_ss time(floor<seconds>(date - day));
    return stringWithFormat("%04d-%02u-%02u %02ld:%02ld:%02ld +0000", int(calendar.year()),
                            unsigned(calendar.month()), unsigned(calendar.day()), time.hours().count(),
                            time.minutes().count(), time.seconds().count());
}

std::string describe(const NSData& data) {
    std::string text = stringWithFormat("{length = %lu, bytes = 0x", data.size());
    for (const unsigned byte : data) text += stringWithFormat("%02x", byte);
    return text + '}';
}

} // namespace

std::string PropertyList::descriptionAtDepth(std::size_t depth) const {
    const std::string inside((depth + 1) * 4, ' '), outside(depth * 4, ' ');
    const auto nested = [depth](const PropertyList& value) {
        const auto* text = value.get<std::string>();
        return text ? element(*text) : value.descriptionAtDepth(depth + 1);
    };
    if (const auto* array = get<Array>()) {
        std::string text = "(\n";
        for (std::size_t i = 0; i < array->size(); ++i)
            text += inside + nested((*array)[i]) + (i + 1 < array->size() ? ",\n" : "\n");
        return text + outside + ")";
    }
    if (const auto* dictionary = get<Dictionary>()) {
        std::string text = "{\n";
        for (const auto& [key, value] : *dictionary)
            text += inside + element(key) + " = " + nested(value) + ";\n";
        return text + outside + "}";
    }
    return std::visit(
        [](const auto& value) -> std::string {
            if constexpr (requires { describe(value); })
                return describe(value);
            else
                return {};
        },
        value_);
}

std::string PropertyList::description() const { return descriptionAtDepth(0); }

const char* PropertyList::faultAtDepth(int depth) const {
    if (depth > kDeepest) return "nested too deeply";
    if (const auto* text = get<std::string>()) return faultOfText(*text);
    if (const auto* date = get<NSDate>()) {
        const bool isNear = *date > kReferenceDate - kFarthestDate && *date < kReferenceDate + kFarthestDate;
        return isNear ? nullptr : "a date too far away";
    }
    if (const auto* array = get<Array>()) {
        for (const auto& element : *array)
            if (const char* fault = element.faultAtDepth(depth + 1)) return fault;
    }
    if (const auto* dictionary = get<Dictionary>()) {
        for (const auto& [key, element] : *dictionary) {
            if (const char* fault = faultOfText(key)) return fault;
            if (const char* fault = element.faultAtDepth(depth + 1)) return fault;
        }
    }
    return nullptr;
}

} // namespace zr
