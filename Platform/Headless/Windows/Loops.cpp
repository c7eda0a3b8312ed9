// SPDX-License-Identifier: MIT
#include "Loops.h"

#include <utility>

namespace zr::headless {

bool Loop::wait() {
    woken_ = false;
    while (!woken_ && !system_.stopped) {
        if (!system_.script.empty()) {
            const auto step = std::move(system_.script.front());
            system_.script.pop_front();
            step();
        } else if (system_.queues->runMain(system_.queues->now()) + system_.queues->runGlobal() > 0) {
            system_.display();
        } else if (const auto next = system_.queues->nextOnMain()) {
            system_.queues->runMain(*next);
            system_.display();
        } else {
            system_.starved = true;
            return false;
        }
    }
    return woken_;
}

ModalLoop::ModalLoop(System& owner, RealWindow& window) : Loop(owner), window_(window), there_(window.alive) {
    window_.modal = ++owner.modalCount;
    window_.show(true);
}

ModalLoop::~ModalLoop() {
    if (!there_.expired()) window_.modal = 0;
}

} // namespace zr::headless
