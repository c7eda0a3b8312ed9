// SPDX-License-Identifier: MIT
// TrimStudio: trims recordings. TrimStudio [--describe] [--appearance light|dark] FILE...

#include "Preferences.h"
#include "TrimWindow.h"

#include <AppKit/NSApplication.h>
#include <AppKit/NSMenu.h>
#include <Foundation/Dispatch.h>
#include <ZRUIKit/KitFoundation.h>
#include <ZRUIKitQt/Application.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <optional>
#include <string_view>
#include <thread>
#include <vector>

using namespace trimstudio;

namespace {

struct Arguments {
    std::vector<std::filesystem::path> files;
    std::optional<zr::Appearance> appearance;
    bool describes = false;
    bool valid = true;
};

Arguments readArguments(int argc, char** argv) {
    Arguments result;
    bool optionsEnded = false;
    for (int i = 1; i < argc; ++i) {
        const std::string_view argument = argv[i];
        const std::string_view next = i + 1 < argc ? argv[i + 1] : "";
        if (optionsEnded || !argument.starts_with("-")) {
            result.files.emplace_back(argument);
        } else if (argument == "--") {
            optionsEnded = true;
        } else if (argument == "--describe") {
            result.describes = true;
        } else if (argument == "--appearance" && (next == "light" || next == "dark")) {
            result.appearance = next == "dark" ? zr::Appearance::dark : zr::Appearance::light;
            ++i;
        } else {
            result.valid = false;
        }
    }
    result.valid = result.valid && !result.files.empty();
    return result;
}

class Quitter : public zr::NSApplicationDelegate {
public:
    // Each window that saves asks. When the program has to end nobody is asked.
    std::optional<zr::NSApplicationTerminateReply> applicationShouldTerminate(zr::NSApplication&) override {
        for (const auto& window : windows)
            if (!mustEnd && !window->mayStopSaving() && !mustEnd) return zr::NSTerminateCancel;
        return zr::NSTerminateNow;
    }
    std::optional<bool> applicationShouldTerminateAfterLastWindowClosed(zr::NSApplication&) override {
        return true;
    }
    std::vector<std::shared_ptr<TrimWindow>> windows;
    bool mustEnd = false;
};

// The end of a session, a closed terminal and Ctrl+C in it come as signals. To be called before there are
// threads, so that none of them gets them.
sigset_t holdSignals() {
    sigset_t signals;
    sigemptyset(&signals);
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) sigaddset(&signals, signal);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    return signals;
}

// The program quits in order, but there may be nobody to answer questions.
void quitOnSignals(const sigset_t& signals, const std::shared_ptr<Quitter>& quitter) {
    std::thread([signals, quitter = std::weak_ptr(quitter)] {
        for (int signal = 0; sigwait(&signals, &signal) == 0;)
            zr::dispatch_async(zr::dispatch_get_main_queue(), [quitter] {
                auto& application = zr::NSApplication::sharedApplication();
                if (const auto delegate = quitter.lock()) delegate->mustEnd = true;
                application.abortModal(); // a question that is open
                application.terminate(nullptr);
            });
    }).detach();
}

std::shared_ptr<zr::NSMenu> mainMenu(const std::shared_ptr<Preferences>& preferences) {
    using zr::AppLocalizedString;
    auto menu = zr::make<zr::NSMenu>();
    const auto file = zr::make<zr::NSMenu>();
    menu->addItemWithTitle_action_keyEquivalent(AppLocalizedString("File"), "", "")->setSubmenu(file);
    file->addItemWithTitle_action_keyEquivalent(AppLocalizedString("Preferences…"), "showPreferences:", ",")
        ->setTarget(preferences);
    file->addItem(zr::NSMenuItem::separatorItem());
    const auto pane = [&](const std::string& title, const zr::SEL& action, unsigned shift) {
        file->addItemWithTitle_action_keyEquivalent(title, action, "\t")
            ->setKeyEquivalentModifierMask(zr::NSEventModifierFlagCommand | shift);
    };
    pane(AppLocalizedString("Next Pane"), "goNextTab:", 0);
    pane(AppLocalizedString("Previous Pane"), "goPreviousTab:", zr::NSEventModifierFlagShift);
    file->addItem(zr::NSMenuItem::separatorItem());
    file->addItemWithTitle_action_keyEquivalent(AppLocalizedString("Close"), "performClose:", "w");
    file->addItemWithTitle_action_keyEquivalent(AppLocalizedString("Quit"), "terminate:", "q");
    return menu;
}

} // namespace

int main(int argc, char** argv) {
    const auto quitter = std::make_shared<Quitter>();
    const sigset_t signals = holdSignals();
    const zr::qt::Application qt(argc, argv);
    const Arguments arguments = readArguments(argc, argv);
    if (!arguments.valid) {
        std::fprintf(stderr, "Usage: TrimStudio [--describe] [--appearance light|dark] FILE...\n");
        return 2;
    }
    auto& application = zr::NSApplication::sharedApplication();
    application.setDelegate(quitter);
    quitOnSignals(signals, quitter);
    const auto preferences = zr::make<Preferences>(&Preferences::initWithDescribes, arguments.describes);
    application.setMainMenu(mainMenu(preferences));
    if (arguments.appearance) application.setAppearance(arguments.appearance);

    auto& windows = quitter->windows;
    for (const auto& file : arguments.files)
        windows.push_back(zr::make<TrimWindow>(&TrimWindow::initWithPath_describes, file, arguments.describes));
    preferences->setDidChange([quitter = std::weak_ptr(quitter)] {
        if (const auto owner = quitter.lock())
            for (const auto& window : owner->windows) window->describeSoon();
    });
    for (const auto& window : windows) window->show();
    application.run();
    return windows.size() == 1 && windows.front()->failed() ? 1 : 0;
}
