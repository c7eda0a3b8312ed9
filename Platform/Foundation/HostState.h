#pragma once

#include <Foundation/NSBundle.h>
#include <Foundation/NSNotification.h>
#include <Foundation/NSUserDefaults.h>
#include <FoundationBackends/Host.h>

#include <filesystem>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

// The host that is installed, and what belongs to it. Private to Foundation.
namespace zr::backend {

struct HostState {
    std::shared_ptr<Queues> queues;
    std::shared_ptr<NSBundle> mainBundle;
    std::shared_ptr<NSBundle> kitBundle;
    std::vector<std::string> preferredLanguages;
    std::shared_ptr<NSNotificationCenter> notificationCenter;
    std::filesystem::path userDefaultsFile; // empty: none
    std::shared_ptr<Portal> portal;         // null outside of a sandbox
    std::mutex lock;
    std::shared_ptr<NSUserDefaults> userDefaults; // made when it is first asked for; guarded by lock
};

// What is installed, or a state without queues made of the environment alone.
std::shared_ptr<HostState> current();

} // namespace zr::backend
