// SPDX-License-Identifier: MIT
#pragma once

#include <Base/Compiler.h>

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

// The kit on Qt. No header of Qt is needed to use it.
namespace zr::qt {

struct Options {
    // Folder of the application's resources; by default share/NAME beside the folder of the executable NAME.
    std::optional<std::filesystem::path> mainBundle{};
    // Languages the user prefers, best first; by default those of the environment.
    std::optional<std::vector<std::string>> preferredLanguages{};
    // File of the user defaults; by default NAME.plist in the user's configuration folder. Empty: none, they
    // are kept in memory.
    std::optional<std::filesystem::path> userDefaults{};
    // Whether files are the user's to hand out: the open panel is then the desktop portal's, and bookmarks know
    // by their documents' ids what it has handed out. By default whether there is a file "/.flatpak-info".
    std::optional<bool> sandboxed{};
};

// Makes Qt the window system of the kit while it lives. For programs that have a QApplication of their own,
// which must exist before and live longer: one that goes first ends it, with a warning. Main thread only; at
// most one at a time, whatever the adaptor. The constructor throws std::logic_error where one of that does not
// hold.
class ZR_EXPORT Platform {
public:
    explicit Platform(Options options = {});
    ~Platform();
    Platform(const Platform&) = delete;
    Platform& operator=(const Platform&) = delete;

private:
    struct Parts;
    std::unique_ptr<Parts> parts_;
};

// The same, for programs without a QApplication: it makes one, which has Qt's own texts in the language of the
// main bundle. Then NSApplication::sharedApplication().run(). Throws std::logic_error where there is one
// already.
class ZR_EXPORT Application {
public:
    // Qt takes its own options out of the arguments; both must live as long as this.
    Application(int& argc, char** argv, Options options = {});
    ~Application();
    Application(const Application&) = delete;
    Application& operator=(const Application&) = delete;

private:
    struct Parts;
    std::unique_ptr<Parts> parts_;
};

} // namespace zr::qt
