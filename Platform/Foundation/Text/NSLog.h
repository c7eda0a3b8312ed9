// SPDX-License-Identifier: MIT
#pragma once

#include <Base/Compiler.h>
#include <Foundation/NSString.h>

namespace zr {

// Writes one line to standard error: time, process name, [process:thread], text. From any thread, at once.
ZR_EXPORT void NSLogText(std::string_view text);

template <class... Arguments>
void NSLog(std::string_view format, const Arguments&... arguments) {
    NSLogText(stringWithFormat(format, arguments...));
}

} // namespace zr
