// SPDX-License-Identifier: MIT
#include "QtDueWork.h"
#include "QtEvents.h"
#include "ViewWidget.h"

#include <ZRUIKitQt/Appearance.h>
#include <ZRUIKitQt/QtCanvas.h>

#include <QApplication>
#include <QPaintEvent>
#include <QPainter>

#include <utility>

namespace zr::qt {

ViewWidget::ViewWidget(QWidget* parent, std::shared_ptr<WindowLink> windowLink, port::ViewClient& viewClient)
    : QWidget(parent), ViewsWidget(std::move(windowLink), viewClient) {}

ViewWidget::~ViewWidget() { tellGone(); }

void ViewWidget::place(const Rect& frame) {
    const QRect whole = wholePoints(frame);
    shift_ = QPointF(frame.origin.x - whole.x(), frame.origin.y - whole.y());
    if (size_ != frame.size) drawn_ = false;
    size_ = frame.size;
    if (whole == geometry())
        update();
    else
        setGeometry(whole);
}

void ViewWidget::invalidate() {
    if (std::exchange(drawingIsDue_, true)) return;
    addDueWork(DueWork::drawing, this, [](QWidget* widget) {
        auto& view = *static_cast<ViewWidget*>(widget);
        if (view.drawingIsDue_ && view.isVisible() && view.client) view.update(view.drawAgain());
    });
}

// Answers what has to be painted.
QRegion ViewWidget::drawAgain() {
    // Drawing seldom happens within another; the memory is used by all views in turn.
    static port::OperationList spare;
    port::OperationList next = std::move(spare);
    next.clear();
    drawingIsDue_ = false;
    client->peerDraw(next, {{0, 0}, size_});
    static port::DamagedAreas areas;
    areas.clear();
    const bool comparable = std::exchange(drawn_, true) && shown_.compare(next, areas);
    shown_ = next;
    spare = std::move(next);
    if (!comparable || !client) return rect();
    const bool yUp = client->peerDrawsUpwards();
    QRegion damage;
    for (const Rect& area : areas.merged()) {
        const double top = yUp ? size_.height - NSMaxY(area) : NSMinY(area);
        damage +=
            QRectF(area.origin.x, top, area.size.width, area.size.height).translated(shift_).toAlignedRect();
    }
    return damage;
}

void ViewWidget::paintEvent(QPaintEvent* event) {
    if (!client) return;
    if (drawingIsDue_ || !drawn_) {
        const bool outer = std::exchange(drawsWithinPaint_, true);
        const QRegion elsewhere = drawAgain() - event->region();
        drawsWithinPaint_ = outer;
        if (!client) return;
        if (!elsewhere.isEmpty()) update(elsewhere);
    }
    const bool yUp = client->peerDrawsUpwards();
    const QRectF widgetPart = QRectF(event->rect()).translated(-shift_);
    const Rect part = {{widgetPart.x(), yUp ? size_.height - widgetPart.bottom() : widgetPart.top()},
                       {widgetPart.width(), widgetPart.height()}};
    if (!shown_.touches(part)) return; // opening a painter is not free
    QPainter painter(this);
    QtCanvas canvas(painter, {.height = size_.height,
                              .yUp = yUp,
                              .shift = shift_,
                              .appearance = appearanceOf(QApplication::palette())});
    canvas.paint(shown_, part);
}

void ViewWidget::mouse(QMouseEvent& event) {
    if (const auto input = inputEvent(event)) offer(*this, link, event, *input, event.position());
}

void ViewWidget::wheelEvent(QWheelEvent* event) {
    offer(*this, link, *event, inputEvent(*event), event->position());
}

void ViewWidget::key(QKeyEvent& event) { offer(*this, link, event, inputEvent(event), {}); }

bool ViewWidget::focusNextPrevChild(bool next) {
    return !link->ordersItsTabs && QWidget::focusNextPrevChild(next);
}

// Not QWidget's, which paint.
void ViewWidget::focusInEvent(QFocusEvent*) { focusCame(*this); }
void ViewWidget::focusOutEvent(QFocusEvent*) { focusWent(); }

} // namespace zr::qt
