// SPDX-License-Identifier: MIT
#pragma once

#include <Base/Compiler.h>
#include <Foundation/NSObject.h>

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace zr {

using NSNotificationName = std::string;

// Something that happened, told to whoever wants to know.
struct NSNotification {
    NSNotificationName name;
    NSObject* object = nullptr; // whom it is about; not retained
    std::map<std::string, std::variant<std::string, double, bool>> userInfo{};
};

// Hands notifications out on the thread that posts them, before the post returns. Retains no object that a
// notification is about. Main thread only.
class ZR_EXPORT NSNotificationCenter : public NSObject {
public:
    ZR_CLASS(NSNotificationCenter, NSObject)

    // Belongs to the host that is installed: another one comes with an empty one.
    static NSNotificationCenter& defaultCenter();

    using Block = std::function<void(const NSNotification&)>;
    // Answers the registration, which lasts until it is removed or nobody holds it. Without a name, or without
    // an object, any matches. Blocks run in the order of their registration.
    [[nodiscard]] std::shared_ptr<NSObject>
    addObserverForName_object_usingBlock(const std::optional<NSNotificationName>& name, const NSObject* object,
                                         Block block);
    // What is not registered is ignored. A block that is removed while a notification is handed out is not run
    // any more.
    void removeObserver(const std::shared_ptr<NSObject>& registration);

    // A block that is added meanwhile is not run for this one.
    void postNotification(const NSNotification& notification);
    void postNotificationName_object(const NSNotificationName& name, NSObject* object) {
        postNotification({name, object});
    }

private:
    class Registration;
    std::vector<std::weak_ptr<Registration>> registrations_;
};

} // namespace zr
