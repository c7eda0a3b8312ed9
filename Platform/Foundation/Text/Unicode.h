// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

// Forms of text. Private to Foundation.
namespace zr {

bool isSurrogate(char32_t character);
void appendUnits(std::u16string& out, char32_t character);
// False where the bytes are not UTF-8; what comes before the mistake is then in `out`.
bool appendUtf16(std::string_view utf8, std::u16string& out);

} // namespace zr
