// SPDX-License-Identifier: MIT
#pragma once

#include <FoundationBackends/Host.h>

#include <QDBusConnection>

#include <chrono>
#include <future>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

namespace zr::qt {

// What a program inside of a sandbox reaches of the user's desktop, on a connection of its own to the session
// bus, which is made when something is first asked. From any thread.
class QtPortal final : public backend::Portal {
public:
    QtPortal() = default;
    ~QtPortal() override; // up to a second and a half, while the portal does not answer
    QtPortal(const QtPortal&) = delete;
    QtPortal& operator=(const QtPortal&) = delete;

    std::optional<std::string> documentsFolder() override;
    QDBusConnection bus(); // not connected where there is none

private:
    using Clock = std::chrono::steady_clock;

    std::optional<std::string> askForDocumentsFolder();

    const QString busName_ = QString::number(reinterpret_cast<quintptr>(this), 16);
    std::mutex busLock_, lock_;
    std::shared_future<std::optional<std::string>> question_; // and so on: guarded by lock_
    Clock::time_point answerDue_, mayAskAgain_;
};

} // namespace zr::qt
