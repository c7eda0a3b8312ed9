// SPDX-License-Identifier: MIT
#pragma once

#include <AppKit/NSWindow.h>
#include <ZRUIKitQt/QtWindow.h>

#include <QObject>
#include <QPointer>
#include <QWidget>

#include <memory>

namespace zr::qt {

// A top level of the host's as a window of the kit. Belongs to the top level and holds the window.
class HostWindow final : public QObject {
public:
    ~HostWindow() override;

    static HostWindow* find(const QWidget* top); // null where none was made
    static HostWindow* of(QWidget* top);         // null where none can be made

    const std::shared_ptr<NSWindow>& window() const { return window_; }
    QWidget* top() const { return top_; }
    void scheduleUpdate();

    std::shared_ptr<WindowLink> link = std::make_shared<WindowLink>();
    port::WindowClient* client = nullptr; // null once the peer is gone

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    explicit HostWindow(QWidget* top);
    void begin();
    void topLevelEvent(QEvent& event);
    void watchHandle();
    void focusMoved();
    void retire();

    QWidget* const top_;
    std::shared_ptr<NSWindow> window_;
    QPointer<QObject> closing_; // lives until the close event that is under way has been handled
};

} // namespace zr::qt
