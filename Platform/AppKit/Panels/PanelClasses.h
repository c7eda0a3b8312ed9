// SPDX-License-Identifier: MIT
#pragma once

#include <Foundation/ClassTable.h>

#include <span>

namespace zr {

std::span<const ClassTable* const> panelClasses();

} // namespace zr
