// SPDX-License-Identifier: MIT
#include "QtDueWork.h"
#include "WindowWidget.h"

#include <QCloseEvent>
#include <QKeyEvent>

#include <utility>

namespace zr::qt {

namespace {

Qt::WindowFlags flagsOf(port::WindowStyle style) {
    Qt::WindowFlags flags = Qt::Window | Qt::CustomizeWindowHint;
    if (!style.titled) return flags | Qt::FramelessWindowHint;
    flags |= Qt::WindowTitleHint | Qt::WindowSystemMenuHint;
    flags.setFlag(Qt::WindowCloseButtonHint, style.closable);
    flags.setFlag(Qt::WindowMinimizeButtonHint, style.miniaturizable);
    flags.setFlag(Qt::WindowMaximizeButtonHint, style.resizable);
    return flags;
}

} // namespace

Size sizeOf(const QSize& size) { return {double(size.width()), double(size.height())}; }

WindowWidget::WindowWidget(port::WindowClient& windowClient, port::WindowStyle style)
    : QWidget(nullptr, flagsOf(style)), client(&windowClient), closable(style.closable) {
    link->client = client;
    link->ordersItsTabs = true;
    setAttribute(Qt::WA_QuitOnClose, false); // the application object decides when the program ends
}

WindowWidget::~WindowWidget() {
    link->client = nullptr;
    if (auto* const gone = std::exchange(client, nullptr)) gone->peerGone();
}

void WindowWidget::scheduleUpdate() {
    addDueWork(DueWork::update, this, [](QWidget* widget) {
        auto* const owner = static_cast<WindowWidget*>(widget)->client;
        if (owner) owner->peerUpdate();
    });
}

// The client closes by letting go of its peer, and so of this widget.
void WindowWidget::closeEvent(QCloseEvent* event) {
    event->ignore();
    if (sheetParent) {
        sheetParent->close(); // a sheet and its window are one to the user
        return;
    }
    if (!closable) return;
    const QPointer<WindowWidget> self = this; // the answer may take a while, and the widget with it
    if (client && client->peerShouldClose() && self && self->client) self->client->peerClosed();
}

void WindowWidget::placeContent() {
    if (menuBar) menuBar->setGeometry(0, 0, width(), menuHeight());
    if (toolbar) toolbar->setGeometry(0, menuHeight(), width(), toolbar->height());
    if (contentWidget) contentWidget->place({{0, double(barHeight())}, sizeOf(size() - QSize(0, barHeight()))});
}

void WindowWidget::resizeEvent(QResizeEvent*) {
    placeContent();
    if (client) client->peerContentResized(sizeOf(size() - QSize(0, barHeight())));
}

void WindowWidget::placeSheet() {
    if (!sheetParent) return;
    const auto* const window = dynamic_cast<WindowWidget*>(sheetParent.data());
    const QPoint top = sheetParent->mapToGlobal(QPoint(0, window ? window->barHeight() : 0));
    move(top + QPoint((sheetParent->width() - width()) / 2, 0));
}

// A sheet follows its parent.
bool WindowWidget::eventFilter(QObject* watched, QEvent* event) {
    if (watched == sheetParent && (event->type() == QEvent::Move || event->type() == QEvent::Resize))
        placeSheet();
    return false;
}

void WindowWidget::moveEvent(QMoveEvent*) {
    if (client) client->peerMoved();
}

void WindowWidget::keyPressEvent(QKeyEvent* event) {
    if (menuBar && event->key() == Qt::Key_F10 && event->modifiers() == Qt::NoModifier)
        menuBar->openFirst();
    else
        QWidget::keyPressEvent(event);
}

void WindowWidget::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::ActivationChange && client) client->peerKeyChanged(isActiveWindow());
}

} // namespace zr::qt
