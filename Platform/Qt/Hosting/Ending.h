// SPDX-License-Identifier: MIT
#pragma once

namespace zr::qt {

// Takes the kit's views out of the host's widgets. Comes when the platform has ended, before its widgets go.
void endHosting();

} // namespace zr::qt
