// SPDX-License-Identifier: MIT
#include "Alignment.h"
#include "Label.h"

#include <ZRUIKitQt/Appearance.h>
#include <ZRUIKitQt/QtCanvas.h>

#include <QApplication>
#include <QPainter>
#include <QStyle>

namespace zr::qt {

LabelWidget::LabelWidget(port::ViewPeer& superview, port::ViewClient& viewClient)
    : WidgetOf(superview, viewClient) {
    setTextFormat(Qt::PlainText);
    setAttribute(Qt::WA_TransparentForMouseEvents);
}

void LabelWidget::setColour(const Colour& colour) {
    colour_ = colour;
    applyColour();
}

void LabelWidget::applyColour() {
    const QColor colour = colourFor(colour_, appearanceOf(QApplication::palette()));
    if (palette().color(QPalette::WindowText) == colour) return;
    QPalette own;
    own.setColor(QPalette::WindowText, colour);
    setPalette(own);
}

void LabelWidget::changeEvent(QEvent* event) {
    if (event->type() == QEvent::PaletteChange) applyColour();
    QLabel::changeEvent(event);
}

void LabelWidget::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const int flags =
        static_cast<int>(alignment()) | (wordWrap() ? Qt::TextWordWrap | Qt::TextWrapAnywhere : 0);
    const QString shown = wordWrap() ? text() : fontMetrics().elidedText(text(), Qt::ElideRight, width());
    style()->drawItemText(&painter, rect(), flags, palette(), isEnabled(), shown, QPalette::WindowText);
}

void LabelPeer::setText(const std::string& text) {
    if (widget_) widget_->setText(QString::fromStdString(text));
}

void LabelPeer::setWraps(bool wraps) {
    if (widget_) widget_->setWordWrap(wraps);
}

void LabelPeer::setAppearance(const FontDescription& font, const Colour& colour, NSTextAlignment alignment) {
    if (!widget_) return;
    widget_->setFont(fontFor(font));
    widget_->setColour(colour);
    widget_->setAlignment(alignmentOf(alignment));
}

} // namespace zr::qt
