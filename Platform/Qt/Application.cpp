// SPDX-License-Identifier: MIT
#include "Application.h"
#include "QtWindowSystem.h"

#include <FoundationBackends/Host.h>
#include <ZRUIKitQt/Ending.h>
#include <ZRUIKitQt/QtPortal.h>
#include <ZRUIKitQt/QtQueues.h>

#include <QApplication>
#include <QLibraryInfo>
#include <QLocale>
#include <QThread>
#include <QTranslator>

#include <filesystem>
#include <optional>
#include <stdexcept>
#include <system_error>
#include <utility>

namespace zr::qt {

namespace {

bool isSandboxed() {
    std::error_code none;
    return std::filesystem::exists("/.flatpak-info", none);
}

} // namespace

struct [[gnu::visibility("hidden")]] Platform::Parts {
    explicit Parts(Options options);
    ~Parts();
    // Of the QApplication, while its widgets are still there.
    static void applicationEnds() {
        qWarning("The zr::qt::Platform outlives its QApplication, and ends with it");
        ofLiving->reset();
    }
    static inline std::unique_ptr<Parts>* ofLiving = nullptr;

    std::shared_ptr<QtPortal> portal;
    std::shared_ptr<QtQueues> queues = std::make_shared<QtQueues>();
    QtWindowSystem system{portal};
};

Platform::Parts::Parts(Options options)
    : portal(options.sandboxed.value_or(isSandboxed()) ? std::make_shared<QtPortal>() : nullptr) {
    // Throws where there is another platform, whose host is to stay.
    system.setClient(&port::install(system));
    backend::install({.queues = queues,
                      .mainBundle = std::move(options.mainBundle),
                      .preferredLanguages = std::move(options.preferredLanguages),
                      .userDefaults = std::move(options.userDefaults),
                      .portal = portal});
    qAddPostRoutine(&applicationEnds);
}

Platform::Parts::~Parts() {
    qRemovePostRoutine(&applicationEnds);
    system.setClient(nullptr);
    port::uninstall();
    endHosting();
    backend::stopWaiting();
    queues->finish();
    // Widgets that were let go of go now, while Qt is still there.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    backend::uninstall();
}

Platform::Platform(Options options) {
    if (!qobject_cast<QApplication*>(QCoreApplication::instance()))
        throw std::logic_error("zr::qt::Platform: there is no QApplication, which must be made first");
    if (QThread::currentThread() != qApp->thread())
        throw std::logic_error("zr::qt::Platform: this is not the thread of the QApplication");
    parts_ = std::make_unique<Parts>(std::move(options));
    Parts::ofLiving = &parts_;
}

Platform::~Platform() = default;

namespace {
std::unique_ptr<QApplication> makeApplication(int& argc, char** argv) {
    if (QCoreApplication::instance())
        throw std::logic_error(
            "zr::qt::Application: there is a QApplication already; a zr::qt::Platform goes with it");
    return std::make_unique<QApplication>(argc, argv);
}
} // namespace

struct Application::Parts {
    Parts(int& argc, char** argv, Options options)
        : qt(makeApplication(argc, argv)), platform(std::in_place, std::move(options)) {
        QApplication::setQuitOnLastWindowClosed(false); // the application object decides
        const auto language = QString::fromStdString(backend::preferredLocalization());
        if (!language.isEmpty() && texts.load(QLocale(language), QStringLiteral("qtbase"), QStringLiteral("_"),
                                              QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
            QCoreApplication::installTranslator(&texts);
    }
    // The Wayland client of Qt 6.4 now and then waits for ever for one of its own threads when it is destroyed:
    // there the end of the process ends it.
    ~Parts() {
        platform.reset();
        if (QGuiApplication::platformName().startsWith("wayland")) static_cast<void>(qt.release());
    }
    QTranslator texts; // those of Qt's own dialogs
    std::unique_ptr<QApplication> qt;
    std::optional<Platform> platform;
};

Application::Application(int& argc, char** argv, Options options)
    : parts_(std::make_unique<Parts>(argc, argv, std::move(options))) {}

Application::~Application() = default;

} // namespace zr::qt
