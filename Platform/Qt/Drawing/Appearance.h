// SPDX-License-Identifier: MIT
#pragma once

#include <Base/Colour.h>

#include <QPalette>

namespace zr::qt {

// Light or dark, as the palette has it.
Appearance appearanceOf(const QPalette& palette);

} // namespace zr::qt
