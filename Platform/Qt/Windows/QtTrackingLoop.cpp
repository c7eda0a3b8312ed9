// SPDX-License-Identifier: MIT
#include "QtDueWork.h"
#include "QtTrackingLoop.h"

#include <QApplication>

namespace zr::qt {

namespace {
// Main thread only.
std::vector<const QtLoop*>& living() {
    static auto& loops = *new std::vector<const QtLoop*>;
    return loops;
}
} // namespace

QtLoop::QtLoop() { living().push_back(this); }
QtLoop::~QtLoop() { std::erase(living(), this); }
bool QtLoop::isInnermost() const { return living().back() == this; }

bool QtLoop::wait() {
    QEventLoop loop;
    loops_.push_back(&loop);
    woken_ = false;
    loop.exec();
    loops_.pop_back();
    return woken_; // not when the application ends
}

void QtLoop::wake() {
    woken_ = true;
    for (QEventLoop* loop : loops_) loop->quit();
}

// QtTrackingLoop

QtTrackingLoop::QtTrackingLoop() { qApp->installEventFilter(this); }

QtTrackingLoop::~QtTrackingLoop() {
    qApp->removeEventFilter(this);
    for (auto& [receiver, event] : heldBack_)
        if (receiver) QCoreApplication::postEvent(receiver, event.release());
}

bool QtTrackingLoop::eventFilter(QObject* watched, QEvent* event) {
    if (!watched->isWidgetType() || !isInnermost()) return false;
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

// ModalLoop

ModalLoop::ModalLoop(WindowWidget& window) : window_(&window) { ++window.modalLoops; }

// Qt takes a window's modality back only while it is hidden. Most are closed at once; of another one it is
// taken when the event loop turns.
ModalLoop::~ModalLoop() {
    if (!window_ || --window_->modalLoops > 0) return;
    addDueWork(DueWork::update, window_, [](QWidget* widget) {
        const auto& window = static_cast<WindowWidget&>(*widget);
        if (window.modalLoops > 0 || widget->windowModality() == Qt::NonModal) return;
        const bool visible = widget->isVisible();
        widget->hide();
        widget->setWindowModality(Qt::NonModal);
        widget->setAttribute(Qt::WA_ShowWithoutActivating);
        if (visible) widget->show();
    });
}

} // namespace zr::qt
