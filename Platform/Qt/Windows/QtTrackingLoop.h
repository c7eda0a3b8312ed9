#pragma once

#include <WindowSystem/Windows.h>

#include <QEvent>
#include <QEventLoop>
#include <QObject>
#include <QPointer>

#include <memory>
#include <utility>
#include <vector>

namespace zr::qt {

// A nested event loop. The pointer's events come to the view that has them grabbed; keys, and what is meant for
// widgets that are no views, wait, and are posted again in the end. Shortcuts do not fire meanwhile.
class QtTrackingLoop final : public QObject, public port::TrackingLoop {
public:
    QtTrackingLoop();
    ~QtTrackingLoop() override;

    bool wait() override;
    void wake() override;
    void holdBack(bool holds) override;

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    std::vector<QEventLoop*> loops_; // those that run, the innermost last

    std::vector<std::pair<QPointer<QObject>, std::unique_ptr<QEvent>>> heldBack_;
    bool woken_ = false;
};

} // namespace zr::qt
