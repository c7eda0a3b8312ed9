// SPDX-License-Identifier: MIT
#pragma once

#include <Base/Compiler.h>

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

// What Foundation needs from the system it runs on. An adaptor installs it before any other call and takes it
// back at the end; a test installs one of its own.
namespace zr::backend {

// Both queues take blocks from any thread. Blocks for the main queue run on the main thread, one at a time, in
// the order of their times and, at equal times, in the order they came. Blocks that have not run when the host
// goes are dropped.
class Queues {
public:
    virtual ~Queues() = default;
    virtual std::uint64_t now() const = 0; // nanoseconds of a monotonic clock
    virtual void postToMain(std::uint64_t when, std::function<void()> block) = 0;
    virtual void postToGlobal(std::function<void()> block) = 0;
    virtual bool isMainThread() const = 0;
};

// The documents that the user has handed to a sandboxed program.
class Portal {
public:
    virtual ~Portal() = default;
    // The folder in which each document lies, in a folder named by its id; nothing as long as the portal has
    // not answered. From any thread; ends within two seconds.
    virtual std::optional<std::string> documentsFolder() = 0;
};

struct Host {
    std::shared_ptr<Queues> queues;
    // Folder of the application's resources; by default share/NAME beside the folder of the executable NAME.
    std::optional<std::filesystem::path> mainBundle;
    // Languages the user prefers, best first, as "zh-Hans-CN"; by default those of the environment.
    std::optional<std::vector<std::string>> preferredLanguages;
    // File of the user defaults; by default NAME.plist in the user's configuration folder. Empty: none, they
    // are kept in memory.
    std::optional<std::filesystem::path> userDefaults{};
    std::shared_ptr<Portal> portal{}; // null outside of a sandbox
};

ZR_EXPORT void install(Host host);
// The program is about to end: what is being done in the background waits no more for file systems that do not
// answer. From then on nothing there can be had until another host is installed.
ZR_EXPORT void stopWaiting();
ZR_EXPORT void uninstall();
// The language that the application speaks, as its main bundle names it; empty where it has none. Answered by
// whoever has the bundles.
ZR_EXPORT std::string preferredLocalization();

} // namespace zr::backend
