#pragma once

#include <Foundation/NSBundle.h>
#include <Foundation/NSNotification.h>
#include <FoundationBackends/Host.h>

#include <memory>
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
};

// What is installed, or a state without queues made of the environment alone.
std::shared_ptr<HostState> current();

} // namespace zr::backend
