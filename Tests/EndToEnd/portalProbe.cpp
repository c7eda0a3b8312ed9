// SPDX-License-Identifier: MIT
// A program that asks the portals of its session bus when it is inside of a sandbox, or takes itself for such a
// one: with the option --sandboxed, which stands in front of the verb.
//
//   portal_probe grant FOLDER       hands the folder out for good, as the portal's own dialog does; prints the
//   id portal_probe revoke ID          takes it back portal_probe bookmark PATH...   prints the data of a
//   bookmark of each portal_probe resolve DATA...    prints for each where it leads, or the error's code
//   portal_probe choose KIND FOLDER lets the user choose several files or folders (KIND) from the folder on,
//   over
//                                   a window; prints their paths, or "cancelled"

#include <AppKit/NSApplication.h>
#include <AppKit/NSOpenPanel.h>
#include <AppKit/NSView.h>
#include <AppKit/NSWindow.h>
#include <Foundation/NSURL.h>
#include <ZRUIKitQt/Application.h>

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusReply>
#include <QDBusUnixFileDescriptor>

#include <cstdio>
#include <map>
#include <span>
#include <string>
#include <string_view>

#include <fcntl.h>
#include <unistd.h>

namespace {

using Words = std::span<char*>;

QDBusMessage toDocuments(const char* method) {
    return QDBusMessage::createMethodCall("org.freedesktop.portal.Documents",
                                          "/org/freedesktop/portal/documents",
                                          "org.freedesktop.portal.Documents", method);
}

int ended(const QDBusMessage& answer) {
    if (answer.type() != QDBusMessage::ErrorMessage) return 0;
    std::fprintf(stderr, "%s\n", qPrintable(answer.errorMessage()));
    return 1;
}

int grant(Words words) {
    constexpr uint kReuse = 1, kPersistent = 2, kFolder = 8;
    qDBusRegisterMetaType<QList<QDBusUnixFileDescriptor>>();
    const int folder = open(words[0], O_PATH | O_CLOEXEC);
    auto call = toDocuments("AddFull");
    call << QVariant::fromValue(QList<QDBusUnixFileDescriptor>{QDBusUnixFileDescriptor(folder)})
         << (kReuse | kPersistent | kFolder) << QString() << QStringList();
    close(folder); // the message has its own
    const auto answer = QDBusConnection::sessionBus().call(call);
    if (const int failed = ended(answer)) return failed;
    for (const auto& id : answer.arguments().at(0).toStringList()) std::puts(qPrintable(id));
    return 0;
}

int revoke(Words words) {
    return ended(QDBusConnection::sessionBus().call(toDocuments("Delete") << QString(words[0])));
}

int bookmark(Words words) {
    for (const char* path : words) {
        const auto data = zr::NSURL::fileURLWithPath(path).bookmarkData();
        for (const int byte : data.value_or(zr::NSData())) std::printf("%02x", static_cast<unsigned>(byte));
        std::puts(data ? "" : "none");
    }
    return 0;
}

int resolve(Words words) {
    for (const std::string text : words) {
        zr::NSData data;
        for (std::size_t i = 0; i + 1 < text.size(); i += 2)
            data.push_back(static_cast<std::uint8_t>(std::stoi(text.substr(i, 2), nullptr, 16)));
        std::optional<zr::NSError> error;
        const auto url = zr::NSURL::URLByResolvingBookmarkData_options_relativeToURL_bookmarkDataIsStale_error(
            data, zr::NSURLBookmarkResolutionWithSecurityScope, std::nullopt, nullptr, &error);
        if (url && url->startAccessingSecurityScopedResource())
            std::puts(url->path().c_str());
        else
            std::printf("error %ld\n", error ? error->code : 0);
    }
    return 0;
}

int choose(Words words) {
    auto& application = zr::NSApplication::sharedApplication();
    const auto window = zr::make<zr::NSWindow>(
        &zr::NSWindow::initWithContentRect_styleMask_backing_defer, zr::NSMakeRect(0, 0, 300, 200),
        zr::NSWindowStyleMaskTitled | zr::NSWindowStyleMaskClosable, zr::NSBackingStoreBuffered, false);
    window->setTitle("portal probe");
    window->makeKeyAndOrderFront(nullptr);
    const auto panel = zr::NSOpenPanel::openPanel();
    const bool folders = words[0] == std::string_view("folders");
    panel->setPrompt("Trust_it");
    panel->setCanChooseFiles(!folders);
    panel->setCanChooseDirectories(folders);
    panel->setAllowsMultipleSelection(true);
    panel->setDirectoryURL(zr::NSURL::fileURLWithPath(words[1]));
    panel->beginSheetModalForWindow_completionHandler(window.get(), [&](int response) {
        for (const auto& url : panel->URLs()) std::puts(url.path().c_str());
        if (response == zr::NSModalResponseCancel) std::puts("cancelled");
        application.terminate(nullptr);
    });
    application.run();
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    const std::map<std::string_view, std::pair<int (*)(Words), std::size_t>> verbs = {
        {"grant", {&grant, 1}},
        {"revoke", {&revoke, 1}},
        {"bookmark", {&bookmark, 0}},
        {"resolve", {&resolve, 0}},
        {"choose", {&choose, 2}}};
    Words words = Words(argv, static_cast<std::size_t>(argc)).subspan(1);
    zr::qt::Options options{.userDefaults = ""};
    if (!words.empty() && words[0] == std::string_view("--sandboxed")) {
        options.sandboxed = true;
        words = words.subspan(1);
    }
    const auto verb = words.empty() ? verbs.end() : verbs.find(words[0]);
    if (verb == verbs.end() || (verb->second.second != 0 && words.size() != verb->second.second + 1)) {
        std::fputs("Usage: see the head of its source\n", stderr);
        return 2;
    }
    const zr::qt::Application application(argc, argv, options);
    return verb->second.first(words.subspan(1));
}
