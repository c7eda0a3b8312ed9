// SPDX-License-Identifier: MIT
#include "Unicode.h"

#include <array>

namespace zr {

bool isSurrogate(char32_t character) { return character >= 0xD800 && character <= 0xDFFF; }

void appendUnits(std::u16string& out, char32_t character) {
    if (character < 0x10000) {
        out += static_cast<char16_t>(character);
        return;
    }
    character -= 0x10000;
    out += static_cast<char16_t>(0xD800 + (character >> 10));
    out += static_cast<char16_t>(0xDC00 + (character & 0x3FF));
}

bool appendUtf16(std::string_view utf8, std::u16string& out) {
    out.reserve(out.size() + utf8.size());
    for (std::size_t at = 0; at < utf8.size();) {
        const auto lead = static_cast<unsigned char>(utf8[at]);
        const std::size_t length = lead < 0x80   ? 1
                                   : lead < 0xC2 ? 0
                                   : lead < 0xE0 ? 2
                                   : lead < 0xF0 ? 3
                                   : lead < 0xF5 ? 4
                                                 : 0;
        if (length == 0 || at + length > utf8.size()) return false;
        char32_t character = length == 1 ? lead : lead & (0xFFu >> (length + 1));
        for (std::size_t i = 1; i < length; ++i) {
            const auto next = static_cast<unsigned char>(utf8[at + i]);
            if ((next & 0xC0) != 0x80) return false;
            character = (character << 6) | (next & 0x3Fu);
        }
        constexpr std::array<char32_t, 5> smallest = {0, 0, 0x80, 0x800, 0x10000};
        if (character < smallest[length] || character > 0x10FFFF || isSurrogate(character)) return false;
        appendUnits(out, character);
        at += length;
    }
    return true;
}

} // namespace zr
