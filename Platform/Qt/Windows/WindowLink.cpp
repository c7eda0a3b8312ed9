// SPDX-License-Identifier: MIT
#include "WindowLink.h"

#include <QApplication>
#include <QMouseEvent>

#include <utility>

namespace zr::qt {

void offer(const QWidget& widget, const std::shared_ptr<WindowLink>& link, QInputEvent& event, InputEvent input,
           QPointF position) {
    // The widget, and its link with it, may go meanwhile.
    const auto held = link; // NOLINT(performance-unnecessary-copy-initialization)
    const QWidget* const parent = widget.parentWidget();
    event.ignore();
    const bool offeredBefore = held->declinedFor == &widget && held->declinedType == event.type();
    held->declinedFor = offeredBefore ? parent : nullptr;
    if (offeredBefore || !held->client || !held->content) return;
    const QPointF inContent = QPointF(widget.mapTo(held->content, QPoint(0, 0))) + position;
    input.location = {inContent.x(), inContent.y()};
    if (held->client->peerEvent(input)) {
        event.accept();
        return;
    }
    held->declinedFor = parent;
    held->declinedType = event.type();
}

void ViewsWidget::tellGone() {
    if (auto* const gone = std::exchange(client, nullptr)) gone->peerGone();
}

void ViewsWidget::focusCame(QWidget& self) {
    if (!client) return;
    const QPointer<QWidget> widget = &self;
    const auto held = link;
    const bool may = client->peerMayTakeFocus();
    if (!widget || !widget->hasFocus()) return;
    if (may) {
        held->focused = widget;
        if (client) client->peerFocusChanged(true);
    } else if (held->focused && held->focused != widget) {
        held->focused->setFocus(Qt::OtherFocusReason);
    } else {
        widget->clearFocus();
    }
}

void ViewsWidget::focusWent() {
    if (client) client->peerFocusChanged(false);
}

bool endsPress(QWidget& topLevel, const QMouseEvent& press) {
    if (press.button() != Qt::LeftButton || QApplication::activePopupWidget()) return false;
    QWidget* const widget = topLevel.childAt(press.position().toPoint());
    auto* const views = dynamic_cast<ViewsWidget*>(widget);
    if (!views || !views->client || !widget->isEnabled() || widget->hasFocus() ||
        !(widget->focusPolicy() & Qt::ClickFocus))
        return false;
    return views->client->peerTakesFocusByPress() && !views->client->peerMayTakeFocus();
}

QRect wholePoints(const Rect& frame) {
    const QPoint topLeft(qRound(NSMinX(frame)), qRound(NSMinY(frame)));
    return {topLeft, QSize(qRound(NSMaxX(frame)) - topLeft.x(), qRound(NSMaxY(frame)) - topLeft.y())};
}

} // namespace zr::qt
