#include "QtTrackingLoop.h"
#include "QtViews.h"

#include <QApplication>
#include <QInputEvent>

namespace zr::qt {

QtTrackingLoop::QtTrackingLoop() { qApp->installEventFilter(this); }

QtTrackingLoop::~QtTrackingLoop() {
    qApp->removeEventFilter(this);
    for (auto& [receiver, event] : heldBack_)
        if (receiver) QCoreApplication::postEvent(receiver, event.release());
}

void QtTrackingLoop::holdBack(bool holds) {
    qApp->removeEventFilter(this);
    if (holds) qApp->installEventFilter(this);
}

bool QtTrackingLoop::wait() {
    QEventLoop loop;
    loops_.push_back(&loop);
    woken_ = false;
    loop.exec();
    loops_.pop_back();
    return woken_; // not when the application ends
}

void QtTrackingLoop::wake() {
    woken_ = true;
    for (QEventLoop* loop : loops_) loop->quit();
}

bool QtTrackingLoop::eventFilter(QObject* watched, QEvent* event) {
    if (!watched->isWidgetType()) return false;
    switch (event->type()) {
    case QEvent::ShortcutOverride:
        event->accept();
        return true;
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseMove:
    case QEvent::Wheel:
        for (const QObject* const widget :
             {static_cast<const QObject*>(watched), static_cast<const QObject*>(watched->parent())})
            if (const auto* const offers = dynamic_cast<const OffersEvents*>(widget);
                offers && offers->offersEventsOf(watched))
                return false;
        break;
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
        break;
    default:
        return false;
    }
    heldBack_.emplace_back(watched, event->clone());
    return true;
}

} // namespace zr::qt
