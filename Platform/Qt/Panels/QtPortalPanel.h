// SPDX-License-Identifier: MIT
#pragma once

#include <WindowSystem/Panels.h>
#include <ZRUIKitQt/InputBlock.h>
#include <ZRUIKitQt/QtPortal.h>

#include <QDBusMessage>
#include <QPointer>
#include <QWidget>

#include <memory>
#include <string>
#include <vector>

namespace zr::qt {

// Stands in this program for the dialog that the desktop's portal shows. It is never on the screen; where the
// dialog blocks all windows, Qt takes it for the modal window.
class PortalPanel final : public QWidget {
    Q_OBJECT

public:
    PortalPanel(const port::OpenPanel& panel, QWidget* over, port::OpenPanelClient& panelClient,
                QtPortal& portal);
    ~PortalPanel() override;

    void present() {} // the portal does
    void letGo();     // tells nothing any more, and goes

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    Q_SLOT void answered(const QDBusMessage& message);
    Q_SLOT void cancel() { end({}); }

    void ask(const port::OpenPanel& panel);
    void asked(const QString& request);
    void end(const std::vector<std::string>& paths);
    void goFromScreen();

    port::OpenPanelClient* client_; // null once it has been told
    QPointer<QWidget> over_;
    QDBusConnection bus_;
    QString request_; // what the portal calls it, from then on until it is answered
    std::vector<QDBusMessage> early_;
    std::unique_ptr<InputBlock> block_;
};

} // namespace zr::qt
