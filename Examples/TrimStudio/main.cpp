// TrimStudio: trims recordings. TrimStudio [--describe] [--appearance light|dark] FILE...

#include "TrimWindow.h"

#include <AppKit/NSApplication.h>
#include <Foundation/Dispatch.h>
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
    std::optional<bool> applicationShouldTerminateAfterLastWindowClosed(zr::NSApplication&) override {
        return true;
    }
};

// The end of a session, a closed terminal and Ctrl+C in it come as signals: the program quits as from its menu.
// Must be called before there are threads, so that none of them gets the signals.
void quitOnSignals() {
    sigset_t signals;
    sigemptyset(&signals);
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) sigaddset(&signals, signal);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    std::thread([signals] {
        for (int signal = 0; sigwait(&signals, &signal) == 0;)
            zr::dispatch_async(zr::dispatch_get_main_queue(),
                               [] { zr::NSApplication::sharedApplication().terminate(nullptr); });
    }).detach();
}

} // namespace

int main(int argc, char** argv) {
    quitOnSignals();
    const zr::qt::Application qt(argc, argv);
    const Arguments arguments = readArguments(argc, argv);
    if (!arguments.valid) {
        std::fprintf(stderr, "Usage: TrimStudio [--describe] [--appearance light|dark] FILE...\n");
        return 2;
    }
    auto& application = zr::NSApplication::sharedApplication();
    const auto quitter = std::make_shared<Quitter>();
    application.setDelegate(quitter);
    if (arguments.appearance) application.setAppearance(arguments.appearance);

    std::vector<std::shared_ptr<TrimWindow>> windows;
    for (const auto& file : arguments.files)
        windows.push_back(zr::make<TrimWindow>(&TrimWindow::initWithPath_describes, file, arguments.describes));
    for (const auto& window : windows) window->show();
    application.run();
    return windows.size() == 1 && windows.front()->failed() ? 1 : 0;
}
