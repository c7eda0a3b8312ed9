// SPDX-License-Identifier: MIT
#include <Foundation/NSGeometry.h>
#include <Foundation/NSString.h>

#include <algorithm>
#include <array>

namespace zr {

namespace {

constexpr std::string_view kDigits = "0123456789";

std::size_t skipDigits(std::string_view text, std::size_t at) {
    return std::min(text.find_first_not_of(kDigits, at), text.size());
}

bool isDigitAt(std::string_view text, std::size_t at) {
    return at < text.size() && kDigits.find(text[at]) != std::string_view::npos;
}

bool isSignAt(std::string_view text, std::size_t at) {
    return at < text.size() && (text[at] == '-' || text[at] == '+');
}

bool beginsNumber(std::string_view text, std::size_t at) {
    if (isSignAt(text, at)) ++at;
    return isDigitAt(text, at) || (at < text.size() && text[at] == '.' && isDigitAt(text, at + 1));
}

// Where the number that begins there ends.
std::size_t endOfNumber(std::string_view text, std::size_t at) {
    if (isSignAt(text, at)) ++at;
    at = skipDigits(text, at);
    if (at < text.size() && text[at] == '.') at = skipDigits(text, at + 1);
    if (at < text.size() && (text[at] == 'e' || text[at] == 'E')) {
        const std::size_t digits = at + (isSignAt(text, at + 1) ? 2 : 1);
        if (isDigitAt(text, digits)) at = skipDigits(text, digits);
    }
    return at;
}

template <std::size_t Count>
std::array<double, Count> firstNumbers(std::string_view text) {
    std::array<double, Count> numbers{};
    std::size_t found = 0;
    for (std::size_t at = 0; at < text.size() && found < Count;) {
        if (!beginsNumber(text, at)) {
            ++at;
            continue;
        }
        const std::size_t end = endOfNumber(text, at);
        numbers[found++] = doubleValue(text.substr(at, end - at));
        at = end;
    }
    return numbers;
}

} // namespace

std::string NSStringFromPoint(const NSPoint& point) {
    return stringWithFormat("{%.17g, %.17g}", point.x, point.y);
}

std::string NSStringFromRect(const NSRect& rect) {
    return stringWithFormat("{{%.17g, %.17g}, {%.17g, %.17g}}", rect.origin.x, rect.origin.y, rect.size.width,
                            rect.size.height);
}

NSPoint NSPointFromString(std::string_view text) {
    const auto [x, y] = firstNumbers<2>(text);
    return {x, y};
}

NSRect NSRectFromString(std::string_view text) {
    const auto [x, y, width, height] = firstNumbers<4>(text);
    return {{x, y}, {width, height}};
}

} // namespace zr
