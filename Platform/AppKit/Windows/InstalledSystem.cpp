// SPDX-License-Identifier: MIT
#include "InstalledSystem.h"

#include <utility>

namespace zr {

namespace {
std::unique_ptr<InstalledSystem>& slot() {
    static std::unique_ptr<InstalledSystem> installed;
    return installed;
}
} // namespace

InstalledSystem* installedSystem() { return slot().get(); }

void setInstalledSystem(std::unique_ptr<InstalledSystem> system) { slot() = std::move(system); }

} // namespace zr
