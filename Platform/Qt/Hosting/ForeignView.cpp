// SPDX-License-Identifier: MIT
#include "Follower.h"
#include "ForeignView.h"

#include <AppKit/NSWindow.h>
#include <Foundation/NSLog.h>

namespace zr::qt {

ForeignPeer::ForeignPeer(QWidget* widget, std::shared_ptr<WindowLink> windowLink) : widget_(widget) {
    link = std::move(windowLink);
}

// The content of a window takes the keyboard from the kit's views, and never from the host.
void ForeignPeer::focus() {
    if (!widget_) return;
    if (!widget_->isWindow()) {
        widget_->setFocus(Qt::OtherFocusReason);
        return;
    }
    QWidget* const focused = widget_->focusWidget();
    if (focused && isOfKit(focused)) focused->clearFocus();
}

void SlotView::resizeSubviewsWithOldSize(const NSSize&) {
    const auto filling = subviews();
    for (const auto& view : filling) view->setFrame(bounds());
}

namespace {
QSizePolicy::Policy policy(bool flexible) { return flexible ? QSizePolicy::Expanding : QSizePolicy::Preferred; }
} // namespace

SlotWidget::SlotWidget(std::shared_ptr<NSView> view, QWidget* parent)
    : QWidget(parent), view_(std::move(view)) {
    const auto slot = make<SlotView>(&SlotView::initWithWidget, this);
    if (!view_) NSLog("zr::qt::embed: the view is null, and the widget stays empty");
    if (view_) {
        leavePlaceBefore();
        const NSSize size = view_->frame().size;
        sizeHint_ = QSize(qRound(size.width), qRound(size.height));
        resize(sizeHint_);
        const unsigned mask = view_->autoresizingMask();
        setSizePolicy(policy(mask & NSViewWidthSizable), policy(mask & NSViewHeightSizable));
        slot->addSubview(view_);
        view_->setFrameOrigin(NSZeroPoint);
    }
    new Follower(this, slot);
}

void SlotWidget::leavePlaceBefore() {
    const auto* const slot = dynamic_cast<SlotView*>(view_->superview());
    auto* const before = dynamic_cast<SlotWidget*>(slot ? slot->widget() : nullptr);
    if (!before) return;
    NSLog("zr::qt::embed: %@ is embedded already; it moves to the new widget", view_);
    before->view_ = nullptr;
}

// The widgets of the view are let go of, rather than deleted with this: one of their events may be under way.
SlotWidget::~SlotWidget() { delete Follower::of(this); }

void SlotWidget::focusInEvent(QFocusEvent* event) {
    NSWindow* const window = view_ ? view_->window() : nullptr;
    if (!window || !view_->acceptsFirstResponder()) return;
    // Backwards, this widget follows its own view.
    if (event->reason() == Qt::BacktabFocusReason && window->firstResponder() == view_.get())
        focusPreviousChild();
    else
        window->makeFirstResponder(view_.get());
}

bool isOfKit(const QWidget* widget) {
    while (!widget->isWindow() && (widget = widget->parentWidget()))
        if (dynamic_cast<const SlotWidget*>(widget)) return true;
    return false;
}

} // namespace zr::qt
