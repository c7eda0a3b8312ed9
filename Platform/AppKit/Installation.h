#pragma once

#include <WindowSystem/WindowSystem.h>

#include <map>
#include <memory>
#include <string>
#include <utility>

// The window system in use, and what belongs to it. Private to AppKit.
namespace zr {

class NSApplication;
class NSBundle;
class NSImage;

struct Installation final : port::ApplicationClient {
    explicit Installation(port::WindowSystem& system) : windowSystem(system) {}

    void appearanceChanged() override;
    void willEnd() override;

    port::WindowSystem& windowSystem;
    std::shared_ptr<NSApplication> application;
    std::map<std::pair<const NSBundle*, std::string>, std::weak_ptr<NSImage>> images;
    bool eventWasTaken = true; // false once an event came to the end of its responder chain
};

// Null while none is installed.
Installation* installation();

} // namespace zr
