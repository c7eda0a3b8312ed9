// SPDX-License-Identifier: MIT
#include "InstalledSystem.h"

#include <Foundation/NSLog.h>

#include <utility>

namespace zr {

namespace {
std::unique_ptr<InstalledSystem>& slot() {
    static std::unique_ptr<InstalledSystem> installed;
    return installed;
}
} // namespace

InstalledSystem* installedSystem() { return slot().get(); }

InstalledSystem* systemFor(std::string_view method) {
    auto* const installed = installedSystem();
    if (!installed)
        NSLog("%@ does nothing: there is no platform (zr::qt::Platform, zr::qt::Application or "
              "zr::headless::Platform)",
              method);
    return installed;
}

void setInstalledSystem(std::unique_ptr<InstalledSystem> system) { slot() = std::move(system); }

} // namespace zr
