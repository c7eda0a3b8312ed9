// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>

namespace zr::bench {

// Calls of operator new that stand in the kit, its layer or this program, since the last reset. Memory that Qt
// or another library takes for itself does not count.
void resetAllocations();
std::size_t allocations();

} // namespace zr::bench
