// SPDX-License-Identifier: MIT
#pragma once

#include <functional>

// Whether what is done in the background may wait for what may never answer. From any thread.
namespace zr::backend {

// Told at once, and again whenever somebody says so, one call at a time. Until the process ends.
void observeWaiting(std::function<void(bool mayWait)> observer);

void setMayWait(bool mayWait);

} // namespace zr::backend
