// SPDX-License-Identifier: MIT
#include "DrawingSystem.h"

#include <AppKit/NSGraphicsContext.h>
#include <AppKit/NSStringDrawing.h>

#include <algorithm>
#include <utility>

namespace zr {

void drawAtPoint_withAttributes(std::string_view text, const NSPoint& point, const TextAttributes& attributes) {
    auto* context = NSGraphicsContext::currentContext();
    if (!context || text.empty()) return;
    context->list().add(port::Text{std::string(text), attributes.font.description(),
                                   attributes.foregroundColor.colour(), point});
}

NSSize sizeWithAttributes(std::string_view text, const TextAttributes& attributes) {
    auto* const system = drawingSystem();
    if (!system) return NSZeroSize;
    const auto size = system->graphics.measure(text, attributes.font.description());
    return {size.width, size.ascent + size.descent};
}

namespace {

// The length of what belongs together at the beginning: a word with the blanks after it, or one character of a
// script that is written without blanks.
std::size_t unitLength(std::string_view text) {
    const auto length = [](char c) -> std::size_t {
        const auto byte = static_cast<unsigned char>(c);
        return byte < 0x80 ? 1 : byte >= 0xF0 ? 4 : byte >= 0xE0 ? 3 : 2;
    };
    const auto isWide = [](char c) { return static_cast<unsigned char>(c) >= 0xE3; };
    std::size_t end = 0;
    if (isWide(text[0])) return std::min(length(text[0]), text.size());
    while (end < text.size() && text[end] != ' ' && !isWide(text[end])) end += length(text[end]);
    while (end < text.size() && text[end] == ' ') ++end;
    return std::min(end, text.size());
}

} // namespace

std::vector<std::string> linesOfText(std::string_view text, double width, const TextAttributes& attributes) {
    std::vector<std::string> lines;
    const auto fits = [&](std::string_view line) {
        while (line.ends_with(' ')) line.remove_suffix(1);
        return sizeWithAttributes(line, attributes).width <= width;
    };
    std::string line;
    const auto end = [&] {
        while (line.ends_with(' ')) line.pop_back();
        lines.push_back(std::exchange(line, {}));
    };
    while (true) {
        const std::size_t paragraphEnd = std::min(text.find('\n'), text.size());
        std::string_view rest = text.substr(0, paragraphEnd);
        while (!rest.empty()) {
            std::size_t length = unitLength(rest);
            if (!fits(line + std::string(rest.substr(0, length)))) {
                if (!line.empty()) {
                    end();
                    continue;
                }
                // A word wider than a line: as many of its characters as fit, one at least.
                std::size_t taken = 0;
                while (taken < length) {
                    std::size_t next = taken + 1;
                    while (next < length && (static_cast<unsigned char>(rest[next]) & 0xC0) == 0x80) ++next;
                    if (taken > 0 && !fits(rest.substr(0, next))) break;
                    taken = next;
                }
                length = taken;
            }
            line += rest.substr(0, length);
            rest.remove_prefix(length);
        }
        end();
        if (paragraphEnd == text.size()) return lines;
        text.remove_prefix(paragraphEnd + 1);
    }
}

} // namespace zr
