// SPDX-License-Identifier: MIT
#pragma once

#include "WindowWidget.h"

#include <QEvent>
#include <QEventLoop>
#include <QObject>
#include <QPointer>

#include <memory>
#include <utility>
#include <vector>

namespace zr::qt {

// A nested event loop.
class QtLoop : public port::TrackingLoop {
public:
    QtLoop();
    ~QtLoop() override;
    QtLoop(const QtLoop&) = delete;
    QtLoop& operator=(const QtLoop&) = delete;

    bool wait() override;
    void wake() override;

protected:
    bool isInnermost() const; // of those that there are, whether they wait or not

private:
    std::vector<QEventLoop*> loops_; // those that run, the innermost last
    bool woken_ = false;
};

// The pointer's events come to the view that has them grabbed; keys, and what is meant for widgets that are no
// views, wait, and are posted again in the end. Shortcuts do not fire meanwhile. All of that rests while a loop
// lives that began later.
class QtTrackingLoop final : public QObject, public QtLoop {
public:
    QtTrackingLoop();
    ~QtTrackingLoop() override;

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    std::vector<std::pair<QPointer<QObject>, std::unique_ptr<QEvent>>> heldBack_;
};

// Blocks all other windows for this one, by Qt's modality.
class ModalLoop final : public QtLoop {
public:
    explicit ModalLoop(WindowWidget& window);
    ~ModalLoop() override;

private:
    QPointer<WindowWidget> window_;
};

} // namespace zr::qt
