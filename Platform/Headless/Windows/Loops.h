// SPDX-License-Identifier: MIT
#pragma once

#include "System.h"

#include <memory>

namespace zr::headless {

// Waits by playing the script.
class Loop : public port::TrackingLoop {
public:
    explicit Loop(System& owner) : system_(owner) {}
    bool wait() override;
    void wake() override { woken_ = true; }

private:
    System& system_;
    bool woken_ = false;
};

class ModalLoop final : public Loop {
public:
    ModalLoop(System& owner, RealWindow& window);
    ~ModalLoop() override;

private:
    RealWindow& window_;
    std::weak_ptr<bool> there_;
};

} // namespace zr::headless
