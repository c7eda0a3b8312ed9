// SPDX-License-Identifier: MIT
#pragma once

#include <Foundation/ClassTable.h>

// Private to the kit.
namespace zr {

// The classes of this wing that interface files may name.
std::span<const ClassTable* const> fileClasses();

} // namespace zr
