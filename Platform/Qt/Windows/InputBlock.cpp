// SPDX-License-Identifier: MIT
#include "InputBlock.h"

#include <QAction>
#include <QApplication>
#include <QEvent>
#include <QWindow>

namespace zr::qt {

namespace {

// The widget that a shortcut belongs to; one of the whole application, too.
QObject* ownerOf(QObject* shortcut) {
    const auto* const action = qobject_cast<QAction*>(shortcut);
    if (!action) return shortcut->parent();
    for (QObject* const object : action->associatedObjects())
        if (object->isWidgetType()) return object;
    return action->parent();
}

} // namespace

InputBlock::InputBlock(QWidget* blocked, QWidget* sheet) : blocked_(blocked), sheet_(sheet) {
    qApp->installEventFilter(this);
    notify(QEvent::WindowBlocked);
}

InputBlock::~InputBlock() { notify(QEvent::WindowUnblocked); }

void InputBlock::notify(int type) const {
    if (!blocked_ || !blocked_->windowHandle()) return;
    QEvent event(static_cast<QEvent::Type>(type));
    QCoreApplication::sendEvent(blocked_->windowHandle(), &event);
}

bool InputBlock::blocks(QObject* receiver) const {
    if (!blocked_) return false;
    const QWindow* const sheet = sheet_ ? sheet_->windowHandle() : nullptr;
    const auto* const widget = qobject_cast<QWidget*>(receiver);
    const QWindow* window = widget ? widget->window()->windowHandle() : qobject_cast<QWindow*>(receiver);
    while (window && window != sheet && window->modality() != Qt::ApplicationModal) {
        if (window == blocked_->windowHandle()) return true;
        window = window->parent() ? window->parent() : window->transientParent();
    }
    return false;
}

void InputBlock::activateSheet() const {
    if (!sheet_ || QApplication::activeModalWidget()) return;
    sheet_->raise();
    sheet_->activateWindow();
}

bool InputBlock::eventFilter(QObject* watched, QEvent* event) {
    switch (event->type()) {
    case QEvent::WindowActivate:
        if (watched == blocked_) activateSheet();
        return false;
    case QEvent::MouseButtonPress:
    case QEvent::TouchBegin:
    case QEvent::TabletPress:
        if (!blocks(watched)) return false;
        activateSheet();
        return true;
    case QEvent::Shortcut:
        return blocks(ownerOf(watched));
    case QEvent::ShortcutOverride:
        if (!blocks(watched)) return false;
        event->accept(); // so that it does not become a shortcut
        return true;
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseMove:
    case QEvent::Wheel:
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
    case QEvent::ContextMenu:
    case QEvent::TouchUpdate:
    case QEvent::TouchEnd:
    case QEvent::TabletMove:
    case QEvent::TabletRelease:
    case QEvent::NativeGesture:
    case QEvent::DragEnter:
    case QEvent::DragMove:
    case QEvent::Drop:
        return blocks(watched);
    default:
        return false;
    }
}

} // namespace zr::qt
