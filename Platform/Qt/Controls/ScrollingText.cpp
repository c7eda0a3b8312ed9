// SPDX-License-Identifier: MIT
#include "ScrollingText.h"

#include <ZRUIKitQt/QtCanvas.h>

namespace zr::qt {

ScrollingTextWidget::ScrollingTextWidget(port::ViewPeer& superview, port::ViewClient& viewClient)
    : QPlainTextEdit(dynamic_cast<HasWidget&>(superview).anyWidget())
    , ViewsWidget(dynamic_cast<HasWidget&>(superview).link, viewClient) {
    setReadOnly(true);
    setFrameShape(QFrame::NoFrame);
    document()->setDocumentMargin(0);
    viewport()->setAutoFillBackground(false);
}

void ScrollingTextPeer::setText(const std::string& text) {
    if (widget_) widget_->setPlainText(QString::fromStdString(text));
}

void ScrollingTextPeer::setAppearance(const FontDescription& font, const Colour&, NSTextAlignment) {
    if (widget_) widget_->setFont(fontFor(font));
}

} // namespace zr::qt
