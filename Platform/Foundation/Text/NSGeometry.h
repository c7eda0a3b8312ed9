// SPDX-License-Identifier: MIT
#pragma once

#include <Base/Compiler.h>
#include <Base/Geometry.h>

#include <string>
#include <string_view>

namespace zr {

// "{x, y}" and "{{x, y}, {width, height}}" with as many digits as bring the same numbers back. A point is the
// decimal sign in every language. Numbers that are not finite are written "inf" and "nan", which no reader
// takes for numbers.
ZR_EXPORT std::string NSStringFromPoint(const NSPoint& point);
ZR_EXPORT std::string NSStringFromRect(const NSRect& rect);

// Take the first numbers of the text, whatever stands between them; those that are missing are 0. Never an
// error.
ZR_EXPORT NSPoint NSPointFromString(std::string_view text);
ZR_EXPORT NSRect NSRectFromString(std::string_view text);

} // namespace zr
