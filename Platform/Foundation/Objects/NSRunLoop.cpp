// SPDX-License-Identifier: MIT
#include <Foundation/NSRunLoop.h>

namespace zr {

ZR_CLASS_TABLE(NSPort)
ZR_CLASS_TABLE(NSRunLoop)

std::shared_ptr<NSPort> NSPort::port() { return make<NSPort>(); }

NSRunLoop& NSRunLoop::currentRunLoop() {
    thread_local const std::shared_ptr<NSRunLoop> loop = make<NSRunLoop>();
    return *loop;
}

void NSRunLoop::addPort_forMode(const std::shared_ptr<NSPort>& port, const std::string& mode) {
    ports_[mode].push_back(port);
}

} // namespace zr
