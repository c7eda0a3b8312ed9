// SPDX-License-Identifier: MIT
#pragma once

#include "WindowLink.h"

#include <WindowSystem/Drawing.h>

#include <QRegion>
#include <QWidget>

#include <memory>

namespace zr::qt {

// The widget of a view that draws. It keeps what the view drew: exposing it again does not ask the view, and of
// a new drawing only what differs from the one on the screen is painted.
class ViewWidget final : public QWidget, public ViewsWidget, public OffersEvents {
public:
    ViewWidget(QWidget* parent, std::shared_ptr<WindowLink> link, port::ViewClient& viewClient);
    ~ViewWidget() override;

    void place(const Rect& frame);
    static bool isDrawingWithinPaint() { return drawsWithinPaint_; }
    void invalidate(); // the view draws once, after the current event
    bool offersEventsOf(const QObject* receiver) const override { return receiver == this; }

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override { mouse(*event); }
    void mouseDoubleClickEvent(QMouseEvent* event) override { mouse(*event); }
    void mouseMoveEvent(QMouseEvent* event) override { mouse(*event); }
    void mouseReleaseEvent(QMouseEvent* event) override { mouse(*event); }
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override { key(*event); }
    void keyReleaseEvent(QKeyEvent* event) override { key(*event); }
    bool focusNextPrevChild(bool next) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    void mouse(QMouseEvent& event);
    void key(QKeyEvent& event);
    QRegion drawAgain();

    port::OperationList shown_;
    QPointF shift_; // from the exact corner to the whole point where the widget stands
    Size size_;
    bool drawn_ = false; // shown_ is what a drawing of this size gave
    bool drawingIsDue_ = false;
    static inline bool drawsWithinPaint_ = false;
};

} // namespace zr::qt
