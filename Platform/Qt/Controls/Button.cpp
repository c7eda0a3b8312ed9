// SPDX-License-Identifier: MIT
#include "Button.h"

namespace zr::qt {

ButtonWidget::ButtonWidget(port::ViewPeer& superview, port::ViewClient& viewClient, port::ButtonClient& button)
    : WidgetOf(superview, viewClient) {
    QObject::connect(this, &QPushButton::clicked, this, [this, &button] {
        if (client) button.peerPressed();
    });
}

void ButtonWidget::mousePressEvent(QMouseEvent* event) {
    if (!wasRefusedFocus(*event)) QPushButton::mousePressEvent(event);
}

void ButtonPeer::setTitle(const std::string& title) {
    if (!widget_) return;
    // An ampersand is a character of the title, not the mark of a shortcut.
    widget_->setText(QString::fromStdString(title).replace(QLatin1Char('&'), QLatin1String("&&")));
}

void ButtonPeer::setDefault(bool isDefault) {
    if (widget_) widget_->setDefault(isDefault);
}

void ButtonPeer::setEnabled(bool enabled) {
    if (widget_) widget_->setEnabled(enabled);
}

Size ButtonPeer::naturalSize() const {
    if (!widget_) return {};
    const QSize size = widget_->sizeHint();
    return {double(size.width()), double(size.height())};
}

} // namespace zr::qt
