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

SlotWidget::SlotWidget(const std::shared_ptr<NSView>& view, QWidget* parent) : QWidget(parent) {
    const auto slot = make<SlotView>(&SlotView::initWithWidget, this);
    slot_ = slot;
    if (!view) NSLog("zr::qt::embed: the view is null, and the widget stays empty");
    if (view) {
        if (dynamic_cast<SlotView*>(view->superview()))
            NSLog("zr::qt::embed: %@ is embedded already; it moves to the new widget", view);
        const NSSize size = view->frame().size;
        sizeHint_ = QSize(qRound(size.width), qRound(size.height));
        resize(sizeHint_);
        const unsigned mask = view->autoresizingMask();
        setSizePolicy(policy(mask & NSViewWidthSizable), policy(mask & NSViewHeightSizable));
        slot->addSubview(view);
        if (view->superview() == slot.get()) view->setFrameOrigin(NSZeroPoint);
    }
    new Follower(this, slot);
}

std::shared_ptr<NSView> SlotWidget::view() const {
    const auto slot = slot_.lock();
    return slot && !slot->subviews().empty() ? slot->subviews().front() : nullptr;
}

// The widgets of the view are let go of, rather than deleted with this: one of their events may be under way.
SlotWidget::~SlotWidget() { delete Follower::of(this); }

void SlotWidget::focusInEvent(QFocusEvent* event) {
    const auto embedded = view();
    NSWindow* const window = embedded ? embedded->window() : nullptr;
    if (!window || !embedded->acceptsFirstResponder()) return;
    // Backwards, this widget follows its own view.
    if (event->reason() == Qt::BacktabFocusReason && window->firstResponder() == embedded.get())
        focusPreviousChild();
    else
        window->makeFirstResponder(embedded.get());
}

bool isOfKit(const QWidget* widget) {
    while (!widget->isWindow() && (widget = widget->parentWidget()))
        if (dynamic_cast<const SlotWidget*>(widget)) return true;
    return false;
}

} // namespace zr::qt
