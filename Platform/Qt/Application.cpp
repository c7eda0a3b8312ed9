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
#include <QTranslator>

#include <filesystem>
#include <optional>
#include <system_error>
#include <utility>

namespace zr::qt {

namespace {

bool isSandboxed() {
    std::error_code none;
    return std::filesystem::exists("/.flatpak-info", none);
}

} // namespace

struct Platform::Parts {
    explicit Parts(bool sandboxed) : portal(sandboxed ? std::make_shared<QtPortal>() : nullptr) {}

    std::shared_ptr<QtPortal> portal;
    std::shared_ptr<QtQueues> queues = std::make_shared<QtQueues>();
    QtWindowSystem system{portal};
};

Platform::Platform(Options options)
    : parts_(std::make_unique<Parts>(options.sandboxed.value_or(isSandboxed()))) {
    backend::install({.queues = parts_->queues,
                      .mainBundle = std::move(options.mainBundle),
                      .preferredLanguages = std::move(options.preferredLanguages),
                      .userDefaults = std::move(options.userDefaults),
                      .portal = parts_->portal});
    parts_->system.setClient(&port::install(parts_->system));
}

Platform::~Platform() {
    parts_->system.setClient(nullptr);
    port::uninstall();
    endHosting();
    backend::stopWaiting();
    parts_->queues->finish();
    // Widgets that were let go of go now, while Qt is still there.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    backend::uninstall();
}

struct Application::Parts {
    Parts(int& argc, char** argv, Options options)
        : qt(std::make_unique<QApplication>(argc, argv)), platform(std::in_place, std::move(options)) {
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
