// SPDX-License-Identifier: MIT
#include <Foundation/NSString.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

namespace zr {

namespace {

bool isDigit(char c) { return c >= '0' && c <= '9'; }

// Everything up to the blank, the controls above ASCII with the no-break space, and the wide spaces.
void skipWhiteSpace(std::string_view& text) {
    while (!text.empty()) {
        const auto byte = [&](std::size_t i) {
            return i < text.size() ? static_cast<unsigned char>(text[i]) : 0u;
        };
        std::size_t length = 0;
        if (byte(0) < 0x21 || byte(0) == 0x7F)
            length = 1;
        else if (byte(0) == 0xC2 && byte(1) >= 0x80 && byte(1) <= 0xA0)
            length = 2; // U+0080 to U+00A0
        else if ((byte(0) == 0xE2 && byte(1) == 0x80 && byte(2) >= 0x80 && byte(2) <= 0x8B) ||
                 (byte(0) == 0xE3 && byte(1) == 0x80 && byte(2) == 0x80))
            length = 3; // U+2000 to U+200B, and U+3000
        if (length == 0) return;
        text.remove_prefix(length);
    }
}

std::size_t countDigits(std::string_view text, std::size_t from) {
    std::size_t end = from;
    while (end < text.size() && isDigit(text[end])) ++end;
    return end - from;
}

template <class Whole>
Whole wholeValue(std::string_view text) {
    skipWhiteSpace(text);
    const bool negative = text.starts_with('-');
    if (negative || text.starts_with('+')) text.remove_prefix(1);
    skipWhiteSpace(text);
    Whole value = 0;
    for (const char c : text.substr(0, countDigits(text, 0))) {
        const auto digit = static_cast<Whole>(c - '0');
        constexpr Whole least = std::numeric_limits<Whole>::min(), most = std::numeric_limits<Whole>::max();
        if (negative) {
            if (value < (least + digit) / 10) return least;
            value = static_cast<Whole>(value * 10 - digit);
        } else {
            if (value > (most - digit) / 10) return most;
            value = static_cast<Whole>(value * 10 + digit);
        }
    }
    return value;
}

} // namespace

double doubleValue(std::string_view text) {
    skipWhiteSpace(text);
    const bool negative = text.starts_with('-');
    if (negative || text.starts_with('+')) text.remove_prefix(1);
    const std::size_t whole = countDigits(text, 0);
    std::size_t end = whole, fraction = 0;
    if (end < text.size() && text[end] == '.') {
        fraction = countDigits(text, end + 1);
        end += 1 + fraction;
    }
    if (whole + fraction == 0) return 0;
    // An exponent without digits is not part of the number.
    if (end < text.size() && (text[end] == 'e' || text[end] == 'E')) {
        const std::size_t sign =
            end + 1 < text.size() && (text[end + 1] == '+' || text[end + 1] == '-') ? 1 : 0;
        if (const std::size_t digits = countDigits(text, end + 1 + sign)) end += 1 + sign + digits;
    }
    const std::string_view number = text.substr(0, end);
    double value = 0;
    if (std::from_chars(number.data(), number.data() + number.size(), value).ec ==
        std::errc::result_out_of_range) {
        // Too large, or too near to zero: the place of the first digit that counts, moved by the exponent,
        // tells.
        const std::size_t e = number.find_first_of("eE");
        const std::size_t first = number.find_first_of("123456789");
        const auto point = static_cast<double>(std::min(whole, number.size()));
        const double place = static_cast<double>(first) < point ? point - static_cast<double>(first)
                                                                : point - static_cast<double>(first) + 1;
        const double exponent = e == std::string_view::npos
                                    ? 0
                                    : static_cast<double>(wholeValue<std::int64_t>(number.substr(e + 1)));
        value = place + exponent > 0 ? std::numeric_limits<double>::infinity() : 0;
    }
    return negative ? -value : value;
}

float floatValue(std::string_view text) {
    const double value = doubleValue(text);
    // Beyond the largest there is only infinity; the conversion of such a number is not defined.
    constexpr double most = std::numeric_limits<float>::max();
    if (value > most) return value < 3.4028235677973366e38 ? std::numeric_limits<float>::max() : HUGE_VALF;
    if (value < -most) return value > -3.4028235677973366e38 ? -std::numeric_limits<float>::max() : -HUGE_VALF;
    return static_cast<float>(value);
}

std::int32_t intValue(std::string_view text) { return wholeValue<std::int32_t>(text); }
std::int64_t integerValue(std::string_view text) { return wholeValue<std::int64_t>(text); }

} // namespace zr
