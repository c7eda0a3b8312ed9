// SPDX-License-Identifier: MIT
#include <Foundation/NSObject.h>

namespace zr {

const ClassTable& NSObject::classTable() {
    static const ClassTable table{.name = "NSObject", .make = &detail::makeByTable<NSObject>};
    return table;
}

bool NSObject::performSelector_withObject(const SEL& selector, NSObject* sender) {
    const Action* action = class_().findAction(selector);
    if (!action) return false;
    const auto held = weak_from_this().lock();
    action->perform(*this, sender);
    return true;
}

} // namespace zr
