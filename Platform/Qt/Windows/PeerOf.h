// SPDX-License-Identifier: MIT
#pragma once

#include "ViewWidget.h"
#include "WindowLink.h"

#include <QPointer>

#include <memory>
#include <string>
#include <utility>

namespace zr::qt {

// The way from any view peer of this adaptor to its widget.
struct HasWidget {
    virtual ~HasWidget() = default;
    virtual QWidget* anyWidget() const = 0;
    std::shared_ptr<WindowLink> link;
};

// The widget of a view's kind of control: a Qt widget, made as a child of the superview's.
template <class QtWidget>
class WidgetOf : public QtWidget, public ViewsWidget {
public:
    template <class... Arguments>
    WidgetOf(port::ViewPeer& superview, port::ViewClient& viewClient, Arguments&&... arguments)
        : QtWidget(std::forward<Arguments>(arguments)..., dynamic_cast<HasWidget&>(superview).anyWidget())
        , ViewsWidget(dynamic_cast<HasWidget&>(superview).link, viewClient) {}
    ~WidgetOf() override { tellGone(); }

protected:
    // In the kit's windows the key goes on to the window.
    bool focusNextPrevChild(bool next) override {
        return !link->ordersItsTabs && QtWidget::focusNextPrevChild(next);
    }
    void focusInEvent(QFocusEvent* event) override {
        const QPointer<QWidget> self = this;
        QtWidget::focusInEvent(event);
        if (self) focusCame(*this);
    }
    void focusOutEvent(QFocusEvent* event) override {
        const QPointer<QWidget> self = this;
        QtWidget::focusOutEvent(event);
        if (self) focusWent();
    }
    // A press that reaches the widget by another way than through its window: Qt has given the keyboard first.
    // Where that went back, because another view did not let it go, the press is over.
    bool wasRefusedFocus(const QMouseEvent& press) const {
        return press.button() == Qt::LeftButton && (this->focusPolicy() & Qt::ClickFocus) != 0 &&
               this->window()->focusWidget() != this;
    }
};

// A widget is never deleted directly, as one of its events may be under way: it is cut off, hidden and deleted
// later.
template <class Widget>
void letGo(QPointer<Widget>& widget) {
    if (!widget) return;
    widget->client = nullptr;
    widget->deleteLater();
    // A view may leave in the middle of drawing itself, where Qt does not let its widgets be moved.
    if (ViewWidget::isDrawingWithinPaint()) return;
    widget->hide();
    widget->setParent(nullptr);
}

// The shared body of all view peers.
template <class Kind, class Widget>
class PeerOf : public Kind, public HasWidget {
public:
    using Interface = Kind;

    explicit PeerOf(Widget* widget) : widget_(widget) {
        link = widget->link;
        widget->show();
    }
    ~PeerOf() override { letGo(widget_); }

    void setFrame(const Rect& frame) override {
        if (!widget_) return;
        if constexpr (requires { widget_->place(frame); })
            widget_->place(frame);
        else
            widget_->setGeometry(wholePoints(frame));
    }
    void setHidden(bool hidden) override {
        if (widget_) widget_->setVisible(!hidden);
    }
    void raise() override {
        if (widget_) widget_->raise();
    }
    void invalidate() override {
        if (!widget_) return;
        if constexpr (requires { widget_->invalidate(); })
            widget_->invalidate();
        else
            widget_->update();
    }
    void focus() override {
        if (widget_) widget_->setFocus(Qt::OtherFocusReason);
    }
    void setName(const std::string& name) override {
        if (widget_) widget_->setObjectName(QString::fromStdString(name));
    }
    QWidget* anyWidget() const override { return widget_; }

protected:
    QPointer<Widget> widget_;
};

class PlainPeer final : public PeerOf<port::ViewPeer, ViewWidget> {
public:
    using PeerOf::PeerOf;
    PlainPeer(port::ViewPeer& superview, port::ViewClient& viewClient)
        : PeerOf(new ViewWidget(dynamic_cast<HasWidget&>(superview).anyWidget(),
                                dynamic_cast<HasWidget&>(superview).link, viewClient)) {}
};

} // namespace zr::qt
