// SPDX-License-Identifier: MIT
#include "Follower.h"
#include "ForeignView.h"
#include "HostWindow.h"

#include <ZRUIKitQt/QtDueWork.h>
#include <ZRUIKitQt/QtTrackingLoop.h>

#include <QApplication>
#include <QEvent>
#include <QWindow>

#include <cmath>

namespace zr::qt {

namespace {

Size sizeOf(const QWidget& widget) { return {double(widget.width()), double(widget.height())}; }

// What is done here reaches the host at once, which may delete the window.
class HostWindowPeer final : public port::WindowPeer, public TopLevelPeer {
public:
    HostWindowPeer(HostWindow& host, port::WindowClient& client) : host_(host), top_(host.top()) {
        host_.client = client_ = &client;
        host_.link->client = client_;
        host_.link->content = top_;
    }
    ~HostWindowPeer() override {
        host_.client = nullptr;
        host_.link->client = nullptr;
    }

    void show(bool activate) override {
        const QPointer<QWidget> top = top_;
        if (!top) return;
        const bool before = top->testAttribute(Qt::WA_ShowWithoutActivating);
        if (!activate) top->setAttribute(Qt::WA_ShowWithoutActivating);
        top->show();
        if (top) top->setAttribute(Qt::WA_ShowWithoutActivating, before);
        if (top && activate) top->raise();
        if (top && activate) top->activateWindow();
    }
    void showAsSheet(port::WindowPeer&) override { show(true); }
    void endSheet() override {}
    QWidget* topLevel() const override { return top_; }
    void hide() override {
        if (top_) top_->hide();
    }
    void close() override {
        if (top_) top_->close();
    }
    void setTitle(const std::string& title) override {
        if (top_) top_->setWindowTitle(QString::fromStdString(title));
    }
    Size setContentSize(Size size) override {
        const QPointer<QWidget> top = top_;
        if (top) top->resize(qRound(size.width), qRound(size.height));
        return top ? sizeOf(*top) : size;
    }
    void setContentLimits(Size, Size) override {} // are the host's
    void scheduleUpdate() override { host_.scheduleUpdate(); }
    Point frameTopLeft() const override { return top_ ? Point{double(top_->x()), double(top_->y())} : Point{}; }
    void setFrameTopLeft(Point topLeft) override {
        if (top_) top_->move(qRound(topLeft.x), qRound(topLeft.y));
    }
    double topInset() const override { return top_ ? top_->geometry().top() - top_->frameGeometry().top() : 0; }
    port::WindowBars* bars() override { return nullptr; }
    Point contentOriginOnScreen() const override {
        if (!top_) return {};
        const QPointF origin = top_->mapToGlobal(QPointF(0, 0));
        return {origin.x(), origin.y()};
    }
    double backingScale() const override { return top_ ? top_->devicePixelRatioF() : 1; }
    // A host decides on modality itself.
    std::unique_ptr<port::TrackingLoop> beginModal() override {
        show(true);
        return std::make_unique<QtLoop>();
    }
    std::unique_ptr<port::ViewPeer> makeContent(port::ViewClient&) override {
        return std::make_unique<ForeignPeer>(top_, host_.link);
    }

private:
    HostWindow& host_; // ends before the host does
    QPointer<QWidget> top_;
    port::WindowClient* client_ = nullptr;
};

// The top level itself: y runs down as Qt's does, so that frames in it are those of its widgets.
class ContentView : public NSView {
public:
    bool initWithTop(QWidget* top) {
        top_ = top;
        return NSView::init();
    }
    bool isFlipped() const override { return true; }

    // Widgets hide, cut off and cover each other in ways that frames do not tell: Qt knows who is at the point.
    NSView* hitTest(const NSPoint& point) override {
        if (!top_ || !NSMouseInRect(toOwn(point), bounds(), true)) return nullptr;
        const NSPoint own = toOwn(point);
        const QPoint pixel(static_cast<int>(std::floor(own.x)), static_cast<int>(std::floor(own.y)));
        const QWidget* widget = top_->childAt(pixel);
        if (!widget) widget = top_;
        for (; widget; widget = widget == top_ ? nullptr : widget->parentWidget()) {
            const auto* const follower = Follower::of(widget);
            if (!follower) continue;
            NSView* const hit = follower->view()->hitTest(own);
            if (hit) return hit;
        }
        return this;
    }

private:
    NSPoint toOwn(const NSPoint& point) const { return {point.x, frame().size.height - point.y}; }

    QPointer<QWidget> top_;
};

class HostedWindow : public NSWindow {
public:
    bool initWithHost(HostWindow* host) {
        QWidget* const top = host->top();
        return initWithForeignPeer(
            [host](port::WindowClient& client) { return std::make_unique<HostWindowPeer>(*host, client); },
            make<ContentView>(&ContentView::initWithTop, top), sizeOf(*top), top->windowTitle().toStdString());
    }
};

} // namespace

HostWindow::HostWindow(QWidget* top) : QObject(top), top_(top) {}

HostWindow::~HostWindow() {
    if (client) client->peerGone();
}

HostWindow* HostWindow::find(const QWidget* top) {
    for (QObject* const child : top->children())
        if (auto* const host = dynamic_cast<HostWindow*>(child)) return host;
    return nullptr;
}

HostWindow* HostWindow::of(QWidget* top) {
    if (auto* const found = find(top)) return found;
    if (dynamic_cast<WindowWidget*>(top)) return nullptr;
    auto host = std::unique_ptr<HostWindow>(new HostWindow(top));
    host->window_ = make<HostedWindow>(&HostedWindow::initWithHost, host.get());
    if (!host->window_) return nullptr;
    host->begin();
    return host.release(); // the top level's
}

void HostWindow::begin() {
    top_->installEventFilter(this);
    QObject::connect(qApp, &QApplication::focusChanged, this, [this] { focusMoved(); });
    watchHandle();
    if (top_->isVisible()) client->peerShown();
    if (top_->isActiveWindow()) client->peerKeyChanged(true);
}

void HostWindow::scheduleUpdate() {
    addDueWork(DueWork::update, top_, [](QWidget* top) {
        const auto* const host = find(top);
        if (host && host->client) host->client->peerUpdate();
    });
}

bool HostWindow::eventFilter(QObject* watched, QEvent* event) {
    if (!client) return false;
    if (watched == top_)
        topLevelEvent(*event);
    else if (event->type() == QEvent::WindowBlocked)
        client->peerBlocked();
    return false;
}

void HostWindow::topLevelEvent(QEvent& event) {
    if (!top_->isWindow()) {
        retire();
        return;
    }
    switch (event.type()) {
    case QEvent::Show:
        client->peerShown();
        break;
    case QEvent::WinIdChange:
        watchHandle();
        break;
    case QEvent::Close:
        // Whether the host closes is seen by whether it hides meanwhile. An object that is deleted later
        // outlives the event loops that the host may run in its answer.
        if (closing_) break;
        closing_ = new QObject(this);
        closing_->deleteLater();
        break;
    case QEvent::Hide:
        if (top_->isVisible()) break; // minimised
        if (closing_)
            client->peerClosed();
        else
            client->peerHidden();
        break;
    case QEvent::Move:
        client->peerMoved();
        break;
    case QEvent::Resize:
        client->peerContentResized(sizeOf(*top_));
        break;
    case QEvent::ActivationChange:
        client->peerKeyChanged(top_->isActiveWindow());
        break;
    case QEvent::WindowTitleChange:
        client->peerRetitled(top_->windowTitle().toStdString());
        break;
    default:
        break;
    }
}

// Blocking is told to the platform's window, which comes late and may be replaced.
void HostWindow::watchHandle() {
    if (QWindow* const handle = top_->windowHandle()) handle->installEventFilter(this);
}

void HostWindow::focusMoved() {
    const QWidget* const focused = QApplication::focusWidget();
    if (client && focused && focused->window() == top_ && !isOfKit(focused)) client->peerFocusLeft();
}

// The widget became a part of another window.
void HostWindow::retire() {
    top_->removeEventFilter(this);
    setParent(nullptr);
    deleteLater();
    client->peerGone();
}

} // namespace zr::qt
