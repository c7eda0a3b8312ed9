// SPDX-License-Identifier: MIT
#include <Foundation/NSString.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdlib>

namespace zr {

namespace {

struct Conversion {
    bool left = false;
    bool zero = false;
    bool plus = false;
    bool blank = false;
    bool alternate = false;
    int width = 0;
    std::optional<int> precision;
    char letter = 0;
};

constexpr int kLongestField = 4096; // a width or precision beyond this is a mistake, not a wish

int readNumber(std::string_view text, std::size_t& at) {
    int number = 0;
    while (at < text.size() && text[at] >= '0' && text[at] <= '9') {
        number = std::min(kLongestField, number * 10 + (text[at] - '0'));
        ++at;
    }
    return number;
}

// Reads what follows a percent sign; false when it is no conversion.
bool readConversion(std::string_view text, std::size_t& at, Conversion& out) {
    for (; at < text.size(); ++at) {
        if (text[at] == '-')
            out.left = true;
        else if (text[at] == '0')
            out.zero = true;
        else if (text[at] == '+')
            out.plus = true;
        else if (text[at] == ' ')
            out.blank = true;
        else if (text[at] == '#')
            out.alternate = true;
        else
            break;
    }
    out.width = readNumber(text, at);
    if (at < text.size() && text[at] == '.') {
        ++at;
        out.precision = readNumber(text, at);
    }
    while (at < text.size() && std::string_view("hlqzjtL").find(text[at]) != std::string_view::npos) ++at;
    if (at >= text.size()) return false;
    out.letter = text[at++];
    return std::string_view("@diuxXocsfFeEgG").find(out.letter) != std::string_view::npos;
}

std::int64_t asSigned(const FormatArgument::Value& value) {
    if (const auto* number = std::get_if<std::int64_t>(&value)) return *number;
    if (const auto* number = std::get_if<std::uint64_t>(&value)) return static_cast<std::int64_t>(*number);
    if (const auto* number = std::get_if<double>(&value)) {
        if (std::isnan(*number)) return 0;
        if (*number >= 9223372036854775808.0) return INT64_MAX;
        if (*number <= -9223372036854775808.0) return INT64_MIN;
        return static_cast<std::int64_t>(*number);
    }
    return 0;
}

double asDouble(const FormatArgument::Value& value) {
    if (const auto* number = std::get_if<double>(&value)) return *number;
    if (const auto* number = std::get_if<std::uint64_t>(&value)) return static_cast<double>(*number);
    return static_cast<double>(asSigned(value));
}

std::string digitsOf(double number, std::chars_format form, int precision) {
    std::array<char, kLongestField + 400> buffer;
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number, form, precision).ptr;
    return {buffer.data(), end};
}

std::string description(const FormatArgument::Value& value) {
    if (const auto* text = std::get_if<std::string>(&value)) return *text;
    if (const auto* number = std::get_if<std::int64_t>(&value)) return std::to_string(*number);
    if (const auto* number = std::get_if<std::uint64_t>(&value)) return std::to_string(*number);
    if (const auto* number = std::get_if<double>(&value)) {
        // As few digits as tell the number apart, with an exponent only where there would be many zeros.
        const double magnitude = std::abs(*number);
        const bool plain = magnitude == 0 || (magnitude >= 1e-4 && magnitude < 1e17);
        std::array<char, 40> buffer;
        return {buffer.data(), std::to_chars(buffer.data(), buffer.data() + buffer.size(), *number,
                                             plain ? std::chars_format::fixed : std::chars_format::scientific)
                                   .ptr};
    }
    return "(null)";
}

std::string upperCase(std::string text) {
    std::ranges::transform(text, text.begin(),
                           [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c; });
    return text;
}

// Sign and digits apart, so that zeros can be put between them.
struct Number {
    std::string prefix;
    std::string digits;
    bool padsWithZeros = true;
};

std::string signOf(bool negative, const Conversion& conversion) {
    if (negative) return "-";
    if (conversion.plus) return "+";
    return conversion.blank ? " " : "";
}

Number integerNumber(const FormatArgument& argument, const Conversion& conversion) {
    Number result;
    const auto& value = argument.value();
    const bool isSigned = conversion.letter == 'd' || conversion.letter == 'i';
    const std::int64_t number = asSigned(value);
    auto magnitude = static_cast<std::uint64_t>(number);
    if (const auto* natural = std::get_if<std::uint64_t>(&value)) magnitude = *natural;
    if (isSigned) {
        const bool negative = number < 0 && !std::holds_alternative<std::uint64_t>(value);
        result.prefix = signOf(negative, conversion);
        if (negative) magnitude = std::uint64_t{0} - magnitude;
    } else if (!argument.isLong()) {
        magnitude &= 0xFFFFFFFF;
    }
    const int base = conversion.letter == 'o'                                 ? 8
                     : (conversion.letter == 'x' || conversion.letter == 'X') ? 16
                                                                              : 10;
    std::array<char, 70> buffer;
    result.digits = {buffer.data(),
                     std::to_chars(buffer.data(), buffer.data() + buffer.size(), magnitude, base).ptr};
    if (conversion.alternate && base == 16 && magnitude != 0) result.prefix += "0x";
    if (conversion.letter == 'X') {
        result.digits = upperCase(result.digits);
        result.prefix = upperCase(result.prefix);
    }
    if (conversion.precision) {
        result.padsWithZeros = false;
        const auto wanted = static_cast<std::size_t>(*conversion.precision);
        if (wanted == 0 && magnitude == 0) result.digits.clear();
        if (result.digits.size() < wanted) result.digits.insert(0, wanted - result.digits.size(), '0');
    }
    if (conversion.alternate && base == 8 && !result.digits.starts_with('0')) result.digits.insert(0, 1, '0');
    return result;
}

// The general form without its zeros cut off: with `precision` digits in all.
std::string allDigitsOf(double number, int precision) {
    const int digits = std::max(1, precision);
    std::string scientific = digitsOf(number, std::chars_format::scientific, digits - 1);
    const int exponent = std::atoi(scientific.c_str() + scientific.find('e') + 1);
    if (exponent < -4 || exponent >= digits) return scientific;
    return digitsOf(number, std::chars_format::fixed, digits - 1 - exponent);
}

Number realNumber(const FormatArgument::Value& value, const Conversion& conversion) {
    const double number = asDouble(value);
    Number result{.prefix = signOf(std::signbit(number) && !std::isnan(number), conversion),
                  .digits = {},
                  .padsWithZeros = true};
    const double magnitude = std::abs(number);
    const int precision = conversion.precision.value_or(6);
    switch (conversion.letter) {
    case 'f':
    case 'F':
        result.digits = digitsOf(magnitude, std::chars_format::fixed, precision);
        break;
    case 'e':
    case 'E':
        result.digits = digitsOf(magnitude, std::chars_format::scientific, precision);
        break;
    default:
        if (conversion.alternate && std::isfinite(number))
            result.digits = allDigitsOf(magnitude, precision);
        else
            result.digits = digitsOf(magnitude, std::chars_format::general, precision);
        break;
    }
    if (!std::isfinite(number)) {
        result.digits = std::isnan(number) ? "nan" : "inf";
        result.padsWithZeros = false;
    } else if (conversion.alternate && result.digits.find('.') == std::string::npos) {
        result.digits.insert(std::min(result.digits.find('e'), result.digits.size()), 1, '.');
    }
    if (conversion.letter >= 'E' && conversion.letter <= 'G') result.digits = upperCase(result.digits);
    return result;
}

// In the units that text is measured in, those of UTF-16.
std::size_t lengthOf(std::string_view text) {
    std::size_t units = 0;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if ((byte & 0xC0) != 0x80) units += byte >= 0xF0 ? 2 : 1;
    }
    return units;
}

std::string padded(Number number, const Conversion& conversion) {
    const auto width = static_cast<std::size_t>(conversion.width);
    const std::size_t length = number.prefix.size() + lengthOf(number.digits);
    if (length < width && !conversion.left) {
        if (conversion.zero && number.padsWithZeros)
            number.digits.insert(0, width - length, '0');
        else
            number.prefix.insert(0, width - length, ' ');
    }
    std::string text = number.prefix + number.digits;
    if (length < width && conversion.left) text.append(width - length, ' ');
    return text;
}

std::string converted(const FormatArgument& argument, const Conversion& conversion) {
    const auto& value = argument.value();
    switch (conversion.letter) {
    case '@':
    case 's': {
        std::string text = description(value);
        if (conversion.precision && conversion.letter == 's')
            text.resize(std::min(text.size(), static_cast<std::size_t>(*conversion.precision)));
        return padded({.prefix = {}, .digits = std::move(text), .padsWithZeros = false}, conversion);
    }
    case 'c': {
        std::string text(1, static_cast<char>(asSigned(value)));
        return padded({.prefix = {}, .digits = std::move(text), .padsWithZeros = false}, conversion);
    }
    case 'f':
    case 'F':
    case 'e':
    case 'E':
    case 'g':
    case 'G':
        return padded(realNumber(value, conversion), conversion);
    default:
        return padded(integerNumber(argument, conversion), conversion);
    }
}

} // namespace

std::string formatArguments(std::string_view format, std::span<const FormatArgument> arguments) {
    std::string result;
    std::size_t next = 0;
    for (std::size_t at = 0; at < format.size();) {
        const std::size_t percent = format.find('%', at);
        result.append(format.substr(at, percent - at));
        if (percent == std::string_view::npos) break;
        at = percent + 1;
        if (at < format.size() && format[at] == '%') {
            result += '%';
            ++at;
            continue;
        }
        Conversion conversion;
        const bool known = readConversion(format, at, conversion);
        if (known && next < arguments.size())
            result += converted(arguments[next++], conversion);
        else
            result.append(format.substr(percent, at - percent));
    }
    return result;
}

} // namespace zr
