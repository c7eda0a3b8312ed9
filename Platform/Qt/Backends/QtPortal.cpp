// SPDX-License-Identifier: MIT
#include "QtPortal.h"

#include <QDBusMessage>
#include <QDBusReply>

namespace zr::qt {

namespace {

using namespace std::chrono_literals;

constexpr std::chrono::milliseconds kPatience = 1400ms, kRest = 10s;
constexpr int kCallEnds = 1500; // milliseconds

} // namespace

QtPortal::~QtPortal() {
    question_ = {};
    QDBusConnection::disconnectFromBus(busName_);
}

QDBusConnection QtPortal::bus() {
    const std::lock_guard guard(busLock_);
    auto bus = QDBusConnection::connectToBus(QDBusConnection::SessionBus, busName_);
    if (bus.isConnected()) return bus;
    // The name leads to the lost connection until that is given up.
    QDBusConnection::disconnectFromBus(busName_);
    return QDBusConnection::connectToBus(QDBusConnection::SessionBus, busName_);
}

// The folder stays the same as long as the session lasts. While the portal is silent, not every caller waits
// for it.
std::optional<std::string> QtPortal::documentsFolder() {
    std::unique_lock lock(lock_);
    const auto now = Clock::now();
    const bool failed =
        question_.valid() && question_.wait_for(0s) == std::future_status::ready && !question_.get();
    if (!question_.valid() || (failed && now >= mayAskAgain_)) {
        question_ = std::async(std::launch::async, [this] { return askForDocumentsFolder(); }).share();
        answerDue_ = now + kPatience;
    }
    const auto question = question_;
    const auto due = answerDue_;
    lock.unlock();
    if (question.wait_until(due) == std::future_status::ready) return question.get();
    lock.lock();
    mayAskAgain_ = due + kRest;
    return std::nullopt;
}

std::optional<std::string> QtPortal::askForDocumentsFolder() {
    const auto question =
        QDBusMessage::createMethodCall("org.freedesktop.portal.Documents", "/org/freedesktop/portal/documents",
                                       "org.freedesktop.portal.Documents", "GetMountPoint");
    const QDBusReply<QByteArray> answer = bus().call(question, QDBus::Block, kCallEnds);
    if (!answer.isValid()) return std::nullopt;
    std::string folder(answer.value().constData()); // up to the zero at its end
    if (!folder.starts_with('/')) return std::nullopt;
    return folder;
}

} // namespace zr::qt
