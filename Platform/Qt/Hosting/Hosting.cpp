// SPDX-License-Identifier: MIT
#include "Ending.h"
#include "Follower.h"
#include "ForeignView.h"
#include "HostWindow.h"

#include <ZRUIKitQt/Hosting.h>

#include <QApplication>

namespace zr::qt {

QWidget* embed(const std::shared_ptr<NSView>& view, QWidget* parent) { return new SlotWidget(view, parent); }

NSWindow* windowOf(QWidget* widget) {
    HostWindow* const host = widget ? HostWindow::of(widget->window()) : nullptr;
    return host ? host->window().get() : nullptr;
}

std::shared_ptr<NSView> viewOf(QWidget* widget) {
    if (!widget) return nullptr;
    if (const auto* const slot = dynamic_cast<SlotWidget*>(widget)) return slot->view();
    if (widget->isWindow()) {
        NSWindow* const window = windowOf(widget);
        return window ? retained(window->contentView()) : nullptr;
    }
    auto* follower = Follower::of(widget);
    if (!follower) follower = new Follower(widget, make<AnchorView>(&AnchorView::initWithWidget, widget));
    follower->follow();
    return follower->view();
}

void endHosting() {
    QList<QPointer<QWidget>> widgets;
    for (QWidget* const widget : QApplication::allWidgets()) widgets.append(widget);
    for (const auto& widget : widgets) {
        if (auto* const follower = widget ? Follower::of(widget) : nullptr) follower->leave();
        if (widget) delete HostWindow::find(widget);
    }
}

} // namespace zr::qt
