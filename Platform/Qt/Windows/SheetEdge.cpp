// SPDX-License-Identifier: MIT
#include "SheetEdge.h"

#include <QEvent>
#include <QPainter>

namespace zr::qt {

SheetEdge::SheetEdge(QWidget* window) : QWidget(window) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
    window->installEventFilter(this);
    fit();
}

bool SheetEdge::eventFilter(QObject*, QEvent* event) {
    if (event->type() == QEvent::Resize || event->type() == QEvent::Show) fit();
    return false;
}

void SheetEdge::paintEvent(QPaintEvent*) {
    constexpr float kStrength = 0.35F;
    QColor colour = palette().color(QPalette::WindowText);
    colour.setAlphaF(kStrength);
    QPainter painter(this);
    painter.setPen(colour);
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
}

void SheetEdge::fit() {
    setGeometry(parentWidget()->rect());
    raise();
}

} // namespace zr::qt
