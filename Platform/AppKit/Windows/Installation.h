#pragma once

#include <WindowSystem/Windows.h>

#include <memory>

// The window system in use, and what belongs to it. Private to AppKit.
namespace zr {

class NSApplication;

struct Installation final : port::ApplicationClient {
    explicit Installation(port::WindowSystem& system) : windowSystem(system) {}

    void appearanceChanged() override;
    void willEnd() override;

    port::WindowSystem& windowSystem;
    std::shared_ptr<NSApplication> application;
    bool eventWasTaken = true; // false once an event came to the end of its responder chain
};

// Null while none is installed.
Installation* installation();

} // namespace zr
