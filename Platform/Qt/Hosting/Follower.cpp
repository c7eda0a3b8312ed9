// SPDX-License-Identifier: MIT
#include "Follower.h"
#include "HostWindow.h"

#include <AppKit/NSControl.h>
#include <AppKit/NSWindow.h>

#include <QEvent>

#include <algorithm>

namespace zr::qt {

Follower::Follower(QWidget* widget, std::shared_ptr<NSView> view)
    : QObject(widget), widget_(widget), view_(std::move(view)) {
    follow();
}

Follower::~Follower() { leave(); }

Follower* Follower::of(const QWidget* widget) {
    for (QObject* const child : widget->children())
        if (auto* const follower = dynamic_cast<Follower*>(child)) return follower;
    return nullptr;
}

void Follower::watchParents() {
    std::vector<QPointer<QWidget>> chain{widget_};
    while (!chain.back()->isWindow() && chain.back()->parentWidget())
        chain.emplace_back(chain.back()->parentWidget());
    if (chain == watched_) return;
    for (const auto& old : watched_)
        if (old && std::ranges::find(chain, old) == chain.end()) old->removeEventFilter(this);
    for (const auto& next : chain)
        if (std::ranges::find(watched_, next) == watched_.end()) next->installEventFilter(this);
    watched_ = std::move(chain);
}

void Follower::follow() {
    const auto view = view_;
    const QPointer<Follower> self = this; // overrides that are told may delete the widget
    watchParents();
    QWidget* const top = watched_.back();
    // A widget by itself that is not shown is on its way into a window.
    const bool homeless = top == widget_ && !top->isVisible() && !HostWindow::find(top);
    HostWindow* const host = homeless ? nullptr : HostWindow::of(top);
    if (!host) {
        leave();
        return;
    }
    const auto window = host->window();
    const QPoint corner = widget_->mapTo(top, QPoint(0, 0));
    view->setFrame(NSMakeRect(corner.x(), corner.y(), widget_->width(), widget_->height()));
    if (self) view->setHidden(widget_ != top && !widget_->isVisibleTo(top));
    auto* const control = dynamic_cast<NSControl*>(view.get());
    if (self && control && control->isEnabled() != widget_->isEnabled())
        control->setEnabled(widget_->isEnabled());
    if (self && view->superview() != window->contentView()) window->contentView()->addSubview(view);
    view->layoutSubtreeIfNeeded();
}

void Follower::leave() {
    const auto view = view_;
    view->removeFromSuperview();
}

bool Follower::eventFilter(QObject*, QEvent* event) {
    switch (event->type()) {
    case QEvent::Move:
    case QEvent::Resize:
    case QEvent::Show:
    case QEvent::Hide:
    case QEvent::ParentChange:
    case QEvent::EnabledChange:
        follow();
        break;
    default:
        break;
    }
    return false;
}

} // namespace zr::qt
