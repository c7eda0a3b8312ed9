// SPDX-License-Identifier: MIT
#include "QtPortalPanel.h"

#include <QApplication>
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <QEvent>
#include <QUuid>

#include <utility>

namespace zr::qt {

namespace {

constexpr const char* kService = "org.freedesktop.portal.Desktop";
constexpr const char* kRequest = "org.freedesktop.portal.Request";

void closeRequest(const QDBusConnection& bus, const QString& request) {
    auto message = QDBusMessage::createMethodCall(kService, request, kRequest, "Close");
    message.setAutoStartService(false);
    bus.send(message);
}

// By which the portal's dialog knows over which window it belongs. A Wayland window has none that Qt tells.
QString handleOf(const QWidget* window) {
    if (!window || QGuiApplication::platformName() != "xcb") return {};
    return QStringLiteral("x11:%1").arg(window->window()->winId(), 0, 16);
}

std::vector<std::string> pathsOf(const QStringList& uris) {
    std::vector<std::string> paths;
    for (const auto& uri : uris) {
        const QByteArray text = uri.toUtf8();
        const auto start = text.indexOf('/', qsizetype(sizeof "file://") - 1);
        if (text.startsWith("file://") && start > 0)
            paths.push_back(QByteArray::fromPercentEncoding(text.mid(start)).toStdString());
    }
    return paths;
}

} // namespace

PortalPanel::PortalPanel(const port::OpenPanel& panel, QWidget* over, port::OpenPanelClient& panelClient,
                         QtPortal& portal)
    : QWidget(over, Qt::Dialog), client_(&panelClient), over_(over), bus_(portal.bus()) {
    setAttribute(Qt::WA_DontShowOnScreen);
    setAttribute(Qt::WA_QuitOnClose, false);
    ask(panel);
    if (over) {
        over->installEventFilter(this);
        block_ = std::make_unique<InputBlock>(over, nullptr);
    } else {
        setWindowModality(Qt::ApplicationModal);
        show();
    }
}

PortalPanel::~PortalPanel() {
    cancel();
    goFromScreen();
}

void PortalPanel::ask(const port::OpenPanel& panel) {
    // The portal may name the request otherwise than its token says, and answer at once.
    bus_.connect(kService, QString(), kRequest, "Response", this, SLOT(answered(QDBusMessage)));
    auto* const service =
        new QDBusServiceWatcher(kService, bus_, QDBusServiceWatcher::WatchForUnregistration, this);
    connect(service, &QDBusServiceWatcher::serviceUnregistered, this, &PortalPanel::cancel);
    bus_.connect(QString(), "/org/freedesktop/DBus/Local", "org.freedesktop.DBus.Local", "Disconnected", this,
                 SLOT(cancel()));

    const QString prompt = QString::fromStdString(panel.prompt);
    QVariantMap options;
    options["handle_token"] = "zruikit" + QUuid::createUuid().toString(QUuid::Id128);
    // An underscore is a character of the prompt, not the mark of a shortcut.
    options["accept_label"] = QString(prompt).replace('_', "__");
    options["modal"] = true;
    options["multiple"] = panel.several;
    options["directory"] = panel.folders && !panel.files;
    if (!panel.folder.empty())
        options["current_folder"] = QByteArray(panel.folder.c_str(), qsizetype(panel.folder.size()) + 1);
    auto message = QDBusMessage::createMethodCall(kService, "/org/freedesktop/portal/desktop",
                                                  "org.freedesktop.portal.FileChooser", "OpenFile");
    message << handleOf(over_ ? over_.data() : QApplication::activeWindow()) << prompt << options;
    auto* const call = new QDBusPendingCallWatcher(bus_.asyncCall(message), qApp);
    connect(call, &QDBusPendingCallWatcher::finished, call,
            [self = QPointer(this), bus = bus_](QDBusPendingCallWatcher* finished) {
                finished->deleteLater();
                const QDBusPendingReply<QDBusObjectPath> reply = *finished;
                const QString request = reply.isValid() ? reply.value().path() : QString();
                if (self && self->client_)
                    self->asked(request);
                else if (reply.isValid())
                    closeRequest(bus, request); // nobody has waited for it
            });
    // Such a call never ends.
    if (!bus_.isConnected()) QMetaObject::invokeMethod(this, &PortalPanel::cancel, Qt::QueuedConnection);
}

void PortalPanel::asked(const QString& request) {
    if (request.isEmpty()) return cancel();
    request_ = request;
    for (const auto& message : std::exchange(early_, {}))
        if (message.path() == request_) return answered(message);
}

void PortalPanel::answered(const QDBusMessage& message) {
    if (!client_) return;
    if (request_.isEmpty()) return early_.push_back(message);
    if (message.path() != request_) return; // another panel's
    request_.clear();
    const auto arguments = message.arguments();
    const bool chose = arguments.size() == 2 && arguments[0].toUInt() == 0;
    const auto results = chose ? qdbus_cast<QVariantMap>(arguments[1]) : QVariantMap();
    end(pathsOf(results.value("uris").toStringList()));
}

// The client is told before the panel goes, and may take it with it.
void PortalPanel::end(const std::vector<std::string>& paths) {
    const QPointer<PortalPanel> self = this;
    if (auto* const asked = std::exchange(client_, nullptr)) asked->peerChose(paths);
    if (self) goFromScreen();
}

void PortalPanel::goFromScreen() {
    if (!request_.isEmpty()) closeRequest(bus_, std::exchange(request_, {}));
    block_.reset();
    hide();
}

void PortalPanel::letGo() {
    client_ = nullptr;
    goFromScreen();
    deleteLater(); // it may be in the middle of telling
}

bool PortalPanel::eventFilter(QObject* watched, QEvent* event) {
    if (watched == over_ && event->type() == QEvent::Hide && !event->spontaneous()) cancel();
    return QWidget::eventFilter(watched, event);
}

} // namespace zr::qt
