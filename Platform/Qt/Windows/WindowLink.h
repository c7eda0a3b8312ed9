// SPDX-License-Identifier: MIT
#pragma once

#include <WindowSystem/Windows.h>

#include <QInputEvent>
#include <QPointer>
#include <QWidget>

#include <memory>

namespace zr::qt {

// Shared by all the widgets of one window; the client is null once either side is gone.
struct WindowLink {
    port::WindowClient* client = nullptr;
    QPointer<QWidget> content; // whose corner events are measured from
    QPointer<QWidget> focused; // which had the keyboard last, with the consent of its view
    // In the kit's own windows Tab goes the kit's way. In a host's window Qt's order leads through all widgets.
    bool ordersItsTabs = false;
    // An event that the window did not take is handed by Qt to the parents, one after the other, which must not
    // offer it again. This is the next of them; it is compared, and never followed.
    const QWidget* declinedFor = nullptr;
    QEvent::Type declinedType = QEvent::None;
};

// Hands what the user did to the window; position: in the widget. Accepts the event when it was taken. After
// that the widget may be cut off from its view, or its window closed.
void offer(const QWidget& widget, const std::shared_ptr<WindowLink>& link, QInputEvent& event, InputEvent input,
           QPointF position);

// A widget whose pointer's events go to the window as they are, also while a view follows the pointer.
struct OffersEvents {
    virtual ~OffersEvents() = default;
    virtual bool offersEventsOf(const QObject* receiver) const = 0; // itself, or a part of it
};

// What is known of the widget of any view.
struct ViewsWidget {
    ViewsWidget(std::shared_ptr<WindowLink> windowLink, port::ViewClient& viewClient)
        : link(std::move(windowLink)), client(&viewClient) {}
    virtual ~ViewsWidget() = default;
    ViewsWidget(const ViewsWidget&) = delete;
    ViewsWidget& operator=(const ViewsWidget&) = delete;

    std::shared_ptr<WindowLink> link;
    port::ViewClient* client; // null once the peer is gone

protected:
    // On its way out: tells the view, which lets go of its peer.
    void tellGone();
    // Qt has given the keyboard to the widget, or has taken it. Where the view was not asked before it is now;
    // where it may not have it the keyboard goes back.
    void focusCame(QWidget& self);
    void focusWent();
};

// Whether a press that is about to reach the window is over: it would have moved the keyboard to a control
// whose view may not have it. Qt gives the keyboard before the control hears of the press.
bool endsPress(QWidget& topLevel, const QMouseEvent& press);

// Each edge goes to the nearest whole point.
QRect wholePoints(const Rect& frame);

} // namespace zr::qt
