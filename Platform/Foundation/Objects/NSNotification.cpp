// SPDX-License-Identifier: MIT
#include <Foundation/NSNotification.h>
#include <FoundationBackends/InstalledHost.h>

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace zr {

ZR_CLASS_TABLE(NSNotificationCenter)

class NSNotificationCenter::Registration : public NSObject {
public:
    std::optional<NSNotificationName> name;
    const NSObject* object = nullptr;
    Block block;
};

std::shared_ptr<NSObject>
NSNotificationCenter::addObserverForName_object_usingBlock(const std::optional<NSNotificationName>& name,
                                                           const NSObject* object, Block block) {
    if (!block) throw std::invalid_argument("addObserverForName:object:usingBlock: the block is null");
    const auto registration = make<Registration>();
    registration->name = name;
    registration->object = object;
    registration->block = std::move(block);
    registrations_.push_back(registration);
    return registration;
}

void NSNotificationCenter::removeObserver(const std::shared_ptr<NSObject>& registration) {
    std::erase_if(registrations_, [&](const auto& each) {
        const auto held = each.lock();
        if (held && held == registration) held->block = nullptr;
        return !held || held == registration;
    });
}

void NSNotificationCenter::postNotification(const NSNotification& notification) {
    const auto held = retained(this);
    const auto registrations = registrations_;
    for (const auto& each : registrations) {
        const auto registration = each.lock();
        if (!registration || !registration->block) continue;
        if (registration->name && *registration->name != notification.name) continue;
        if (registration->object && registration->object != notification.object) continue;
        const Block block = registration->block; // it may remove itself
        block(notification);
    }
    std::erase_if(registrations_, [](const auto& each) { return each.expired(); });
}

namespace {
struct DefaultCenter : backend::Part {
    explicit DefaultCenter(const backend::InstalledHost&) {}
    const std::shared_ptr<NSNotificationCenter> center = make<NSNotificationCenter>();
};
} // namespace

NSNotificationCenter& NSNotificationCenter::defaultCenter() {
    return *backend::current()->part<DefaultCenter>().center;
}

} // namespace zr
