// SPDX-License-Identifier: MIT
#include "Alignment.h"
#include "TextField.h"

#include <ZRUIKitQt/Appearance.h>
#include <ZRUIKitQt/QtCanvas.h>

#include <QApplication>
#include <QKeyEvent>
#include <QStyleOptionFrame>

namespace zr::qt {

TextFieldWidget::TextFieldWidget(port::ViewPeer& superview, port::ViewClient& viewClient,
                                 port::TextFieldClient& fieldClient)
    : WidgetOf(superview, viewClient), field_(fieldClient) {
    // Not textChanged, which the program's own changes send, too.
    QObject::connect(this, &QLineEdit::textEdited, this, [this](const QString& text) {
        if (client) field_.peerTextEdited(text.toStdString());
    });
}

void TextFieldWidget::setLook(const port::TextFieldLook& look) {
    look_ = look;
    setFont(fontFor(look.font));
    setAlignment(alignmentOf(look.alignment));
    // What is read only looks like text on its background.
    setFrame(look.bezeled && look.drawsBackground);
    applyColours();
    update();
}

void TextFieldWidget::applyColours() {
    const Appearance appearance = appearanceOf(QApplication::palette());
    const QColor text = colourFor(look_.colour, appearance);
    const QColor base =
        look_.drawsBackground ? colourFor(look_.background, appearance) : QColor(Qt::transparent);
    if (palette().color(QPalette::Text) == text && palette().color(QPalette::Base) == base) return;
    QPalette own;
    own.setColor(QPalette::Active, QPalette::Text, text);
    own.setColor(QPalette::Inactive, QPalette::Text, text);
    own.setColor(QPalette::Base, base);
    setPalette(own);
}

void TextFieldWidget::changeEvent(QEvent* event) {
    if (event->type() == QEvent::PaletteChange) applyColours();
    QLineEdit::changeEvent(event);
}

void TextFieldWidget::initStyleOption(QStyleOptionFrame* option) const {
    QLineEdit::initStyleOption(option);
    if (!look_.showsFocus) option->state &= ~QStyle::State_HasFocus;
}

// What the field does may take the widget with it.
void TextFieldWidget::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        event->accept();
        if (client) field_.peerReturn();
        return;
    case Qt::Key_Escape:
        event->ignore();
        if (client && field_.peerEscape()) event->accept();
        return;
    default:
        QLineEdit::keyPressEvent(event);
    }
}

// Qt asks this, too, when it disables the widget.
bool TextFieldWidget::focusNextPrevChild(bool next) {
    if (!link->ordersItsTabs) return WidgetOf::focusNextPrevChild(next);
    if (!isEnabled()) return false;
    if (client) field_.peerTab(!next);
    return true;
}

void TextFieldWidget::mousePressEvent(QMouseEvent* event) {
    if (!wasRefusedFocus(*event)) QLineEdit::mousePressEvent(event);
}

void TextFieldPeer::setText(const std::string& text) {
    if (widget_) widget_->setText(QString::fromStdString(text));
}

void TextFieldPeer::setLook(const port::TextFieldLook& look) {
    if (widget_) widget_->setLook(look);
}

void TextFieldPeer::setEditing(bool editable, bool selectable) {
    if (!widget_) return;
    widget_->setReadOnly(!editable);
    widget_->setFocusPolicy(selectable ? Qt::StrongFocus : Qt::NoFocus);
    widget_->setAttribute(Qt::WA_TransparentForMouseEvents, !selectable);
}

void TextFieldPeer::setEnabled(bool enabled) {
    if (widget_) widget_->setEnabled(enabled);
}

void TextFieldPeer::selectText() {
    if (widget_) widget_->selectAll();
}

} // namespace zr::qt
