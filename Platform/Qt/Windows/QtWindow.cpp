// SPDX-License-Identifier: MIT
#include "QtDueWork.h"
#include "QtTrackingLoop.h"
#include "QtWindow.h"
#include "SheetEdge.h"

#include <QApplication>
#include <QScreen>
#include <QStyle>
#include <QWindow>

#include <algorithm>
#include <cmath>

namespace zr::qt {

namespace {

QSize wholeSize(Size size) {
    const auto limited = [](double length) {
        return static_cast<int>(std::clamp(std::round(length), 0.0, double(QWIDGETSIZE_MAX)));
    };
    return {limited(size.width), limited(size.height)};
}

double lastTitleBar = -1; // of the window that was asked last; negative: of none so far

double titleBarHeight(const QWidget& topLevel) {
    const double height = topLevel.geometry().top() - topLevel.frameGeometry().top();
    if (height > 0 && topLevel.isVisible()) lastTitleBar = height;
    return height;
}

// Some window systems tell it of a window that was never shown.
double guessedTitleBar() {
    QWidget probe(nullptr, Qt::Window);
    probe.winId();
    const int told = probe.windowHandle()->frameMargins().top();
    return told > 0 ? told : probe.style()->pixelMetric(QStyle::PM_TitleBarHeight, nullptr, &probe);
}

} // namespace

port::WindowInsets usualInsets() {
    if (lastTitleBar < 0) lastTitleBar = guessedTitleBar();
    static std::pair<QString, port::WindowInsets> last; // by the font
    const QString font = QApplication::font().key();
    if (last.first != font) {
        QWidget window;
        const MenuBar menuBar(&window,
                              {{.title = "X", .submenu = [] { return std::vector<port::MenuItem>(); }}});
        port::ToolbarItem item;
        item.label = "X";
        const Toolbar toolbar(&window, {item}, nullptr);
        last = {
            font,
            {.menuBar = double(menuBar.sizeHint().height()), .toolbar = double(toolbar.sizeHint().height())}};
    }
    return {.titleBar = lastTitleBar, .menuBar = last.second.menuBar, .toolbar = last.second.toolbar};
}

WindowPeer::WindowPeer(port::WindowClient& client, Size contentSize, port::WindowStyle style)
    : widget_(new WindowWidget(client, style)), style_(style) {
    widget_->resize(wholeSize(contentSize));
    if (!style_.resizable) widget_->setFixedSize(widget_->size());
}

WindowPeer::~WindowPeer() {
    if (behind_ && behind_->isVisible()) behind_->activateWindow();
    if (widget_) widget_->link->client = nullptr;
    letGo(widget_);
}

std::unique_ptr<port::ViewPeer> WindowPeer::makeContent(port::ViewClient& client) {
    auto* const content = new ViewWidget(widget_, widget_->link, client);
    widget_->contentWidget = content;
    widget_->link->content = content;
    widget_->placeContent();
    return std::make_unique<PlainPeer>(content);
}

// Showing, resizing and limiting a widget reach the client at once, which may let go of this peer.
void WindowPeer::show(bool activate) {
    const QPointer<WindowWidget> widget = widget_;
    if (widget && activate && widget->isMinimized())
        widget->setWindowState(widget->windowState() & ~Qt::WindowMinimized);
    if (widget) widget->setAttribute(Qt::WA_ShowWithoutActivating, !activate);
    if (widget) widget->show();
    if (!activate) return;
    if (widget) widget->raise();
    if (widget) widget->activateWindow();
}

std::unique_ptr<port::TrackingLoop> WindowPeer::beginModal() {
    WindowWidget* const widget = widget_.data();
    if (!widget) return std::make_unique<QtLoop>();
    auto loop = std::make_unique<ModalLoop>(*widget);
    QWidget* const inFront = QApplication::activeWindow();
    widget->setWindowFlag(Qt::Dialog);
    widget->setWindowModality(Qt::ApplicationModal);
    widget->winId(); // there is a window from here on
    if (inFront && inFront != widget) {
        widget->windowHandle()->setTransientParent(inFront->windowHandle());
        widget->move(inFront->frameGeometry().center() - widget->rect().center());
        behind_ = inFront;
    } else {
        widget->move(widget->screen()->availableGeometry().center() - widget->rect().center());
    }
    show(true);
    return loop;
}

void WindowPeer::showAsSheet(port::WindowPeer& parent) {
    WindowWidget* const widget = widget_.data();
    if (!widget) return;
    auto* const peer = dynamic_cast<TopLevelPeer*>(&parent);
    QWidget* const over = peer ? peer->topLevel() : nullptr;
    widget->setWindowFlags(Qt::Dialog | Qt::FramelessWindowHint);
    if (!widget->edge) widget->edge = new SheetEdge(widget);
    widget->edge->show();
    if (!over) widget->setWindowModality(Qt::ApplicationModal);
    widget->winId(); // there is a window from here on
    if (widget->sheetParent) widget->sheetParent->removeEventFilter(widget);
    widget->sheetParent = over;
    widget->parentBlock.reset();
    if (over) {
        widget->windowHandle()->setTransientParent(over->windowHandle());
        over->installEventFilter(widget);
        widget->placeSheet();
        widget->parentBlock = std::make_unique<InputBlock>(over, widget);
    }
    // A dialog that blocks all windows keeps the keyboard, and stays in front.
    QWidget* const modal = QApplication::activeModalWidget();
    const bool inFront = !over || !modal || modal == over;
    show(inFront);
    if (!inFront) modal->raise();
}

void WindowPeer::endSheet() {
    if (!widget_) return;
    if (widget_->sheetParent) widget_->sheetParent->removeEventFilter(widget_);
    QWidget* const parent = std::exchange(widget_->sheetParent, nullptr);
    widget_->parentBlock.reset();
    if (!parent && widget_->windowModality() != Qt::NonModal) {
        // Qt takes a window's modality back only while it is hidden.
        const bool visible = widget_->isVisible();
        widget_->hide();
        widget_->setWindowModality(Qt::NonModal);
        if (visible) show(false);
        return;
    }
    if (parent && widget_->isActiveWindow()) parent->activateWindow();
}

void WindowPeer::hide() {
    if (!widget_) return;
    widget_->hide();
    widget_->setWindowModality(Qt::NonModal);
}

void WindowPeer::close() {
    if (widget_ && widget_->client) widget_->client->peerClosed();
}

void WindowPeer::setTitle(const std::string& title) {
    if (widget_) widget_->setWindowTitle(QString::fromStdString(title));
}

// A resize reaches the client at once, which may let go of this peer. The widget is there until the event loop
// runs.
Size WindowPeer::setContentSize(Size size) {
    WindowWidget* const widget = widget_.data();
    if (!widget) return size;
    const QSize whole = wholeSize(size) + QSize(0, widget->barHeight());
    if (style_.resizable) {
        const QSize now = widget->size();
        limit(now.boundedTo(whole), now.expandedTo(whole));
        widget->resize(whole);
        if (!widget->link->client) return size;
        limit(whole, whole);
    } else {
        widget->setFixedSize(whole);
    }
    return sizeOf(widget->size() - QSize(0, widget->barHeight()));
}

void WindowPeer::setContentLimits(Size minimum, Size maximum) {
    minimum_ = minimum;
    maximum_ = maximum;
    if (widget_) limit(widget_->size(), widget_->size());
}

// Qt would resize the window, now or later, to what it is limited to: limits are for the user alone.
void WindowPeer::limit(QSize smallest, QSize largest) {
    WindowWidget* const widget = widget_.data();
    if (!widget || !style_.resizable) return;
    const QSize bar(0, widget->barHeight()), unlimited(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX);
    widget->setMinimumSize((wholeSize(minimum_) + bar).boundedTo(smallest));
    widget->setMaximumSize((wholeSize(maximum_) + bar).boundedTo(unlimited).expandedTo(largest));
}

void WindowPeer::scheduleUpdate() {
    if (widget_) widget_->scheduleUpdate();
}

Point WindowPeer::contentOriginOnScreen() const {
    if (!widget_) return {};
    const QPointF origin = widget_->mapToGlobal(QPointF(0, widget_->barHeight()));
    return {origin.x(), origin.y()};
}

Point WindowPeer::frameTopLeft() const {
    if (!widget_) return {};
    return {double(widget_->x()), double(widget_->y())};
}

void WindowPeer::setFrameTopLeft(Point topLeft) {
    if (widget_) widget_->move(qRound(topLeft.x), qRound(topLeft.y));
}

double WindowPeer::topInset() const {
    if (!widget_) return 0;
    return titleBarHeight(*widget_) + widget_->barHeight();
}

template <class Bar>
void WindowPeer::replace(Bar*& place, Bar* bar) {
    WindowWidget* const widget = widget_.data();
    const Size content = sizeOf(widget->size() - QSize(0, widget->barHeight()));
    if (place) {
        place->hide();
        place->deleteLater();
    }
    place = bar;
    if (bar) {
        bar->resize(widget->width(), bar->sizeHint().height());
        bar->show();
    }
    setContentLimits(minimum_, maximum_);
    widget->placeContent();
    setContentSize(content); // reaches the client, which may let go of this peer
}

void WindowPeer::setToolbar(const std::vector<port::ToolbarItem>& items, port::ToolbarClient* client) {
    if (widget_) replace(widget_->toolbar, items.empty() ? nullptr : new Toolbar(widget_, items, client));
}

void WindowPeer::setMenuBar(const std::vector<port::MenuItem>& items) {
    if (widget_) replace(widget_->menuBar, items.empty() ? nullptr : new MenuBar(widget_, items));
}

void WindowPeer::selectToolbarItem(std::optional<std::size_t> index) {
    if (widget_ && widget_->toolbar) widget_->toolbar->select(index);
}

double WindowPeer::backingScale() const { return widget_ ? widget_->devicePixelRatioF() : 1; }

} // namespace zr::qt
